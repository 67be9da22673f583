// Conversion to linear light and back, by the colour spaces that files state.
#pragma once

#include <string>

#include "host/Image.h"

namespace vantorel::cli {

// Converts a premultiplied float picture in place; colour is divided by alpha before and multiplied after. An empty
// `from` means sRGB. Throws CommandError naming `input` for a colour space that is not known.
void toLinear(const host::ImageView& picture, const std::string& from, const std::string& input);
void fromLinear(const host::ImageView& picture, const std::string& to, const std::string& input);

// The colour space to write a picture in that was made in linear light from one in `source`: linear for formats that
// hold linear light by convention, else the source's own, or sRGB where that is linear or not stated.
std::string outputColourSpace(const std::string& source, bool format_is_linear);

}  // namespace vantorel::cli
