// Projective maps (homographies) between the unit square and quadrilaterals, and transforming points by them.
//
// A quadrilateral is four points in the order upper left, upper right, lower right, lower left; the unit square's
// corners (0, 0), (1, 0), (1, 1), (0, 1) correspond to them in that order. Maps act on row vectors: the point (u, v)
// becomes [u v 1] * M, divided by the third component.
//
// Literature: P. Heckbert, Fundamentals of Texture Mapping and Image Warping, 1989, section 2.2.3.
#pragma once

#include <cstdint>

#include "math/M_stuff.h"

// With `to_quad` non-zero, *out = the map from the unit square onto the quadrilateral; always succeeds. If the last
// three points are collinear, the map is finite but very steep.
//
// With `to_quad` zero, *out = the map from the quadrilateral onto the unit square, normalised so that its bottom-right
// entry is 1, with entries of magnitude up to 1e-12 set to 0. It exists for every proper quadrilateral, convex or not,
// wherever it lies. There is no map, and *out is unchanged, if three of the points are collinear (up to rounding), if a
// coordinate is not finite, or if the map's horizon passes through the origin, which makes the bottom-right entry 0 so
// that the map cannot be normalised.
//
// Returns 1 for success, 0 if there is no map.
unsigned char KZFX_MapUnitSquareToFromQuad(M_Vector2T<double>* quad, M_Matrix3* out, unsigned char to_quad);

// *out = the map that takes from[k] to to[k] for k = 0..3. Returns 0, or 1 with *out unchanged if there is no such map.
std::int32_t MapQuadToQuadFloat(M_Vector2T<double>* from, M_Vector2T<double>* to, M_Matrix3* out);

// Transforms `count` points by m in place; coordinates of magnitude up to 1e-12 become 0. Returns 0, or 1 at the first
// point that maps to infinity (homogeneous weight of magnitude up to 1e-12); that point and those after it are
// unchanged.
std::int32_t HomogeneouslyTransformFloatPoints(const M_Matrix3* m, int count, M_Vector2T<double>* points);
