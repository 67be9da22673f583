// The workloads: a layer, a canvas, and the quadrilateral of the canvas that the layer is drawn onto.
#pragma once

#include <string>
#include <vector>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::bench {

struct Workload {
  std::string name;  // "a" to "g"
  host::Size layer;
  host::Size canvas;
  host::Corners corners;    // pixels; the canvas and the layer have one origin
  bool minifies = false;    // many layer pixels per output pixel: only an antialiased result is usable
  bool perspective = true;  // convex, so that the effect's perspective renderer draws it
};

// The canvas sizes at which all workloads except the minifying one are measured.
inline constexpr host::Size kHd{1920, 1080};
inline constexpr host::Size kUhd{3840, 2160};

// Every workload at 1920x1080 (factor 1) or 3840x2160 (factor 2). The minifying workload has its own sizes and exists
// only at factor 1.
std::vector<Workload> workloadsAt(int factor);

// One workload at 1920x1080.
Workload hdWorkload(const std::string& name);

using host::sizeText;

}  // namespace vantorel::bench
