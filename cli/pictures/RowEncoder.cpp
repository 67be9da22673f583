#include "cli/pictures/RowEncoder.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

template <typename Channel>
void RowEncoder::copyRow(const std::byte* row, int width, std::byte* out) const {
  std::memcpy(out, row, static_cast<std::size_t>(width) * 4 * sizeof(Channel));
  unpremultiplyRow(reinterpret_cast<Channel*>(out), width);
}

void RowEncoder::quantiseRow(const std::byte* row, int width, std::byte* out) {
  const auto* values = reinterpret_cast<const float*>(row);
  floats_.assign(values, values + 4 * static_cast<std::size_t>(width));
  if (unpremultiply_) {
    unpremultiplyRow(floats_.data(), width);
  }
  if (samples_ == SampleType::Bits8) {
    std::transform(floats_.begin(), floats_.end(), reinterpret_cast<std::uint8_t*>(out), quantise<std::uint8_t>);
  } else {
    std::transform(floats_.begin(), floats_.end(), reinterpret_cast<std::uint16_t*>(out), quantise<std::uint16_t>);
  }
}

RowEncoder::Rows RowEncoder::encode(const host::ConstImageView& rows) {
  if (!unpremultiply_ && !quantise_) {
    return {rows.data, rows.row_bytes, false};
  }
  const std::size_t pixel_bytes = quantise_ ? (samples_ == SampleType::Bits8 ? 4 : 8) : host::bytesPerPixel(depth_);
  const std::size_t row_bytes = pixel_bytes * static_cast<std::size_t>(rows.size.width);
  encoded_.resize(row_bytes * static_cast<std::size_t>(rows.size.height));
  for (int y = 0; y < rows.size.height; ++y) {
    std::byte* const out = encoded_.data() + row_bytes * static_cast<std::size_t>(y);
    if (quantise_) {
      quantiseRow(rows.row(y), rows.size.width, out);
    } else if (depth_ == host::Depth::Bits8) {
      copyRow<std::uint8_t>(rows.row(y), rows.size.width, out);
    } else if (depth_ == host::Depth::Bits16) {
      copyRow<std::uint16_t>(rows.row(y), rows.size.width, out);
    } else {
      copyRow<float>(rows.row(y), rows.size.width, out);
    }
  }
  return {encoded_.data(), static_cast<std::ptrdiff_t>(row_bytes), quantise_};
}

}  // namespace vantorel::cli
