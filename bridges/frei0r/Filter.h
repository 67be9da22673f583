// One instance of the frei0r filter: frames of one size, drawn by the embedded host.
#pragma once

#include <cstdint>
#include <memory>

#include "bridges/frei0r/Parameters.h"
#include "host/Instance.h"

namespace vantorel::frei0r {

// Frames are RGBA of 8 bits a channel with straight alpha, rows from the top without padding. A filter draws on the
// thread that calls it, one frame at a time; different filters draw at the same time. Nothing is allocated after the
// first frame of each kind (opaque or not), and no file is touched.
class Filter {
 public:
  // Null if a side is 0 or too long, memory runs out, or the effect's setup fails.
  static std::unique_ptr<Filter> create(unsigned width, unsigned height);

  Parameters parameters;

  // Draws `in` onto the corners. Both have `width * height` pixels and may be the same memory. Corners that cannot be
  // drawn (not numbers, or too far away) give a frame that is all outside.
  void draw(const std::uint32_t* in, std::uint32_t* out);

 private:
  Filter(std::shared_ptr<const host::Module> module, host::Size size);
  // Returns the rows that were drawn; none if the layer cannot be drawn.
  host::Rect drawLayer(const host::ConstImageView& layer, const host::ImageView& output);
  // Copies the picture to layer_. An empty view if memory runs out.
  host::ConstImageView premultiplied(const std::uint32_t* in);
  // Applies the opacity, then straight alpha or an opaque outside. Rows above and below `drawn` are transparent.
  void finish(const host::ImageView& output, const host::Rect& drawn) const;

  host::Instance instance_;
  host::Size size_;
  host::Image layer_;  // the premultiplied picture, if `in` is not opaque or is also the output
};

}  // namespace vantorel::frei0r
