#include "effect/perspective/IncrementalMap.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>

namespace {

// So many pixels are walked one by one before another run is looked for.
constexpr int kPixelsBetweenRuns = 4;
constexpr double kLongestRun = 1 << 20;

// Sign and exponent, as they stand in a double.
std::uint64_t signAndExponent(double value) {
  std::uint64_t bits = 0;
  std::memcpy(&bits, &value, sizeof bits);
  return bits >> 52;
}

double powerOfTwo(std::uint64_t exponent) {
  const std::uint64_t bits = exponent << 52;
  double power = 0.0;
  std::memcpy(&power, &bits, sizeof power);
  return power;
}

// Finds a run from where the coordinate is.
//
// With q the value of its last digit, a step is a whole number of q, S, and a rest of at most q / 2. Added to a
// multiple of q, it leads to a number whose distance to the sum with S is that rest, so that it rounds to it, unless
// the rest is q / 2 or the numbers there lie closer than q, below the exponent's smallest.
void findRun(CoordinateWalk* walk) {
  walk->run = 0;
  const double at = walk->at;
  const std::uint64_t sign_and_exponent = signAndExponent(at);
  const std::uint64_t exponent = sign_and_exponent & 0x7FF;
  // The last digit must be a normal number, and the next exponent's smallest number finite.
  if (exponent <= 52 || exponent >= 0x7FE) {
    return;
  }
  const double right = at + walk->right - at;
  const double down = at + walk->down - at;
  const double rest = std::max(std::abs(walk->right - right), std::abs(walk->down - down));
  if (!(2.0 * rest < powerOfTwo(exponent - 52))) {
    return;
  }
  // The exponent's end on the way, less what the neighbours below take of it. Two steps are taken off for the
  // neighbours on the right and for this estimate's own rounding.
  const bool grows = (at < 0.0) == (right < 0.0);
  const double end = std::copysign(powerOfTwo(grows ? exponent + 1 : exponent), at);
  const double reach = (right < 0.0) == (down < 0.0) ? down : 0.0;
  const double steps = right == 0.0 ? kLongestRun : std::min((end - at - reach) / right - 2.0, kLongestRun);
  if (!(steps >= 1.0)) {
    return;
  }
  const int run = static_cast<int>(steps);
  // The neighbours of the last pixel lie a step beyond it.
  const double last = at + (run + 1.0) * right;
  const double low = std::min(at, last) + std::min(down, 0.0) - rest;
  const double high = std::max(at, last) + std::max(down, 0.0) + rest;
  if (signAndExponent(low) == sign_and_exponent && signAndExponent(high) == sign_and_exponent) {
    walk->run = run;
    walk->step = right;
  }
}

double stepAlong(const CoordinateWalk& walk) {
  return walk.at + walk.right;
}

double stepRound(const CoordinateWalk& walk) {
  const double centre = walk.at + walk.right;
  return centre + walk.right + walk.down - walk.right - walk.down;
}

// Takes runs as wholes, and some steps between them one by one: `before_run(pixels)` is called before each of the
// former, and `take_step()` takes one of the latter.
template <typename BeforeRun, typename TakeStep>
void advance(CoordinateWalk* walk, int pixels, BeforeRun before_run, TakeStep take_step) {
  bool is_after_run = false;  // where the exponent is about to change
  while (pixels > 0) {
    if (walk->run == 0 && !is_after_run) {
      findRun(walk);
    }
    int passed = std::min(pixels, walk->run);
    if (passed > 0) {
      before_run(passed);
      passRun(walk, passed);
      is_after_run = true;
    } else {
      is_after_run = false;
      passed = std::min(pixels, kPixelsBetweenRuns);
      for (int i = 0; i < passed; ++i) {
        take_step();
      }
    }
    pixels -= passed;
  }
}

template <typename Step>
void advance(CoordinateWalk* walk, int pixels, Step step) {
  advance(
      walk, pixels, [](int) {}, [&] { walk->at = step(*walk); });
}

int knownRun(CoordinateWalk* walk) {
  if (walk->run == 0) {
    findRun(walk);
  }
  return walk->run;
}

}  // namespace

int knownRun(RowWalk* walk) {
  return std::min({knownRun(&walk->u), knownRun(&walk->v), knownRun(&walk->w)});
}

void walkAlong(RowWalk* walk, int pixels) {
  advance(&walk->u, pixels, stepAlong);
  advance(&walk->v, pixels, stepAlong);
  advance(&walk->w, pixels, stepAlong);
}

void walkRound(RowWalk* walk, int pixels) {
  advance(&walk->u, pixels, stepRound);
  advance(&walk->v, pixels, stepRound);
  advance(&walk->w, pixels, stepRound);
}

void storeAlong(CoordinateWalk* walk, int pixels, double* values) {
  advance(
      walk, pixels,
      [&](int run) {
        for (int i = 0; i < run; ++i) {
          values[i] = walk->at + (i + 1) * walk->step;
        }
        values += run;
      },
      [&] { *values++ = walk->at = stepAlong(*walk); });
}
