// A picture file that is open for reading, whatever its format.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/pictures/PictureHeader.h"
#include "host/Image.h"

namespace vantorel::cli {

class ExtraChannels;

// Some of a picture's channels, by their numbers in the header.
struct ChannelRange {
  int first = 0;
  int end = 0;
};

// To be used by one thread at a time.
class PictureInput {
 public:
  PictureInput() = default;
  virtual ~PictureInput() = default;
  PictureInput(const PictureInput&) = delete;
  PictureInput& operator=(const PictureInput&) = delete;

  virtual const PictureHeader& header() const = 0;

  // Reads those channels, at most four, of rows.size.height rows of the data window, `y_begin` being counted from its
  // top, into the first channels of `rows` (four to a pixel), at its depth; where three are read, what the fourth then
  // holds is not defined. A picture that is kept in tiles is read by whole rows of tiles. Throws CommandError naming
  // the file.
  virtual void readRows(int y_begin, ChannelRange channels, const host::ImageView& rows) = 0;

  // Lets the rows that are read from now on bring with them the channels that are none of those named. Null for a
  // format whose other channels pass nowhere.
  virtual std::shared_ptr<const ExtraChannels> keepOthers(const std::vector<std::string>&) { return nullptr; }
};

// A file to read, and what messages call it.
struct InputFile {
  std::string path;
  std::string name;
};

// Opens the file and reads the header of one of its pictures: `part` is a name, or a number from 0; the first where it
// is empty. The header is not checked yet. Throws CommandError (file failure) naming the file.
std::unique_ptr<PictureInput> openPictureInput(const InputFile& file, const std::string& part = "");

// Inputs of a single format each.
std::unique_ptr<PictureInput> openPngInput(const InputFile& file);
// Asks OpenImageIO for what only that understands, such as what cameras note.
std::unique_ptr<PictureInput> openJpegInput(const InputFile& file);
std::unique_ptr<PictureInput> openExrInput(const InputFile& file, const std::string& part);

// The fault of a file that its library does not understand, with the library's reason.
CommandError unreadablePicture(const std::string& path, const std::string& reason);

}  // namespace vantorel::cli
