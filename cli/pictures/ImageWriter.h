// Writes premultiplied RGBA to picture files.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "cli/pictures/Encoding.h"
#include "cli/pictures/ImageFormats.h"
#include "cli/pictures/Metadata.h"
#include "cli/pictures/Picture.h"
#include "host/Image.h"

namespace vantorel::cli {

struct OutputPicture {
  host::ConstImageView pixels;  // premultiplied RGBA
  host::Rect window;            // where the pixels lie in the frame; kept by formats that hold a data window
  host::Size frame;             // the display window; its upper left corner is (0, 0)
  bool has_alpha = true;        // without, every pixel is opaque and only R, G and B are written
  SampleType samples = SampleType::Bits8;
  std::shared_ptr<const Metadata> metadata;  // null for none
  std::uint64_t settings = 0;                // a hash of what the picture was made with, to be recorded in the file
  Encoding encoding{};
  // The file that the picture continues; null for none.
  std::shared_ptr<const PictureOrigin> origin{};
  // Whether the other parts and channels of that file pass into this one, where both are OpenEXR.
  bool passes_plate = false;
};

// Writes the picture whole or not at all, following the format's alpha convention; a format without alpha gets the
// picture over black. Throws CommandError naming the path, or interrupted when the token is triggered.
void writePicture(const std::string& path, const ImageFormat& format, const OutputPicture& picture,
                  const std::stop_token& stop);

}  // namespace vantorel::cli
