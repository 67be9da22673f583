#include "bridges/ofx/OverlayPainter.h"

#include <dlfcn.h>

#include <array>

#include "bridges/ofx/StrokeFont.h"
#include "bridges/ofx/Suites.h"

namespace vantorel::ofx {
namespace {

// Enumerators of the draw suite.
constexpr int kLineLoop = 2;
constexpr int kFilledRectangle = 3;
constexpr int kAlignLeft = 1;
constexpr int kAlignBottom = 8;

// The OpenGL 1 functions that lines need. A host that draws with OpenGL has loaded the library already, so the plug-in
// does not link to it.
struct OpenGl {
  void (*begin)(unsigned mode);
  void (*end)();
  void (*vertex)(double x, double y);
  void (*colour)(float red, float green, float blue, float alpha);
};
constexpr unsigned kGlLineLoop = 2;
constexpr unsigned kGlLineStrip = 3;
constexpr unsigned kGlTriangleFan = 6;

template <typename Function>
void find(const char* name, Function** function) {
  static void* const kLibrary = dlopen("libGL.so.1", RTLD_LAZY | RTLD_NOLOAD);
  void* symbol = dlsym(RTLD_DEFAULT, name);
  if (symbol == nullptr && kLibrary != nullptr) {
    symbol = dlsym(kLibrary, name);
  }
  *function = reinterpret_cast<Function*>(symbol);
}

// Null if the process has no OpenGL.
const OpenGl* openGl() {
  static const OpenGl kFunctions = [] {
    OpenGl gl{};
    find("glBegin", &gl.begin);
    find("glEnd", &gl.end);
    find("glVertex2d", &gl.vertex);
    find("glColor4f", &gl.colour);
    return gl;
  }();
  const bool is_complete = kFunctions.begin != nullptr && kFunctions.end != nullptr && kFunctions.vertex != nullptr &&
                           kFunctions.colour != nullptr;
  return is_complete ? &kFunctions : nullptr;
}

}  // namespace

OverlayPainter::OverlayPainter(DrawContext context) : context_(suites().draw != nullptr ? context : nullptr) {
  if (context_ != nullptr) {
    suites().draw->set_line_width(context_, 1.0F);
  }
}

void OverlayPainter::setColour(const Colour& colour) {
  if (context_ != nullptr) {
    suites().draw->set_colour(context_, &colour);
  } else if (const OpenGl* const gl = openGl()) {
    gl->colour(colour.red, colour.green, colour.blue, colour.alpha);
  }
}

void OverlayPainter::loop(std::span<const PointD> points) const {
  if (context_ != nullptr) {
    suites().draw->draw(context_, kLineLoop, points.data(), static_cast<int>(points.size()));
  } else {
    drawVertices(kGlLineLoop, points);
  }
}

void OverlayPainter::filledBox(const PointD& centre, double half_width, double half_height) const {
  const PointD lower{centre.x - half_width, centre.y - half_height};
  const PointD upper{centre.x + half_width, centre.y + half_height};
  if (context_ != nullptr) {
    const std::array<PointD, 2> opposite{lower, upper};
    suites().draw->draw(context_, kFilledRectangle, opposite.data(), static_cast<int>(opposite.size()));
  } else {
    const std::array<PointD, 4> corners{lower, PointD{upper.x, lower.y}, upper, PointD{lower.x, upper.y}};
    drawVertices(kGlTriangleFan, corners);
  }
}

void OverlayPainter::text(const char* text, const PointD& at, const PointD& pixel) const {
  if (context_ != nullptr) {
    suites().draw->draw_text(context_, text, &at, kAlignLeft | kAlignBottom);
    return;
  }
  constexpr double kCell = 2.5;  // screen pixels
  drawStrokes(text, at, {kCell * pixel.x, kCell * pixel.y},
              [&](std::span<const PointD> line) { drawVertices(kGlLineStrip, line); });
}

void OverlayPainter::drawVertices(unsigned mode, std::span<const PointD> points) const {
  if (const OpenGl* const gl = openGl()) {
    gl->begin(mode);
    for (const PointD& point : points) {
      gl->vertex(point.x, point.y);
    }
    gl->end();
  }
}

}  // namespace vantorel::ofx
