// Draws lines and text in the host's viewer. Canonical coordinates.
#pragma once

#include <span>

#include "bridges/ofx/OfxTypes.h"

namespace vantorel::ofx {

class OverlayPainter {
 public:
  // Draws with the draw suite if there is a context for it, otherwise in the OpenGL context that the host has made
  // current. Without either it draws nothing.
  explicit OverlayPainter(DrawContext context);

  void setColour(const Colour& colour);
  void loop(std::span<const PointD> points) const;
  void filledBox(const PointD& centre, double half_width, double half_height) const;
  // Above and to the right of a point. OpenGL has no text, so the letters are drawn as lines; `pixel` is the size of a
  // screen pixel.
  void text(const char* text, const PointD& at, const PointD& pixel) const;

 private:
  void drawVertices(unsigned mode, std::span<const PointD> points) const;

  DrawContext context_;
};

}  // namespace vantorel::ofx
