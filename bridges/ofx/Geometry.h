// Converts the interface's coordinates to those that the effect draws in.
#pragma once

#include <optional>

#include "bridges/ofx/OfxTypes.h"
#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::ofx {

// Whether a factor between coordinates is in a usable range. False for NaN.
constexpr bool isScale(double factor) {
  return factor >= 1e-6 && factor <= 1e6;
}

bool isFinite(const PointD& point);

// Whether a rectangle's edges are in the range of pixels. False for an endless one and for NaN.
bool isBounded(const RectD& rect);
bool isBounded(const RectI& rect);

// Pixels per canonical unit.
struct PixelScale {
  double x = 1.0;
  double y = 1.0;

  // `is_field`: the image holds every other row.
  static PixelScale of(const PointD& render_scale, double pixel_aspect, bool is_field);
};

// A canonical rectangle in pixels.
RectD pixelsOf(const RectD& canonical, const PixelScale& scale);

// The smallest rectangle of whole pixels around a region; nothing if that is empty or not bounded.
std::optional<RectI> pixelsRound(const RectD& pixels);

// The pixel coordinates of the embedded host: y down, with the upper left corner of the source's frame at (0, 0).
struct Plane {
  PixelScale scale;
  double left = 0.0;  // the source's upper left corner, in pixels, y up
  double top = 0.0;

  host::Point at(const host::Point& canonical) const;
  host::Corners at(const host::Corners& canonical) const;
  // The edges must be whole pixels of the plane.
  host::Rect at(const RectI& pixels) const;
};

// The first corner that is out of range of the effect's 16.16 numbers; nothing if none is.
std::optional<std::size_t> unreachable(const host::Corners& corners);

// Whether the corners, as 16.16 numbers, are the outline of a frame of that size.
bool areOutline(const host::Corners& corners, double width, double height);

// The canonical bounding box of the corners, extended by `margin` pixels on every side.
RectD boundsOf(const host::Corners& corners, const PixelScale& scale, double margin);

RectD united(const RectD& a, const RectD& b);
RectI common(const RectI& a, const RectI& b);
// `part` clipped to `within`, but at least one canonical unit in size even if `part` lies outside.
RectD common(const RectD& part, const RectD& within);

}  // namespace vantorel::ofx
