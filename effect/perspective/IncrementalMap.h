// The row samplers' walk along an output row in homogeneous input coordinates: additions that each round.
#pragma once

// One coordinate: its value at the pixel before the next one, and the changes to the pixel on the right and to the one
// below.
//
// At standard quality the walk goes from pixel to pixel, and `down` is 0. At high quality it goes round each pixel's
// neighbours, right, lower right, lower and back, with a rounding at each, and on from there.
//
// As long as everything that a coordinate comes by has the same binary exponent, its additions of a step all add the
// same multiple of that exponent's last digit. So within such a run the walk's exact values are at + k * step, and
// those of the neighbours follow by their additions.
struct CoordinateWalk {
  double at;
  double right;
  double down;
  double step = 0.0;  // what each pixel of the run adds
  int run = 0;        // the number of pixels that are known to be a run; there may be more
};

struct RowWalk {
  CoordinateWalk u;
  CoordinateWalk v;
  CoordinateWalk w;
  double error = 0.0;  // a bound on the error of a computation that the next pixels allow, kept for the blocks to come
  int error_pixels = 0;  // the number of pixels that it holds for
};

// The number of pixels that are known to be a run for all coordinates; looks ahead where nothing is known.
int knownRun(RowWalk* walk);

// Moves the walk on within such a run.
inline void passRun(CoordinateWalk* walk, int pixels) {
  walk->at += pixels * walk->step;
  walk->run -= pixels;
}

// Moves the walk on by so many pixels, to the bit as if step by step, from pixel to pixel or round the neighbours.
void walkAlong(RowWalk* walk, int pixels);
void walkRound(RowWalk* walk, int pixels);

// As walkAlong() for one coordinate, storing its value at each pixel.
void storeAlong(CoordinateWalk* walk, int pixels, double* values);
