// The EXIF of pictures that no camera took: texts, and whether the colours are sRGB.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "cli/pictures/Metadata.h"

namespace vantorel::cli {

// What a block states, from its TIFF header on. Nothing for a block that states more, or is damaged.
std::optional<Metadata> readPlainExif(std::string_view block);

// The metadata as such a block. Nothing if it holds something that such a block cannot.
std::optional<std::string> writePlainExif(const Metadata& metadata);

}  // namespace vantorel::cli
