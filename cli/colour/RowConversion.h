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

  // Converts the colours of `width` RGBA pixels in place; they are not multiplied by alpha, which stays.
  virtual void apply(float* row, int width) const = 0;
};

}  // namespace vantorel::cli
