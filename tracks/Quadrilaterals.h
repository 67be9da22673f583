// Properties of quadrilaterals on a screen whose y axis points down.
#pragma once

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

// The corners in order round the outline: upper left, upper right, lower right, lower left.
constexpr std::array<Corner, kCornerCount> kAround{kUpperLeft, kUpperRight, kLowerRight, kLowerLeft};

// Positive if a, b, c turn clockwise, 0 if they are on a line.
double turn(const Point& a, const Point& b, const Point& c);

// Whether all four corners turn the same way, clockwise or, for a mirrored quadrilateral, anticlockwise.
bool isConvex(const Quadrilateral& q);
bool isConvexClockwise(const Quadrilateral& q);

// Whether two opposite edges cross.
bool isCrossing(const Quadrilateral& q);

// Whether all four corners are on a line, or nearly: no three of them span more than about a millionth of the square of
// its extent.
bool isDegenerate(const Quadrilateral& q);

// Whether the effect maps it bilinearly rather than in perspective: it is not strictly convex, or a corner is nearly
// straight (turns by less than about 8.1 degrees).
bool isDrawnBilinearly(const Quadrilateral& q);

// The mean length of the diagonals.
double sizeOf(const Quadrilateral& q);

double distance(const Point& a, const Point& b);

}  // namespace vantorel::tracks
