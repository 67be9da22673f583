// Reads the colour chunks of a PNG file.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "cli/colour/ColourMatrix.h"

namespace vantorel::cli {

// Code points of ITU-T H.273.
struct CodingPoints {
  std::uint8_t primaries = 0;
  std::uint8_t transfer = 0;
};

struct PngColour {
  std::optional<CodingPoints> cicp;
  bool has_srgb = false;
  std::optional<double> gamma;  // of gAMA: the exponent that converts light to code values
  std::optional<Primaries> primaries;
};

// Empty for other files, and for those that cannot be opened or end before their pixels.
std::optional<PngColour> readPngColour(const std::string& path);

}  // namespace vantorel::cli
