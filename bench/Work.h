// The works that are measured: which layer is drawn onto which quadrilateral of which canvas.
#pragma once

#include <string>
#include <vector>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::bench {

struct Work {
  std::string name;  // "a" to "g"
  host::Size layer;
  host::Size canvas;
  host::Corners corners;    // pixels; the canvas and the layer have one origin
  bool minifies = false;    // many layer pixels to an output pixel: only an antialiased result is of use
  bool perspective = true;  // convex, so that the effect's perspective renderer draws it
};

// The canvas sizes that every work but the minifying one is measured at.
inline constexpr host::Size kHd{1920, 1080};
inline constexpr host::Size kUhd{3840, 2160};

// Every work at 1920x1080 (factor 1) or 3840x2160 (factor 2). The minifying work, whose sizes are its own, belongs to
// factor 1.
std::vector<Work> worksAt(int factor);

// One work at 1920x1080.
Work hdWork(const std::string& name);

using host::sizeText;

}  // namespace vantorel::bench
