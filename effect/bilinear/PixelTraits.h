// The arithmetic of one pixel depth as the bilinear renderer needs it: how pixels are loaded, stored, mixed and
// averaged. Everything above it is written once over these families.
//
// A family works on `Wide`, a pixel whose four channels are spread so far apart that all four are mixed in the same few
// operations: a + ((b - a) * f >> 8) equals (a * (256 - f) + b * f) >> 8, in which no channel's sum leaves its lane.
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

// The mix factor in 256ths of the second pixel: a factor of 255 takes it whole.
constexpr std::uint64_t mixShare(std::int32_t weight) {
  const std::uint32_t factor = mixFactor(weight);
  return factor + ((factor + 1) >> 8);
}

// Pixels lie in memory of the host's, whose alignment and type are not known here.
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

struct PixelFamily8 {
  using Word = std::uint32_t;  // a pixel in memory
  using Wide = std::uint64_t;  // bytes 0, 2, 1, 3 of the word in 16-bit lanes
  static constexpr std::ptrdiff_t kPixelBytes = 4;

  static Wide spread(Word word) { return (Wide{word} | Wide{word} << 24) & kLanes; }
  static Word gather(Wide wide) { return static_cast<Word>(wide | wide >> 24); }

  static Wide load(const std::byte* address) { return spread(loadAs<Word>(address)); }
  static void store(std::byte* address, Wide wide) { storeAs(address, gather(wide)); }

  static Wide mix(Wide a, Wide b, std::int32_t weight) {
    const std::uint64_t share = mixShare(weight);
    return ((a * (256 - share) + b * share) >> 8) & kLanes;
  }

  static Wide average(Wide a, Wide b) { return ((a >> 1) & kHalves) + ((b >> 1) & kHalves); }

  // Rows of 8-bit pixels are stepped in whole pixels.
  static std::ptrdiff_t rowStep(std::int32_t row_bytes) { return std::ptrdiff_t{row_bytes / 4} * 4; }

 private:
  static constexpr Wide kLanes = 0x00FF00FF00FF00FF;
  static constexpr Wide kHalves = 0x007F007F007F007F;
};

struct PixelFamily16 {
  using Word = std::uint64_t;
  // Channels 0 and 2, and channels 1 and 3, in 32-bit lanes.
  struct Wide {
    std::uint64_t even;
    std::uint64_t odd;
  };
  static constexpr std::ptrdiff_t kPixelBytes = 8;

  static Wide spread(Word word) { return {word & kLanes, (word >> 16) & kLanes}; }
  static Word gather(const Wide& wide) { return wide.even | wide.odd << 16; }

  static Wide load(const std::byte* address) { return spread(loadAs<Word>(address)); }
  static void store(std::byte* address, const Wide& wide) { storeAs(address, gather(wide)); }

  static Wide mix(const Wide& a, const Wide& b, std::int32_t weight) {
    const std::uint64_t share = mixShare(weight);
    return {((a.even * (256 - share) + b.even * share) >> 8) & kLanes,
            ((a.odd * (256 - share) + b.odd * share) >> 8) & kLanes};
  }

  static Wide average(const Wide& a, const Wide& b) {
    return {((a.even >> 1) & kHalves) + ((b.even >> 1) & kHalves), ((a.odd >> 1) & kHalves) + ((b.odd >> 1) & kHalves)};
  }

  static std::ptrdiff_t rowStep(std::int32_t row_bytes) { return row_bytes; }

 private:
  static constexpr std::uint64_t kLanes = 0x0000FFFF0000FFFF;
  static constexpr std::uint64_t kHalves = 0x00007FFF00007FFF;
};

struct PixelFamilyFloat {
  using Wide = float __attribute__((vector_size(16)));  // four channels, in memory order
  using Word = Wide;
  static constexpr std::ptrdiff_t kPixelBytes = 16;

  static Wide spread(const Word& word) { return word; }
  static Word gather(const Wide& wide) { return wide; }

  static Wide load(const std::byte* address) { return loadAs<Wide>(address); }
  static void store(std::byte* address, const Wide& wide) { storeAs(address, wide); }

  static Wide mix(const Wide& a, const Wide& b, std::int32_t weight) {
    const std::uint32_t factor = mixFactor(weight);
    if (factor == 0) {
      return a;
    }
    if (factor == 255) {
      return b;
    }
    return a + (b - a) * kShares[factor];
  }

  // Halving in single precision gives what halving in double and rounding back does: both round the same exact half.
  static Wide average(const Wide& a, const Wide& b) { return (a + b) * 0.5F; }

  static std::ptrdiff_t rowStep(std::int32_t row_bytes) { return row_bytes; }

 private:
  // The factors as shares of the second pixel, factor / 255.
  static constexpr std::array<float, 256> kShares = [] {
    std::array<float, 256> shares{};
    for (std::size_t factor = 0; factor < shares.size(); ++factor) {
      shares[factor] = static_cast<float>(factor) / 255.0F;
    }
    return shares;
  }();
};
