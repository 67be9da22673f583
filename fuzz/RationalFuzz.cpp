// Fuzzes the rational interface: an input is one call, whose results are checked against exact arithmetic. Its bytes
// are the operation and then, in memory order of the machine, the terms of two ratios and a double; missing bytes are
// zero.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "tests/math/RatioChecks.h"

namespace {

template <typename T>
T take(const std::uint8_t*& bytes, std::size_t& left) {
  T value{};
  const std::size_t size = std::min(left, sizeof(T));
  if (size != 0) {
    std::memcpy(&value, bytes, size);
  }
  bytes += size;
  left -= size;
  return value;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  RatioCase c{};
  c.operation = RatioOperation{static_cast<unsigned char>(take<std::uint8_t>(bytes, size) % kRatioOperations)};
  c.a = take<M_Ratio>(bytes, size);
  c.b = take<M_Ratio>(bytes, size);
  c.value = take<double>(bytes, size);
  const std::string wrong = checkRatioCase(c);
  if (!wrong.empty()) {
    std::fprintf(stderr, "%s\n", wrong.c_str());
    std::abort();
  }
  return 0;
}
