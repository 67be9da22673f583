// Metadata blocks in JPEG and PNG files that the libraries for these formats leave to the caller.
#pragma once

#include <cstddef>
#include <string>

#include "cli/pictures/ImageFormats.h"
#include "cli/pictures/Metadata.h"
#include "cli/pictures/OutputFile.h"

namespace vantorel::cli {

// Empty if the file has none.
struct JpegBlocks {
  std::string exif;  // starting at its TIFF header
  std::string xmp;
};

JpegBlocks readJpegBlocks(const std::string& path);

// The capacity of a JPEG segment, in bytes.
constexpr std::size_t kLongestXmpOfJpeg = 65502;

// Puts what the format's writer leaves out into a picture that is otherwise complete: XMP into JPEG, and into PNG the
// EXIF that is more than texts. Failures are noted in the file.
void insertBlocks(OutputFile& file, const ImageFormat& format, const Metadata& metadata);

}  // namespace vantorel::cli
