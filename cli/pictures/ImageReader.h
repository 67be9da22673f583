// Reads picture files into premultiplied RGBA.
#pragma once

#include <memory>
#include <optional>
#include <stop_token>
#include <string>

#include "cli/pictures/Picture.h"
#include "cli/pictures/SparePixels.h"

namespace vantorel::cli {

// How the alpha of a file is understood.
enum class AlphaReading {
  AsStated,       // as its metadata or its format has it
  Straight,       // colours are to be multiplied by it
  Premultiplied,  // colours are taken as they are
  Ignored         // the picture is opaque, its colours as they are
};

struct ReadingOptions {
  AlphaReading alpha = AlphaReading::AsStated;
  PictureSelection selection{};
  bool keep_extra = false;               // an OpenEXR file's other channels are read with the picture
  bool keep_overscan = false;            // the pixels cover what the file has of them beyond the picture too
  std::shared_ptr<SparePixels> spare{};  // where to take memory from; null: the system's
};

// Reads the head of the file. Throws CommandError (file failure) naming the path.
PictureInfo probePicture(const std::string& path, const ReadingOptions& options = {});

// Reads the file's picture at that depth: grey spread to RGB, an absent alpha opaque, colour premultiplied, a
// camera's orientation applied, a data window placed in its display window (what lies beyond is cropped, what is not
// covered transparent). Throws CommandError naming the path for a file that cannot be read whole, or whose channels
// are no picture; interrupted when the token is triggered.
Picture readPicture(const std::string& path, host::Depth depth, const std::stop_token& stop,
                    const ReadingOptions& options = {});

// Reads the picture at 8 bits. Nothing where a pixel is partly transparent; reads little further than the first of
// them. Throws as readPicture does.
std::optional<Picture> readUnlessSoft(const std::string& path, const ReadingOptions& options = {});

// Whether the file is a picture of that size that was not cut short.
bool isWholePicture(const std::string& path, host::Size size);

}  // namespace vantorel::cli
