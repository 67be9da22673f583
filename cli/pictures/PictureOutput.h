// A picture on its way into a file, whatever its format.
#pragma once

#include <memory>
#include <string>

#include "cli/base/CommandError.h"
#include "cli/pictures/ImageWriter.h"
#include "cli/pictures/OutputFile.h"

namespace vantorel::cli {

class PictureOutput {
 public:
  PictureOutput() = default;
  virtual ~PictureOutput() = default;
  PictureOutput(const PictureOutput&) = delete;
  PictureOutput& operator=(const PictureOutput&) = delete;

  // Writes rows of premultiplied RGBA; they follow those written before, `y_begin` being counted from the picture's
  // top. Throws CommandError naming the file.
  virtual void writeRows(int y_begin, const host::ConstImageView& rows) = 0;

  // Writes what follows the last row. Throws CommandError naming the file.
  virtual void close() = 0;
};

// Loads what the format is written by, if that is not loaded: some of those libraries end the process where they lack
// memory, and must not leave a file behind.
void loadWriterOf(const ImageFormat& format);

// Begins a picture in the file: `path` is what messages name it. Format, picture and file must outlive it. Throws
// CommandError naming the path.
std::unique_ptr<PictureOutput> openPictureOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                                 const OutputPicture& picture);

// Outputs of a single format each.
std::unique_ptr<PictureOutput> openPngOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                             const OutputPicture& picture);
// Asks OpenImageIO where the picture's metadata is more than a few texts.
std::unique_ptr<PictureOutput> openJpegOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                              const OutputPicture& picture);
std::unique_ptr<PictureOutput> openExrOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                             const OutputPicture& picture);

// The fault of a file that its library cannot write, with the library's reason.
CommandError unwritablePicture(const std::string& path, const std::string& reason);

}  // namespace vantorel::cli
