// A picture on its way into a file, whatever its format.
#pragma once

#include <memory>

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

  // Lets go of a picture of which only the rows above `rows_written` have been written.
  virtual void abandon(int rows_written) { static_cast<void>(rows_written); }
};

// Begins a picture in the file: `path` is what messages name it. Format, picture and file must outlive it.
std::unique_ptr<PictureOutput> openImageIoOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                                 const OutputPicture& picture);
std::unique_ptr<PictureOutput> openExrOutput(const std::string& path, OutputFile& file, const OutputPicture& picture);

}  // namespace vantorel::cli
