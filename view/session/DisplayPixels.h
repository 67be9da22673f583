// Pictures as a screen shows them: 8 bits a channel, in sRGB.
#pragma once

#include <memory>
#include <string>

#include "cli/shots/Shot.h"
#include "host/Image.h"

namespace vantorel::view {

// Pixels that somebody keeps: premultiplied 8-bit RGBA.
struct DisplayPicture {
  std::shared_ptr<const void> owner;
  host::ConstImageView pixels;
  bool has_alpha = false;  // as its file
};

// Pixels of a shot that has no output: 8-bit ones as they are, without a copy of them; others converted, out of the
// shot's own colour space where `colour` is not null. `name` is the picture's file, for messages.
DisplayPicture displayed(std::shared_ptr<const void> owner, const host::ConstImageView& pixels, cli::ShotColour* colour,
                         const std::string& name);

// Makes every pixel opaque: what it is over black.
void makeOpaque(const host::ImageView& pixels);

}  // namespace vantorel::view
