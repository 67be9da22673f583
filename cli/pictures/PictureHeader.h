// What a picture file's header says, whatever its format and the library that reads it.
#pragma once

#include <string>
#include <vector>

#include "cli/pictures/ImageFormats.h"
#include "cli/pictures/Metadata.h"
#include "host/Image.h"

namespace vantorel::cli {

// The positions that windows may reach, both ways. Sums, differences and sizes of two of them fit 32 bits.
constexpr int kWindowLimit = 1 << 29;

// A rectangle as files state it: nothing about it is certain before it has been checked.
struct Window {
  int x = 0;
  int y = 0;
  int width = 0;
  int height = 0;
  bool operator==(const Window&) const = default;
};

struct ChannelHeader {
  std::string name;
  SampleType samples = SampleType::Bits8;
  bool is_subsampled = false;  // has a sample for some pixels only
};

struct PictureHeader {
  std::string format;  // OpenImageIO's name for it: "png", "openexr"
  Window data;         // what the file has pixels of
  Window display;      // the picture's frame
  host::Size tile;     // 0x0 where pixels are kept in rows
  std::vector<ChannelHeader> channels;
  int alpha_channel = -1;       // as the format states it; may be beyond the last channel
  bool straight_alpha = false;  // colour is not multiplied by alpha in the file
  bool is_deep = false;
  bool is_volume = false;
  int part = 0;                    // which of the file's pictures this is, from 0
  std::vector<std::string> parts;  // the names of all parts, empty for one without; none if there is only one
  std::vector<std::string> views;  // of a stereo or multi-view file, over all parts
  int orientation = 1;             // the camera's, 1 to 8; 1 is upright
  Metadata metadata;               // all that the file states
};

// Throws CommandError naming the path unless both windows hold pixels and lie within kWindowLimit of the origin, and
// the tiles have a possible size.
void requireSaneHeader(const PictureHeader& header, const std::string& path);

// The data window in the display window's pixels, for a header that has passed the check. A format without a
// display window shows its whole picture, whatever offset it states; image editors state one in PNG.
host::Rect dataWindow(const PictureHeader& header);

}  // namespace vantorel::cli
