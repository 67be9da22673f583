// 16.16 fixed-point numbers: signed 32-bit integers whose value is the integer divided by 65536.
#pragma once

#include <cstdint>

constexpr std::int32_t kFixedOne = 65536;
constexpr std::int32_t kFixedHalf = kFixedOne / 2;

constexpr double doubleFromFixed(std::int32_t value) {
  return value / 65536.0;
}
