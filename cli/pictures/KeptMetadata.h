// Which attributes of a file carry over to a picture that is made from it.
#pragma once

#include <string>

#include "cli/pictures/ImageFormats.h"
#include "cli/pictures/Metadata.h"

namespace vantorel::cli {

// All attributes, under their common names, except those that describe how the file stores its pixels, such as its
// orientation, compression and tiles.
Metadata keptMetadata(const Metadata& all);

// Throws CommandError (file failure) naming the file that the attributes come from, and the longest of them, where the
// format cannot hold them.
void requireMetadataHeld(const ImageFormat& format, const Metadata& metadata, const std::string& source);

}  // namespace vantorel::cli
