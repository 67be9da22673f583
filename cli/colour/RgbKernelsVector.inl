// The vector kernels, over the vector types and functions of an instruction set that the including file defines. Apart
// from exactValue() they must not call functions that other files may compile too: the linker keeps one copy, which
// could then be one that needs this instruction set.
#include "cli/colour/TransferCurve.h"

namespace vantorel::cli {

namespace {

constexpr int kLanes = 4 * kPixels;
constexpr unsigned kAlphaLanes = 0x8888u & ((1u << kLanes) - 1);
constexpr unsigned kColourLanes = 0x7777u & ((1u << kLanes) - 1);

// Replaces all pixels of the row by function(vector).
template <typename Function>
inline void forVectors(float* row, int width, const Function& function) {
  int x = 0;
  for (; x + kPixels <= width; x += kPixels) {
    store(function(load(row + 4 * x)), row + 4 * x);
  }
  const int rest = 4 * (width - x);
  if (rest > 0) {
    float padded[kLanes] = {};
    float* const end = row + 4 * x;
    for (int i = 0; i < rest; ++i) {
      padded[i] = end[i];
    }
    store(function(load(padded)), padded);
    for (int i = 0; i < rest; ++i) {
      end[i] = padded[i];
    }
  }
}

bool isOpaque(const float* row, int width) {
  int x = 0;
  for (; x + kPixels <= width; x += kPixels) {
    if ((bitsOf(equal(load(row + 4 * x), set(1.0f))) & kAlphaLanes) != kAlphaLanes) {
      return false;
    }
  }
  for (; x < width; ++x) {
    if (!(row[4 * x + 3] == 1.0f)) {
      return false;
    }
  }
  return true;
}

void unpremultiply(float* row, int width) {
  forVectors(row, width, [](Floats pixels) {
    const Floats alpha = spread<3>(pixels);
    const Mask stays = either(equal(alpha, set(0.0f)), equal(alpha, set(1.0f)));
    return colourAndAlpha(select(stays, pixels, pixels / alpha), pixels);
  });
}

void repremultiply(float* row, int width) {
  forVectors(row, width, [](Floats pixels) {
    const Floats alpha = spread<3>(pixels);
    return colourAndAlpha(select(equal(alpha, set(0.0f)), pixels, pixels * alpha), pixels);
  });
}

// Replaces the lanes in `wanted`, which the table does not cover, by exact values.
[[gnu::noinline]] Floats withExact(const CurveSteps& curve, Floats x, Floats values, unsigned wanted) {
  float in[kLanes];
  float out[kLanes];
  store(x, in);
  store(values, out);
  for (int i = 0; i < kLanes; ++i) {
    if ((wanted >> i & 1u) != 0) {
      out[i] = exactValue(curve, in[i]);
    }
  }
  return load(out);
}

inline Floats lookUp(const CurveSteps& curve, Floats x) {
  constexpr int kBits = CurveTable::kFractionBits;
  constexpr int kOneStep = 1 << kBits;
  constexpr int kSteps = static_cast<int>(CurveTable::kSteps);
  const Ints magnitude = bitAnd(asInts(x), set(0x7FFFFFFF));
  const Ints place = add(magnitude, set(-static_cast<int>(CurveTable::kLowest)));
  const Ints known = clamp(place, set(kSteps * kOneStep - 1));
  const Ints of_sign = bitAnd(shiftRight<31>(asInts(x)), set(kSteps + 1));
  const Ints step = add(shiftRight<kBits>(known), of_sign);
  const Floats fraction = toFloats(bitAnd(known, set(kOneStep - 1))) * set(1.0f / static_cast<float>(kOneStep));
  const auto [value, next] = gatherPairs(curve.values, step);
  const Mask is_zero = equal(x, set(0.0f));
  const Floats result = select(is_zero, set(curve.at_zero), value + (next - value) * fraction);
  const unsigned outside = ~bitsOf(either(equal(place, known), is_zero)) & kColourLanes;
  return outside == 0 ? result : withExact(curve, x, result, outside);
}

template <bool kDecodes, bool kMultiplies, bool kEncodes>
void convertBy(const RgbSteps& steps, float* row, int width) {
  const Floats red = repeat(steps.columns[0]);
  const Floats green = repeat(steps.columns[1]);
  const Floats blue = repeat(steps.columns[2]);
  forVectors(row, width, [&](Floats pixels) {
    Floats colour = pixels;
    if constexpr (kDecodes) {
      colour = lookUp(steps.decode, colour);
    }
    if constexpr (kMultiplies) {
      colour = red * spread<0>(colour) + green * spread<1>(colour) + blue * spread<2>(colour);
    }
    if constexpr (kEncodes) {
      colour = lookUp(steps.encode, colourAndAlpha(colour, pixels));
    }
    return colourAndAlpha(colour, pixels);
  });
}

template <bool kDecodes, bool kMultiplies>
void convertBy(const RgbSteps& steps, float* row, int width) {
  return steps.encode.values != nullptr ? convertBy<kDecodes, kMultiplies, true>(steps, row, width)
                                        : convertBy<kDecodes, kMultiplies, false>(steps, row, width);
}

template <bool kDecodes>
void convertBy(const RgbSteps& steps, float* row, int width) {
  return steps.has_matrix ? convertBy<kDecodes, true>(steps, row, width)
                          : convertBy<kDecodes, false>(steps, row, width);
}

void convert(const RgbSteps& steps, float* row, int width) {
  return steps.decode.values != nullptr ? convertBy<true>(steps, row, width) : convertBy<false>(steps, row, width);
}

}  // namespace

}  // namespace vantorel::cli
