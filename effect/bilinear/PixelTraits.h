// The bilinear renderer's arithmetic for each pixel depth: how pixels are loaded, stored, mixed and averaged. All code
// above this is written once, as templates over these traits.
//
// They work on `Unpacked` pixels, whose channels are spaced far enough apart to be mixed together in a few integer
// operations: a + ((b - a) * f >> 8) equals (a * (256 - f) + b * f) >> 8, whose sums fit into their lanes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "support/PF_HostRecords.h"

// The mix factor of a 16.16 weight, 0 to 255.
constexpr std::uint32_t mixFactor(std::int32_t weight) {
  return static_cast<std::uint32_t>(weight >> 8) & 255;
}

// The second pixel's weight in 256ths; a mix factor of 255 counts as the full 256.
constexpr std::uint64_t blendWeight(std::int32_t weight) {
  const std::uint32_t factor = mixFactor(weight);
  return factor + ((factor + 1) >> 8);
}

// Pixels lie in the host's memory, whose alignment and type are not known here.
template <typename T>
T loadAs(const std::byte* address) {
  T value;
  std::memcpy(&value, address, sizeof(T));
  return value;
}

template <typename T>
void storeAs(std::byte* address, const T& value) {
  std::memcpy(address, &value, sizeof(T));
}

struct PixelTraits8 {
  using Packed = std::uint32_t;    // a pixel in memory
  using Unpacked = std::uint64_t;  // its bytes 0, 2, 1, 3 in 16-bit lanes
  static constexpr std::ptrdiff_t kPixelBytes = 4;

  static Unpacked unpack(Packed packed) { return (Unpacked{packed} | Unpacked{packed} << 24) & kLanes; }
  static Packed pack(Unpacked unpacked) { return static_cast<Packed>(unpacked | unpacked >> 24); }

  static Unpacked load(const std::byte* address) { return unpack(loadAs<Packed>(address)); }
  static void store(std::byte* address, Unpacked unpacked) { storeAs(address, pack(unpacked)); }

  static Unpacked mix(Unpacked a, Unpacked b, std::int32_t weight) {
    const std::uint64_t second = blendWeight(weight);
    return ((a * (256 - second) + b * second) >> 8) & kLanes;
  }

  static Unpacked average(Unpacked a, Unpacked b) { return ((a >> 1) & kHalves) + ((b >> 1) & kHalves); }

  // For 8-bit pixels the row step is rounded down to whole pixels.
  static std::ptrdiff_t rowStep(std::int32_t row_bytes) { return std::ptrdiff_t{row_bytes / 4} * 4; }

 private:
  static constexpr Unpacked kLanes = 0x00FF00FF00FF00FF;
  static constexpr Unpacked kHalves = 0x007F007F007F007F;
};

struct PixelTraits16 {
  using Packed = std::uint64_t;
  // Channels 0 and 2, and channels 1 and 3, in 32-bit lanes.
  struct Unpacked {
    std::uint64_t even;
    std::uint64_t odd;
  };
  static constexpr std::ptrdiff_t kPixelBytes = 8;

  static Unpacked unpack(Packed packed) { return {packed & kLanes, (packed >> 16) & kLanes}; }
  static Packed pack(const Unpacked& unpacked) { return unpacked.even | unpacked.odd << 16; }

  static Unpacked load(const std::byte* address) { return unpack(loadAs<Packed>(address)); }
  static void store(std::byte* address, const Unpacked& unpacked) { storeAs(address, pack(unpacked)); }

  static Unpacked mix(const Unpacked& a, const Unpacked& b, std::int32_t weight) {
    const std::uint64_t second = blendWeight(weight);
    return {((a.even * (256 - second) + b.even * second) >> 8) & kLanes,
            ((a.odd * (256 - second) + b.odd * second) >> 8) & kLanes};
  }

  static Unpacked average(const Unpacked& a, const Unpacked& b) {
    return {((a.even >> 1) & kHalves) + ((b.even >> 1) & kHalves), ((a.odd >> 1) & kHalves) + ((b.odd >> 1) & kHalves)};
  }

  static std::ptrdiff_t rowStep(std::int32_t row_bytes) { return row_bytes; }

 private:
  static constexpr std::uint64_t kLanes = 0x0000FFFF0000FFFF;
  static constexpr std::uint64_t kHalves = 0x00007FFF00007FFF;
};

struct PixelTraitsFloat {
  using Unpacked = float __attribute__((vector_size(16)));  // four channels, in memory order
  using Packed = Unpacked;
  static constexpr std::ptrdiff_t kPixelBytes = 16;

  static Unpacked unpack(const Packed& packed) { return packed; }
  static Packed pack(const Unpacked& unpacked) { return unpacked; }

  static Unpacked load(const std::byte* address) { return loadAs<Unpacked>(address); }
  static void store(std::byte* address, const Unpacked& unpacked) { storeAs(address, unpacked); }

  static Unpacked mix(const Unpacked& a, const Unpacked& b, std::int32_t weight) {
    const std::uint32_t factor = mixFactor(weight);
    if (factor == 0) {
      return a;
    }
    if (factor == 255) {
      return b;
    }
    return a + (b - a) * kBlendWeights[factor];
  }

  // Halving in single precision gives what halving in double and rounding back does: both round the same exact half.
  static Unpacked average(const Unpacked& a, const Unpacked& b) { return (a + b) * 0.5F; }

  static std::ptrdiff_t rowStep(std::int32_t row_bytes) { return row_bytes; }

 private:
  // The second pixel's weight for each mix factor, factor / 255.
  static constexpr std::array<float, 256> kBlendWeights = [] {
    std::array<float, 256> weights{};
    for (std::size_t factor = 0; factor < weights.size(); ++factor) {
      weights[factor] = static_cast<float>(factor) / 255.0F;
    }
    return weights;
  }();
};
