#include "effect/bilinear/QuadEdges.h"

#include <initializer_list>

#include "effect/FixedPoint.h"
#include "effect/Int32Arithmetic.h"
#include "math/Int32FromDouble.h"

namespace {

constexpr int kDecreasing = 3;
constexpr int kIncreasing = 1;

int stepIndex(int index, int direction) {
  return (index + direction) % 4;
}

EdgeChain chainFrom(int corner, int direction) {
  return {corner, stepIndex(corner, direction), direction, 0, 0};
}

void stepChain(EdgeChain* chain) {
  chain->current = chain->next;
  chain->next = stepIndex(chain->next, chain->direction);
}

// Whether the chain's edge ends at or above y and the chains have not met yet.
bool edgeIsPassed(const EdgeWalker& walker, const EdgeChain& chain) {
  return walker.a.next != walker.b.next && walker.y >= walker.corners[chain.next].y;
}

// Puts the chain at the start of its edge. Only these first slopes are computed in double precision.
void startEdge(const M_FixedPoint* corners, EdgeChain* chain) {
  const M_FixedPoint& from = corners[chain->current];
  const M_FixedPoint& to = corners[chain->next];
  chain->x = from.x;
  chain->slope = 0;
  if (to.y != from.y) {
    const double run = static_cast<double>(to.x) - static_cast<double>(from.x);
    const double rise = static_cast<double>(to.y) - static_cast<double>(from.y);
    chain->slope = int32FromDouble(run / rise * kFixedOne);
  }
}

// Steps the chain past the edges that end at or above the row's top.
void advanceChain(EdgeWalker* walker, EdgeChain* chain) {
  while (edgeIsPassed(*walker, *chain)) {
    stepChain(chain);
    const M_FixedPoint& from = walker->corners[chain->current];
    const M_FixedPoint& to = walker->corners[chain->next];
    chain->slope = to.y == from.y ? 0 : FixedDiv(wrapSub(to.x, from.x), wrapSub(to.y, from.y));
    const std::int32_t below = wrapSub(static_cast<std::int32_t>(walker->y), from.y);
    chain->x = wrapAdd(from.x, KZ_FixMulDiv(chain->slope, below, kFixedOne));
  }
}

struct SourcePosition {
  std::int32_t u;
  std::int32_t v;
};

// The source position where the chain crosses y; false on a flat edge.
bool sourceAlongEdge(const EdgeWalker& walker, const EdgeChain& chain, const M_FixedPoint* source, SourcePosition* at) {
  const std::int32_t below = wrapSub(static_cast<std::int32_t>(walker.y), walker.corners[chain.current].y);
  const std::int32_t length = wrapSub(walker.corners[chain.next].y, walker.corners[chain.current].y);
  if (length == 0) {
    return false;
  }
  const M_FixedPoint& from = source[chain.current];
  const M_FixedPoint& to = source[chain.next];
  at->u = wrapAdd(from.x, KZ_FixMulDiv(wrapSub(to.x, from.x), below, length));
  at->v = wrapAdd(from.y, KZ_FixMulDiv(wrapSub(to.y, from.y), below, length));
  return true;
}

// Moves y and both chains to the top of the next row, and sets the row's coverage if it is the last one.
void stepRow(EdgeWalker* walker) {
  if (walker->coverage != 0) {
    walker->a.x = wrapAdd(walker->a.x, KZ_FixMulDiv(walker->a.slope, walker->coverage, kFixedOne));
    walker->b.x = wrapAdd(walker->b.x, KZ_FixMulDiv(walker->b.slope, walker->coverage, kFixedOne));
    walker->y += walker->last_row ? kFixedOne : walker->coverage;
    walker->coverage = 0;
  } else {
    walker->y += kFixedOne;
    walker->a.x = wrapAdd(walker->a.x, walker->a.slope);
    walker->b.x = wrapAdd(walker->b.x, walker->b.slope);
  }
  if (walker->y > std::int64_t{walker->y_max} - kFixedOne && !walker->last_row) {
    walker->coverage = static_cast<std::int32_t>(walker->y_max - walker->y);
    walker->last_row = true;
  }
}

}  // namespace

bool startAtTop(const M_FixedPoint* corners, EdgeWalker* walker) {
  int top = 0;
  std::int32_t y_min = corners[0].y;
  std::int32_t y_max = corners[0].y;
  for (int i = 1; i < 4; ++i) {
    if (corners[i].y < y_min) {
      y_min = corners[i].y;
      top = i;
    }
    y_max = M_Max(y_max, corners[i].y);
  }
  if (y_min >= y_max) {
    return false;
  }
  *walker = {corners, chainFrom(top, kDecreasing), chainFrom(top, kIncreasing), y_min, y_max, 0, false};
  for (EdgeChain* chain : {&walker->a, &walker->b}) {
    while (edgeIsPassed(*walker, *chain)) {
      stepChain(chain);
    }
  }
  startEdge(corners, &walker->a);
  startEdge(corners, &walker->b);
  const std::int32_t fraction = fixedFraction(y_min);
  if (fraction != 0) {
    walker->coverage = kFixedOne - fraction;
  }
  return true;
}

void skipRowsAbove(std::int64_t y, EdgeWalker* walker) {
  if (walker->coverage != 0) {
    return;
  }
  std::int64_t last = M_Min(y - 1, std::int64_t{walker->y_max} - kFixedOne);
  if (walker->a.next != walker->b.next) {
    for (const EdgeChain* chain : {&walker->a, &walker->b}) {
      last = M_Min(last, std::int64_t{walker->corners[chain->next].y} - 1);
    }
  }
  const std::int64_t rows = (last - walker->y) / kFixedOne;
  if (rows <= 0) {
    return;
  }
  walker->y += rows * kFixedOne;
  for (EdgeChain* chain : {&walker->a, &walker->b}) {
    chain->x = wrapAdd(chain->x, wrapMul(chain->slope, static_cast<std::int32_t>(rows)));
  }
}

bool nextRow(EdgeWalker* walker) {
  stepRow(walker);
  if (walker->y >= walker->y_max) {
    return false;
  }
  advanceChain(walker, &walker->a);
  advanceChain(walker, &walker->b);
  return true;
}

bool rowSpan(const EdgeWalker& walker, const M_FixedPoint* source, QuadSpan* span) {
  const std::int32_t width = wrapSub(walker.b.x, walker.a.x);
  SourcePosition at_a;
  SourcePosition at_b;
  if (width == 0 || !sourceAlongEdge(walker, walker.a, source, &at_a) ||
      !sourceAlongEdge(walker, walker.b, source, &at_b)) {
    return false;
  }
  const bool a_is_left = walker.b.x > walker.a.x;
  const SourcePosition& left = a_is_left ? at_a : at_b;
  span->left = a_is_left ? walker.a.x : walker.b.x;
  span->right = a_is_left ? walker.b.x : walker.a.x;
  span->u = left.u;
  span->v = left.v;
  span->du = FixedDiv(wrapSub(at_b.u, at_a.u), width);
  span->dv = FixedDiv(wrapSub(at_b.v, at_a.v), width);
  return true;
}
