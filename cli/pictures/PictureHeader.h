// What a picture file's header says of its pixels, checked once before anything is computed with it.
#pragma once

#include "cli/pictures/OpenImageIoFwd.h"

#include <string>

#include "host/Image.h"

namespace vantorel::cli {

// The positions that windows may reach, both ways. Sums, differences and sizes of two of them fit 32 bits.
constexpr int kWindowLimit = 1 << 29;

// Throws CommandError naming the path unless both windows hold pixels and lie within kWindowLimit of the origin, and
// the tiles have a possible size.
void requireSaneHeader(const OIIO::ImageSpec& spec, const std::string& path);

// The data window in the display window's pixels, for a header that has passed the check. A format without a
// display window shows its whole picture, whatever offset it states; image editors state one in PNG. `format` is
// OpenImageIO's name for it.
host::Rect dataWindow(const OIIO::ImageSpec& spec, const std::string& format);

// The camera's orientation, 1 to 8; 1 (upright) where the file states none or one that does not exist.
int orientationOf(const OIIO::ImageSpec& spec);

}  // namespace vantorel::cli
