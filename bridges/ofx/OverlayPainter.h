// Lines and text in the host's viewer, by whichever way the host offers. Canonical coordinates.
#pragma once

#include <span>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

class OverlayPainter {
 public:
  // With the draw suite where there is a context for it, else with the OpenGL that the host has made current. Without
  // either, nothing is drawn.
  explicit OverlayPainter(DrawContext context);

  void setColour(const Colour& colour);
  void loop(std::span<const PointD> points) const;
  void filledBox(const PointD& centre, double half_width, double half_height) const;
  // Above and to the right of a point. OpenGL has no letters, so that they are drawn as lines, with `pixel` the size of
  // a screen pixel.
  void text(const char* text, const PointD& at, const PointD& pixel) const;

 private:
  void drawVertices(unsigned mode, std::span<const PointD> points) const;

  DrawContext context_;
};

}  // namespace vantorel::ofx
