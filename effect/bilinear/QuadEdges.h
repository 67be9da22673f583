// Edge walking: a quadrilateral is drawn row by row in 16.16 fixed point. Two chains of edges run down from its top
// corner, one through decreasing and one through increasing corner indices, and every row is the span between them.
//
// A concave or self-crossing quadrilateral is walked the same way: one span per row, whichever chain is on the left.
// Sums and differences wrap at 32 bits; y and the clip tests are 64 bits wide, so that the walk also ends when corners
// lie at the ends of the 16.16 range.
#pragma once

#include <cstdint>

#include "support/KZFX_srect.h"

// A chain of edges: the current edge runs from corner `current` to corner `next`.
struct EdgeChain {
  int current;
  int next;
  int direction;       // added to an index, modulo 4, to step the chain
  std::int32_t x;      // where the chain crosses the top of the current row
  std::int32_t slope;  // the change of x per row
};

// The state of the walk at a row.
struct EdgeWalker {
  const M_FixedPoint* corners;
  EdgeChain a;
  EdgeChain b;
  std::int64_t y;  // the row's top
  std::int32_t y_max;
  std::int32_t coverage;  // the covered part of the row's height when that is less than a whole row, else 0
  bool last_row;          // the last, partly covered row has been scheduled
};

// Starts at the top row. False when all corners lie on one row, so that there is nothing to draw.
bool startAtTop(const M_FixedPoint* corners, EdgeWalker* walker);

// Moves on towards `y`, 16.16, in one go to a row above it, as far as neither chain comes to another edge.
void skipRowsAbove(std::int64_t y, EdgeWalker* walker);

// Moves on to the next row. False when there is none.
bool nextRow(EdgeWalker* walker);

// A row's span in the output, and the source positions along it.
struct QuadSpan {
  std::int32_t left;   // 16.16 output columns: where the span begins ...
  std::int32_t right;  // ... and ends
  std::int32_t u;      // the source position at the left end
  std::int32_t v;
  std::int32_t du;  // the change of the source position per column
  std::int32_t dv;
};

// The span of the walker's row, where source corner i is drawn at the walker's corner i. False if the row has no span,
// because the chains meet or an edge is flat.
bool rowSpan(const EdgeWalker& walker, const M_FixedPoint* source, QuadSpan* span);
