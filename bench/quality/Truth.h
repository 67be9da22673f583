// The exact picture: the mean over each pixel of the bilinearly interpolated layer, whose colours are extended beyond
// the centres of its border pixels, cut off sharply at its outline.
#pragma once

#include <span>
#include <vector>

#include "bench/quality/Layer.h"
#include "bench/quality/Mapping.h"
#include "bench/quality/Outline.h"

namespace vantorel::quality {

// Samples per pixel along each axis.
inline constexpr int kInsideSamples = 16;
inline constexpr int kEdgeSamples = 96;

// Pixels of `frame`, rows from the top; outside it everything is transparent.
struct Truth {
  host::Rect frame;
  std::vector<Region> regions;
  std::vector<float> alpha;              // 0 to 255
  std::vector<std::vector<float>> grey;  // of each layer, 0 to 255, premultiplied

  // The index of a canvas pixel that lies in the frame.
  std::size_t index(int x, int y) const {
    return static_cast<std::size_t>(y - frame.top) * static_cast<std::size_t>(frame.width()) +
           static_cast<std::size_t>(x - frame.left);
  }
};

// The frame and regions of a truth, with all pixels transparent.
Truth blankTruth(std::size_t layers, const Ring& ring, host::Size canvas);

// The truths of the layers, which all have the same size, drawn onto the ring by the mapping. Uses all processors.
Truth truthOf(std::span<const Layer> layers, const Mapping& mapping, const Ring& ring, host::Size canvas);

}  // namespace vantorel::quality
