// 32-bit integer arithmetic whose odd cases are defined: conversion of doubles, and sums and products that wrap.
#pragma once

#include <cstdint>
#include <limits>

// A double truncated toward zero. NaN and values outside the int32 range give -2147483648.
inline std::int32_t int32FromDouble(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) {
    return static_cast<std::int32_t>(value);
  }
  return std::numeric_limits<std::int32_t>::min();
}

constexpr std::int32_t wrapAdd(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}

constexpr std::int32_t wrapSub(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

constexpr std::int32_t wrapMul(std::int32_t a, std::int32_t b) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

// A whole number of pixels as 16.16, without its bits above the 32nd.
constexpr std::int32_t fixedFromInt(std::int32_t pixels) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(pixels) << 16);
}
