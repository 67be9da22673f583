// The header of an OpenEXR picture as that of any picture file.
#pragma once

#include <OpenEXR/ImfForward.h>
#include <OpenEXR/ImfMultiPartInputFile.h>

#include <string>
#include <vector>

#include "cli/pictures/PictureHeader.h"

namespace vantorel::cli {

// The header of that part. Within a layer R, G, B and A come before other channels, as OpenImageIO orders them.
PictureHeader pictureHeaderOf(const Imf::MultiPartInputFile& file, int part);

// The names of all parts; empty for one without.
std::vector<std::string> partNames(const Imf::MultiPartInputFile& file);

}  // namespace vantorel::cli
