// Measures how far a picture is from the truth.
#pragma once

#include "bench/quality/Truth.h"
#include "host/Image.h"

namespace vantorel::quality {

// The sum of squared errors over the pixels of a region, each the mean of its four channels.
struct SquaredError {
  double sum = 0;
  std::size_t pixels = 0;

  void add(const SquaredError& other);
  // Peak signal to noise ratio in decibels, the peak being 255; infinite without an error.
  double psnr() const;
};

struct PictureError {
  SquaredError inside;
  SquaredError edges;
  int largest_outside = 0;  // of any channel, 0 to 255, where the truth is transparent

  void add(const PictureError& other);
};

// Compares an 8-bit picture of the layer at that index, alpha first, with the truth. Pixels outside the truth's frame
// are compared too.
PictureError compare(const host::ConstImageView& picture, const Truth& truth, std::size_t layer);

}  // namespace vantorel::quality
