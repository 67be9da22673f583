// The row samplers' arithmetic in blocks of pixels: the projective coordinates of a block are walked one after the
// other, since every step rounds, and what follows from them is computed for the whole block at once.
//
// The computation exists once per instruction set, from one text, and gives the same bits in all of them.
#pragma once

#include <cstdint>

// Pixels per block.
constexpr int kRowBlock = 64;

// A block's homogeneous coordinates.
struct HomogeneousBlock {
  double u[kRowBlock];
  double v[kRowBlock];
  double w[kRowBlock];
};

// Where a block's pixels lie in the input, 16.16, and which of them lie nowhere because a projective divisor is 0.
struct PositionBlock {
  std::int32_t x[kRowBlock];
  std::int32_t y[kRowBlock];
  std::int32_t no_divisor[kRowBlock];
};

// A block's pixels and the three neighbours that measure their footprints.
struct NeighbourhoodBlock {
  HomogeneousBlock centre;
  HomogeneousBlock right;
  HomogeneousBlock lower_right;
  HomogeneousBlock lower;
};

// Positions and sampling boxes of a block's pixels, 16.16.
struct FootprintBlock {
  PositionBlock position;
  std::int32_t x_radius[kRowBlock];
  std::int32_t y_radius[kRowBlock];
  std::int32_t area[kRowBlock];
};

// The change of the divisor from a pixel to its neighbours.
struct DivisorSteps {
  double right;
  double down;
};

// Input size divided by output size.
struct InputScale {
  double x;
  double y;
};

// The block computations of one instruction set. Every element of the outputs is written, whatever the inputs hold.
struct RowBlockFunctions {
  // x = trunc(trunc(u / w) * scale), likewise y.
  void (*positions)(const HomogeneousBlock& at, const InputScale& scale, PositionBlock* out);
  // Radii between 0.5 and 8 pixels from the largest distance to a neighbour, the box's area, and the rounded position.
  // Returns whether any pixel has a zero divisor, its own or a neighbour's.
  bool (*footprints)(const NeighbourhoodBlock& at, const DivisorSteps& steps, const InputScale& scale,
                     FootprintBlock* out);
};

enum class InstructionSet { Plain, Avx2, Avx512 };

// The functions of an instruction set, or null where this machine or build does not have it.
const RowBlockFunctions* RowBlockFunctionsFor(InstructionSet set);

// The functions of the best instruction set that this machine has.
const RowBlockFunctions& BestRowBlockFunctions();
