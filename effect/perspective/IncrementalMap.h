// The inverse map along an output row, evaluated incrementally in homogeneous input coordinates: each step is an
// addition that rounds, so the values depend on the sequence of steps.
#pragma once

// One homogeneous coordinate.
//
// At standard quality it steps from pixel to pixel, and `down` is 0. At high quality it goes round each pixel's
// neighbours (right, lower right, lower, and back), rounding at every step, and continues from the value it comes back
// with.
//
// As long as all its values have the same binary exponent, adding the step always adds the same multiple of that
// exponent's ulp. Within such a constant-exponent range the k-th pixel's value is exactly at + k * increment, and its
// neighbours' values follow from that by the same additions.
struct Stepper {
  double at;               // the value at the pixel before the next one
  double right;            // the change to the pixel on the right
  double down;             // the change to the pixel below
  double increment = 0.0;  // what each pixel of the constant-exponent range adds
  int range = 0;           // how many pixels ahead are known to lie in the range; there may be more
  int wanted = 0;          // a range that is tried first, since it spares a division: that of the row, if known
};

struct IncrementalMap {
  Stepper u;
  Stepper v;
  Stepper w;
  // A bound on the error of approximate footprints over the next `error_pixels` pixels, in 1/65536 input pixel; kept
  // here from batch to batch.
  double error = 0.0;
  int error_pixels = 0;
};

// The number of pixels ahead that are known to lie in the constant-exponent ranges of all three coordinates. Searches
// for a range if none is known.
int constantExponentRange(IncrementalMap* map);

// Advances within the constant-exponent range. Always inlined, so that the linker cannot keep a copy compiled for an
// instruction set that the machine lacks.
[[gnu::always_inline]] inline void advanceInRange(Stepper* stepper, int pixels) {
  stepper->at += pixels * stepper->increment;
  stepper->range -= pixels;
}

[[gnu::always_inline]] inline void advanceInRange(IncrementalMap* map, int pixels) {
  advanceInRange(&map->u, pixels);
  advanceInRange(&map->v, pixels);
  advanceInRange(&map->w, pixels);
}

// Advance by that many pixels, with the same bits as single steps: from pixel to pixel, or round each pixel's
// neighbours.
void advance(IncrementalMap* map, int pixels);
void advanceVisitingNeighbours(IncrementalMap* map, int pixels);

// As advance() for one coordinate, storing its value at each pixel.
void storeValues(Stepper* stepper, int pixels, double* values);
