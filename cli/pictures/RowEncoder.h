// Conversion of rows to what a file holds, where OpenImageIO's own conversion is not exact enough.
#pragma once

#include <cstddef>
#include <vector>

#include "cli/pictures/ImageFormats.h"
#include "host/Image.h"

namespace vantorel::cli {

// Divides colour by alpha, and rounds floats to the integers of a file. Keeps a buffer for the rows of one picture.
class RowEncoder {
 public:
  // Pixels of the depth become samples of the type. Conversions other than float to integer are left to the writer.
  RowEncoder(host::Depth depth, SampleType samples, bool unpremultiply)
      : depth_(depth),
        samples_(samples),
        unpremultiply_(unpremultiply),
        quantise_(depth == host::Depth::Float && samples <= SampleType::Bits16) {}

  // Rows of premultiplied RGBA in one block of memory.
  struct Rows {
    const std::byte* data = nullptr;
    std::ptrdiff_t row_bytes = 0;
    bool quantised = false;  // of the file's type rather than of the depth
  };

  // The encoded rows; valid until the next call and while the given rows are.
  Rows encode(const host::ConstImageView& rows);

 private:
  template <typename Channel>
  void copyRow(const std::byte* row, int width, std::byte* out) const;
  void quantiseRow(const std::byte* row, int width, std::byte* out);

  host::Depth depth_;
  SampleType samples_;
  bool unpremultiply_;
  bool quantise_;
  std::vector<std::byte> encoded_;
  std::vector<float> floats_;
};

}  // namespace vantorel::cli
