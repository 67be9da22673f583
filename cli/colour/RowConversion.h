// A step of a colour conversion.
#pragma once

namespace vantorel::cli {

// Safe to use from several threads.
class RowConversion {
 public:
  RowConversion() = default;
  virtual ~RowConversion() = default;
  RowConversion(const RowConversion&) = delete;
  RowConversion& operator=(const RowConversion&) = delete;

  // Converts the colours of `width` straight-alpha RGBA pixels in place; leaves alpha unchanged.
  virtual void apply(float* row, int width) const = 0;
};

}  // namespace vantorel::cli
