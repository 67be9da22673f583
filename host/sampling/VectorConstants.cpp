#include "host/sampling/VectorConstants.h"

namespace vantorel::host {

constexpr VectorConstants kVectorConstants{{1, 1, 1, 1, 9, 9, 9, 9}, {1LL << 31, 1LL << 31, 1LL << 31, 1LL << 31},
                                           {65536, 65536},           {131072, 131072},
                                           {196608, 196608},         {32768, 32768},
                                           {65535, 65535},           {32768, 32768, 0, 0},
                                           {65535, 65535, 0, 0}};

}  // namespace vantorel::host
