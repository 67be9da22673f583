// A picture in memory, with what its file said of it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/pictures/ImageFormats.h"
#include "cli/pictures/Metadata.h"
#include "host/Image.h"

namespace vantorel::cli {

// Which of a file's pictures, and which of its channels.
struct PictureSelection {
  std::string part;   // its name, or its number from 0; empty: the first
  std::string layer;  // what the channels' names begin with, before a dot; empty: nothing
};

struct ColourFacts;
class ExtraChannels;

// What the head of a picture file tells.
struct PictureInfo {
  host::Size size;  // after its orientation has been applied
  SampleType samples = SampleType::Bits8;
  bool has_alpha = false;
  bool is_unassociated = false;      // has an alpha that its colour is not multiplied by in the file
  std::string format{};              // OpenImageIO's name for it: "png", "openexr"
  host::Rect data{};                 // what the file has pixels of, in the picture's own; may reach beyond it
  std::vector<std::string> views{};  // of a stereo or multi-view file
  double extra_bytes = 0.0;          // that the file's other channels take in memory where they are asked for
  std::shared_ptr<const ColourFacts> colour{};  // what it says of its colours
};

// The file that a picture is part of, and what is replaced of it in a file that is made from it.
struct PictureOrigin {
  std::string path;
  std::string name;  // what messages call it
  bool is_openexr = false;
  int part = 0;
  int display_x = 0;  // where the display window lies by the file's own count
  int display_y = 0;
  std::vector<std::string> replaced;           // the names of the channels that make the picture
  std::vector<std::string> written;            // those of the channels R, G, B and A that take their place
  std::shared_ptr<const ExtraChannels> extra;  // the channels that are not replaced, if they were asked for
};

struct Picture {
  host::Image pixels;                // premultiplied RGBA
  host::Rect area{};                 // what they cover: the picture, or with overscan more
  std::optional<host::Rect> crop{};  // the part of the pixels that is shown; unset: all
  PictureInfo info;
  std::shared_ptr<const Metadata> metadata;  // what a picture made from this one keeps
  std::shared_ptr<const PictureOrigin> origin;
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
