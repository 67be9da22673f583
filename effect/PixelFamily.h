// The arithmetic of one pixel depth as the bilinear renderer needs it: how pixels are loaded, stored, mixed and
// averaged. Everything above it is written once over these families.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "support/PF_HostRecords.h"

// The mix factor of a 16.16 weight, 0 to 255.
constexpr int MixFactor(std::int32_t weight) {
  return (weight >> 8) & 255;
}

// Pixels lie in memory of the host's, whose alignment and type are not known here.
template <typename P>
P LoadPixel(const std::byte* address) {
  P pixel;
  std::memcpy(&pixel, address, sizeof(P));
  return pixel;
}

template <typename P>
void StorePixel(std::byte* address, const P& pixel) {
  std::memcpy(address, &pixel, sizeof(P));
}

struct PixelFamily8 {
  using Pixel = std::uint32_t;

  static Pixel Mix(Pixel a, Pixel b, std::int32_t weight) {
    const int f = MixFactor(weight);
    if (f == 0) {
      return a;
    }
    if (f == 255) {
      return b;
    }
    Pixel mixed = 0;
    for (int shift = 0; shift < 32; shift += 8) {
      const int ca = static_cast<int>((a >> shift) & 255);
      const int cb = static_cast<int>((b >> shift) & 255);
      mixed |= static_cast<Pixel>((ca + (((cb - ca) * f) >> 8)) & 255) << shift;
    }
    return mixed;
  }

  static Pixel Average(Pixel a, Pixel b) { return ((a & 0xFEFEFEFEu) >> 1) + ((b & 0xFEFEFEFEu) >> 1); }

  // Rows of 8-bit pixels are stepped in whole pixels.
  static std::ptrdiff_t RowStep(std::int32_t row_bytes) { return std::ptrdiff_t{row_bytes / 4} * 4; }
};

struct PixelFamily16 {
  using Pixel = PF_Pixel16;

  static Pixel Mix(const Pixel& a, const Pixel& b, std::int32_t weight) {
    const int f = MixFactor(weight);
    if (f == 0) {
      return a;
    }
    if (f == 255) {
      return b;
    }
    const auto mix = [f](int ca, int cb) { return static_cast<std::uint16_t>(ca + (((cb - ca) * f) >> 8)); };
    return {mix(a.alpha, b.alpha), mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
  }

  static Pixel Average(const Pixel& a, const Pixel& b) {
    const auto average = [](int ca, int cb) { return static_cast<std::uint16_t>((ca >> 1) + (cb >> 1)); };
    return {average(a.alpha, b.alpha), average(a.red, b.red), average(a.green, b.green), average(a.blue, b.blue)};
  }

  static std::ptrdiff_t RowStep(std::int32_t row_bytes) { return row_bytes; }
};

struct PixelFamilyFloat {
  using Pixel = PF_PixelFloat;

  static Pixel Mix(const Pixel& a, const Pixel& b, std::int32_t weight) {
    const int f = MixFactor(weight);
    if (f == 0) {
      return a;
    }
    if (f == 255) {
      return b;
    }
    const float t = static_cast<float>(f) / 255.0F;
    const auto mix = [t](float ca, float cb) { return ca + (cb - ca) * t; };
    return {mix(a.alpha, b.alpha), mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
  }

  static Pixel Average(const Pixel& a, const Pixel& b) {
    const auto average = [](float ca, float cb) {
      const float sum = ca + cb;
      return static_cast<float>(static_cast<double>(sum) * 0.5);
    };
    return {average(a.alpha, b.alpha), average(a.red, b.red), average(a.green, b.green), average(a.blue, b.blue)};
  }

  static std::ptrdiff_t RowStep(std::int32_t row_bytes) { return row_bytes; }
};
