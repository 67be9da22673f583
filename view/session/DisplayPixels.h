// Pictures for the screen: 8 bits a channel, in sRGB.
#pragma once

#include <memory>
#include <string>

#include "cli/shots/Shot.h"
#include "host/Image.h"

namespace vantorel::view {

// Premultiplied 8-bit RGBA pixels, kept alive by `owner`.
struct DisplayPicture {
  std::shared_ptr<const void> owner;
  host::ConstImageView pixels;
  bool has_alpha = false;  // whether its file has alpha
};

// Converts a shot's pixels for display. 8-bit pixels are used as they are, without a copy; others are converted, from
// the shot's working colour space if `colour` is not null. The shot must have no output. `name` is the picture's file,
// for messages.
DisplayPicture displayed(std::shared_ptr<const void> owner, const host::ConstImageView& pixels, cli::ShotColour* colour,
                         const std::string& name);

// Makes every pixel opaque by compositing it over black.
void makeOpaque(const host::ImageView& pixels);

}  // namespace vantorel::view
