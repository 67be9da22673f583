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
bool edgeIsPassed(const QuadWalk& walk, const EdgeChain& chain) {
  return walk.a.next != walk.b.next && walk.y >= walk.corners[chain.next].y;
}

// Puts the chain at the start of its edge. Only these first slopes use double precision.
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
void advanceChain(QuadWalk* walk, EdgeChain* chain) {
  while (edgeIsPassed(*walk, *chain)) {
    stepChain(chain);
    const M_FixedPoint& from = walk->corners[chain->current];
    const M_FixedPoint& to = walk->corners[chain->next];
    chain->slope = to.y == from.y ? 0 : FixedDiv(wrapSub(to.x, from.x), wrapSub(to.y, from.y));
    const std::int32_t below = wrapSub(static_cast<std::int32_t>(walk->y), from.y);
    chain->x = wrapAdd(from.x, KZ_FixMulDiv(chain->slope, below, kFixedOne));
  }
}

struct SourcePosition {
  std::int32_t u;
  std::int32_t v;
};

// The source position where the chain crosses y; false on a flat edge.
bool sourceAlongEdge(const QuadWalk& walk, const EdgeChain& chain, const M_FixedPoint* source, SourcePosition* at) {
  const std::int32_t below = wrapSub(static_cast<std::int32_t>(walk.y), walk.corners[chain.current].y);
  const std::int32_t length = wrapSub(walk.corners[chain.next].y, walk.corners[chain.current].y);
  if (length == 0) {
    return false;
  }
  const M_FixedPoint& from = source[chain.current];
  const M_FixedPoint& to = source[chain.next];
  at->u = wrapAdd(from.x, KZ_FixMulDiv(wrapSub(to.x, from.x), below, length));
  at->v = wrapAdd(from.y, KZ_FixMulDiv(wrapSub(to.y, from.y), below, length));
  return true;
}

}  // namespace

bool beginWalk(const M_FixedPoint* corners, QuadWalk* walk) {
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
  *walk = {corners, chainFrom(top, kDecreasing), chainFrom(top, kIncreasing), y_min, y_max, 0, false};
  for (EdgeChain* chain : {&walk->a, &walk->b}) {
    while (edgeIsPassed(*walk, *chain)) {
      stepChain(chain);
    }
  }
  startEdge(corners, &walk->a);
  startEdge(corners, &walk->b);
  return true;
}

bool hasRow(const QuadWalk& walk) {
  return walk.y < walk.y_max;
}

void enterRow(QuadWalk* walk) {
  const std::int32_t fraction = fixedFraction(static_cast<std::int32_t>(walk->y));
  if (fraction != 0) {
    walk->cover = kFixedOne - fraction;
  }
  advanceChain(walk, &walk->a);
  advanceChain(walk, &walk->b);
}

void leaveRow(QuadWalk* walk) {
  if (walk->cover != 0) {
    walk->a.x = wrapAdd(walk->a.x, KZ_FixMulDiv(walk->a.slope, walk->cover, kFixedOne));
    walk->b.x = wrapAdd(walk->b.x, KZ_FixMulDiv(walk->b.slope, walk->cover, kFixedOne));
    walk->y += walk->last_row ? kFixedOne : walk->cover;
    walk->cover = 0;
  } else {
    walk->y += kFixedOne;
    walk->a.x = wrapAdd(walk->a.x, walk->a.slope);
    walk->b.x = wrapAdd(walk->b.x, walk->b.slope);
  }
  if (walk->y > std::int64_t{walk->y_max} - kFixedOne && !walk->last_row) {
    walk->cover = static_cast<std::int32_t>(walk->y_max - walk->y);
    walk->last_row = true;
  }
}

bool rowSpan(const QuadWalk& walk, const M_FixedPoint* source, QuadSpan* span) {
  const std::int32_t width = wrapSub(walk.b.x, walk.a.x);
  SourcePosition at_a;
  SourcePosition at_b;
  if (width == 0 || !sourceAlongEdge(walk, walk.a, source, &at_a) || !sourceAlongEdge(walk, walk.b, source, &at_b)) {
    return false;
  }
  const bool a_is_left = walk.b.x > walk.a.x;
  const SourcePosition& left = a_is_left ? at_a : at_b;
  const SourcePosition& right = a_is_left ? at_b : at_a;
  span->left = a_is_left ? walk.a.x : walk.b.x;
  span->right = a_is_left ? walk.b.x : walk.a.x;
  span->u = left.u;
  span->v = left.v;
  span->right_u = right.u;
  span->right_v = right.v;
  span->du = FixedDiv(wrapSub(at_b.u, at_a.u), width);
  span->dv = FixedDiv(wrapSub(at_b.v, at_a.v), width);
  return true;
}
