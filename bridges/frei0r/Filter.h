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
  // Null where a side is 0 or too long, where memory is lacking or the effect fails its setup.
  static std::unique_ptr<Filter> create(unsigned width, unsigned height);

  Parameters parameters;

  // Draws `in` onto the corners into `out`, `width * height` pixels each, which may be the same. What cannot be drawn
  // (corners that are not numbers or too far away) leaves the outside alone.
  void draw(const std::uint32_t* in, std::uint32_t* out);

 private:
  Filter(std::shared_ptr<const host::Module> module, host::Size size);
  // The rows that hold the layer; none where it cannot be drawn.
  host::Rect drawLayer(const host::ConstImageView& layer, const host::ImageView& output);
  // A copy in layer_; an empty view where memory is lacking.
  host::ConstImageView premultiplied(const std::uint32_t* in);
  // Opacity, and straight alpha or black outside, of the rows from `drawn.top` to `drawn.bottom`; the others are clear.
  void finish(const host::ImageView& output, const host::Rect& drawn) const;

  host::Instance instance_;
  host::Size size_;
  host::Image layer_;  // premultiplied, where `in` is not opaque or is drawn over
};

}  // namespace vantorel::frei0r
