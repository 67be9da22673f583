// What of an OpenEXR plate passes into the picture that is made over it: its other parts, the other channels of its own
// part, and its attributes, all to the bit.
#pragma once

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfForward.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfMultiPartInputFile.h>

#include <string>
#include <vector>

#include "cli/pictures/ImageWriter.h"

namespace vantorel::cli {

class OpenExrSource {
 public:
  // Opens the file that the picture was read from. Throws CommandError naming it.
  explicit OpenExrSource(const PictureOrigin& origin);

  int parts() const { return file_.parts(); }
  int part() const { return origin_.part; }
  const Imf::Header& header(int part) const { return file_.header(part); }

  // The headers of the parts that pass whole, as they are written again.
  Imf::Header passedHeader(int part) const;
  // Copies the packed pixels of a part that passes whole.
  void copyPart(int part, Imf::MultiPartOutputFile& output);

  // The channels of the picture's own part that are not replaced.
  const Imf::ChannelList& otherChannels() const { return others_; }
  // Reads rows [y_begin, y_end) of them, by the file's own count, and adds them to `rows`. They cover columns [x_begin,
  // x_end); what lies outside the plate's data window is zero. The memory is the plate's own, until the next call.
  void readOthers(int x_begin, int x_end, int y_begin, int y_end, Imf::FrameBuffer& rows);

 private:
  const PictureOrigin& origin_;
  Imf::MultiPartInputFile file_;
  Imf::ChannelList others_;
  std::vector<std::vector<char>> memory_;  // of each of them
};

}  // namespace vantorel::cli
