// A picture in memory, with what its file said of it.
#pragma once

#include <memory>
#include <string>

#include "cli/pictures/ImageFormats.h"
#include "host/Image.h"

namespace vantorel::cli {

// What the head of a picture file tells.
struct PictureInfo {
  host::Size size;  // after its orientation has been applied
  SampleType samples = SampleType::Bits8;
  bool has_alpha = false;
  bool is_unassociated = false;  // has an alpha that its colour is not multiplied by in the file
};

struct Metadata;

struct Picture {
  host::Image pixels;  // premultiplied RGBA
  PictureInfo info;
  std::string colour_space;  // as the file states it or its format implies, for example "sRGB"; or empty
  std::shared_ptr<const Metadata> metadata;  // what a picture made from this one keeps
};

}  // namespace vantorel::cli
