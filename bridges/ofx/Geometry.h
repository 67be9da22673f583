// From the interface's coordinates to those that the effect draws in.
#pragma once

#include <optional>

#include "bridges/ofx/OfxTypes.h"
#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::ofx {

// Whether a factor between coordinates can be computed with; not if it is NaN.
constexpr bool isScale(double factor) {
  return factor >= 1e-6 && factor <= 1e6;
}

bool isFinite(const PointD& point);

// Whether a rectangle's edges can be computed with: not those of an endless one.
bool isBounded(const RectD& rect);
bool isBounded(const RectI& rect);

// Pixels of an image per canonical unit.
struct PixelScale {
  double x = 1.0;
  double y = 1.0;

  // `is_field`: the image holds every other row.
  static PixelScale of(const PointD& render_scale, double pixel_aspect, bool is_field);
};

// The source's frame in canonical coordinates, in pixels.
RectD pixelsOf(const RectD& canonical, const PixelScale& scale);

// The whole pixels that hold something of a region; nothing for one without end, or larger than can be drawn.
std::optional<RectI> pixelsRound(const RectD& pixels);

// A plane of pixels, y down, on which the upper left corner of the source's frame is (0, 0): that of the embedded
// host's canvases, of which a still's is the frame itself.
struct Plane {
  PixelScale scale;
  double left = 0.0;  // of the source's frame, in pixels y up
  double top = 0.0;

  host::Point at(const host::Point& canonical) const;
  host::Corners at(const host::Corners& canonical) const;
  // The edges must be whole pixels of the plane.
  host::Rect at(const RectI& pixels) const;
};

// The first corner that lies beyond the effect's 16.16 numbers on its plane; nothing where all are within.
std::optional<std::size_t> unreachable(const host::Corners& corners);

// Whether the corners are the outline of a frame of that size, to the 16.16 numbers that the effect gets.
bool areOutline(const host::Corners& corners, double width, double height);

// The box of the corners, `margin` pixels wider on every side; canonical.
RectD boundsOf(const host::Corners& corners, const PixelScale& scale, double margin);

RectD united(const RectD& a, const RectD& b);
RectI common(const RectI& a, const RectI& b);
// At least a canonical unit of `within`, where `part` lies beside it.
RectD common(const RectD& part, const RectD& within);

}  // namespace vantorel::ofx
