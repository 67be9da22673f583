// What needs OpenImageIO, in a module of its own: loading it takes longer than most pictures do, and the most frequent
// formats are read and written without it.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "cli/base/OwnModules.h"
#include "cli/pictures/Enlarge.h"
#include "cli/pictures/PictureInput.h"
#include "cli/pictures/PictureOutput.h"

namespace vantorel::cli {

// Any format that OpenImageIO knows. As openPictureInput.
std::unique_ptr<PictureInput> openImageIoInput(const InputFile& file, const std::string& part);
// As openPngOutput, for the format's writer.
std::unique_ptr<PictureOutput> openImageIoOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                                 const OutputPicture& picture);
// A segment of a JPEG file that holds metadata.
struct JpegSegment {
  int marker = 0;     // JPEG_APP0 + 1 to 15, or JPEG_COM
  std::string bytes;  // what follows the length
};
// All segments that OpenImageIO writes for the picture, except the resolution and the profile.
std::vector<JpegSegment> jpegSegmentsByImageIo(const ImageFormat& format, const OutputPicture& picture);
// As enlarged().
host::Image enlargedByImageIo(const host::ConstImageView& picture, host::Size size, EnlargeFilter filter);
// Adds what can be understood of a block of EXIF (from its TIFF header on) or of a packet of XMP.
void addExif(std::string_view block, Metadata& metadata);
void addXmp(const std::string& packet, Metadata& metadata);
// The metadata as a block of EXIF, from its TIFF header on.
std::string exifOf(const Metadata& metadata);
// The threads that the library may use for one picture, at least 1.
void limitImageIoThreads(unsigned threads);

struct FormatLibrary : ModuleTable {
  decltype(&openImageIoInput) open_input;
  decltype(&openImageIoOutput) open_output;
  decltype(&jpegSegmentsByImageIo) jpeg_segments;
  decltype(&enlargedByImageIo) enlarged;
  decltype(&addExif) add_exif;
  decltype(&addXmp) add_xmp;
  decltype(&exifOf) exif_of;
  decltype(&limitImageIoThreads) limit_threads;
};

constexpr const char* kFormatModuleName = "vantorel-formats.so";

// What the module exports, under this name: a function that returns the table.
constexpr const char* kFormatLibraryName = "vantorelFormatLibrary";

// Loads the module at the first call. Throws CommandError (file failure) naming it where it cannot be loaded.
const FormatLibrary& formatLibrary();

}  // namespace vantorel::cli
