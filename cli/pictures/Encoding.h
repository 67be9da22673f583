// How files are compressed: the choices that formats leave to the writer.
#pragma once

#include <optional>
#include <string>

#include "cli/pictures/ImageFormats.h"

namespace vantorel::cli {

struct Compression {
  std::string name;             // in lower case, "zip"; empty: the plate's where it is of the same format, else usual
  std::optional<double> level;  // of effort, or for dwaa and dwab of loss
};

struct Encoding {
  Compression compression;
  std::optional<int> jpeg_quality;  // 1 to 100
  std::optional<int> png_level;     // 0 (uncompressed) to 9 (smallest)
};

// "zip" or "zip:4". Throws CommandError (bad argument) naming the option where no format has a compression of that
// name, or the level is none of it.
Compression parseCompression(const std::string& option, const std::string& text);

// Throws CommandError (bad argument) naming the option for a choice that the format does not have.
void requireEncodingHeld(const ImageFormat& format, const Encoding& encoding);

}  // namespace vantorel::cli
