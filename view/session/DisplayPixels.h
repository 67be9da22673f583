// Pictures as a screen shows them: 8 bits a channel, in sRGB where the pixels are in linear light.
#pragma once

#include <memory>
#include <string>

#include "cli/pictures/Picture.h"
#include "host/Image.h"

namespace vantorel::view {

// Pixels that somebody keeps: premultiplied 8-bit RGBA.
struct DisplayPicture {
  std::shared_ptr<const void> owner;
  host::ConstImageView pixels;
};

// Whether values of such a picture are linear light.
bool holdsLinearLight(const cli::Picture& picture, bool shot_is_linear);

// 8-bit pixels as they are, without a copy of them; others converted. `name` is the picture's file, for messages.
DisplayPicture displayed(std::shared_ptr<const void> owner, const host::ConstImageView& pixels, bool is_linear,
                         const std::string& name);

// Makes every pixel opaque: what it is over black.
void makeOpaque(const host::ImageView& pixels);

}  // namespace vantorel::view
