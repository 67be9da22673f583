// The inverse map along an output row, evaluated incrementally in homogeneous input coordinates: from pixel to pixel by
// additions, each of which rounds, so that the values depend on the steps taken.
#pragma once

// One homogeneous coordinate.
//
// At standard quality it steps from pixel to pixel, and `down` is 0. At high quality it visits each pixel's neighbours
// in turn, right, lower right, lower, and back, with a rounding at each, and goes on from there.
//
// While all values that it takes have the same binary exponent, adding a step always adds the same multiple of that
// exponent's last digit. Within such a constant-exponent range the k-th pixel's value is exactly at + k * increment,
// and those of its neighbours follow from it by the same additions.
struct Stepper {
  double at;               // the value at the pixel before the next one
  double right;            // the change to the pixel on the right
  double down;             // the change to the pixel below
  double increment = 0.0;  // what each pixel of the constant-exponent range adds
  int range = 0;           // the pixels ahead that are known to lie in the range; there may be more
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

// The number of pixels ahead that are known to lie in the constant-exponent ranges of all three coordinates; searches
// where none is known.
int constantExponentRange(IncrementalMap* map);

// Advances within the constant-exponent range. Always inlined: a copy compiled for an instruction set that the machine
// lacks must not serve other files.
[[gnu::always_inline]] inline void advanceInRange(Stepper* stepper, int pixels) {
  stepper->at += pixels * stepper->increment;
  stepper->range -= pixels;
}

[[gnu::always_inline]] inline void advanceInRange(IncrementalMap* map, int pixels) {
  advanceInRange(&map->u, pixels);
  advanceInRange(&map->v, pixels);
  advanceInRange(&map->w, pixels);
}

// Advances by so many pixels, with the bits of single steps: from pixel to pixel, or visiting each pixel's neighbours.
void advance(IncrementalMap* map, int pixels);
void advanceVisitingNeighbours(IncrementalMap* map, int pixels);

// As advance() for one coordinate, storing its value at each pixel.
void storeValues(Stepper* stepper, int pixels, double* values);
