// Small picture files, pixel by pixel.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/Image.h"

namespace vantorel::cli {

class PixelFile {
 public:
  // 8 bits to a channel; as many channels as `pixel` has.
  static PixelFile filled(host::Size size, const std::vector<int>& pixel);
  // The samples as they are in the file; nothing is multiplied or divided by alpha.
  static PixelFile read(const std::string& path);

  void write(const std::string& path) const;

  host::Size size() const { return size_; }
  void set(int x, int y, const std::vector<int>& pixel);
  // 0 to 1, a value for each channel.
  std::vector<double> at(int x, int y) const;

 private:
  PixelFile(host::Size size, int channels);
  std::size_t index(int x, int y) const;

  host::Size size_;
  std::size_t channels_;
  std::vector<float> samples_;
};

void expectNear(const std::vector<double>& pixel, const std::vector<double>& expected, double tolerance);

}  // namespace vantorel::cli
