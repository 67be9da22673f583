// What passes from an OpenEXR plate into the picture that is made over it, to the bit and without being decompressed:
// its other parts, and its attributes.
#pragma once

#include <OpenEXR/ImfForward.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfMultiPartInputFile.h>

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

 private:
  const PictureOrigin& origin_;
  Imf::MultiPartInputFile file_;
};

}  // namespace vantorel::cli
