// A fuzzer's input, as the values that a target takes of it one after the other. Missing bytes are zero.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

namespace vantorel::fuzz {

class Input {
 public:
  Input(const std::uint8_t* bytes, std::size_t size) : bytes_(bytes), left_(size) {}

  // A value of any bits, in memory order of the machine.
  template <typename T>
  T take() {
    T value{};
    const std::size_t size = std::min(left_, sizeof(T));
    if (size != 0) {
      std::memcpy(static_cast<void*>(&value), bytes_, size);
    }
    bytes_ += size;
    left_ -= size;
    return value;
  }

  bool flag() { return (take<std::uint8_t>() & 1) != 0; }

  // From `low` to `high`, both included, at most 256 values.
  int inRange(int low, int high) { return low + take<std::uint8_t>() % (high - low + 1); }

  // Mostly near zero, else at the ends of the range or anything.
  std::int32_t number() {
    switch (inRange(0, 7)) {
      case 0:
        return take<std::int32_t>();
      case 1:
        return flag() ? INT32_MAX - inRange(0, 2) : INT32_MIN + inRange(0, 2);
      default:
        return take<std::int8_t>();
    }
  }

  // 16.16: pixels and quarters near zero, or any bits.
  std::int32_t fixed() { return inRange(0, 3) != 0 ? take<std::int8_t>() * 16384 + inRange(0, 2) - 1 : number(); }

  // A number on a coarse grid, or any bits: infinities and NaN too.
  double real() { return inRange(0, 7) != 0 ? take<std::int16_t>() / 16.0 : take<double>(); }

  std::string rest() { return {reinterpret_cast<const char*>(bytes_), left_}; }

 private:
  const std::uint8_t* bytes_;
  std::size_t left_;
};

// Ends the process where a condition that every input must keep does not hold.
inline void require(bool holds, const char* what) {
  if (!holds) {
    std::fprintf(stderr, "does not hold: %s\n", what);
    std::abort();
  }
}

}  // namespace vantorel::fuzz
