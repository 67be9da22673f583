// A picture in memory, with what its file said of it.
#pragma once

#include <memory>
#include <optional>
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
  host::Image pixels;                // premultiplied RGBA
  std::optional<host::Rect> crop{};  // the part of the pixels that is shown; unset: all
  PictureInfo info;
  std::string colour_space;  // as the file states it or its format implies, for example "sRGB"; or empty
  std::shared_ptr<const Metadata> metadata;  // what a picture made from this one keeps
};

// The pixels that are shown, in place.
inline host::ConstImageView shownPixels(const Picture& picture) {
  host::ConstImageView view = picture.pixels.view();
  if (picture.crop) {
    view.data = view.pixel(picture.crop->left, picture.crop->top);
    view.size = {picture.crop->width(), picture.crop->height()};
  }
  return view;
}

}  // namespace vantorel::cli
