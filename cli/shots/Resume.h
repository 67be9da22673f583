// Going on with a shot that has been begun.
#pragma once

#include <cstdint>

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Whether that frame's output exists, is whole and newer than everything it is made from.
bool isFrameDone(const Shot& shot, std::int32_t frame, host::Size output_size);

}  // namespace vantorel::cli
