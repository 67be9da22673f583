// Attributes between this command and OpenImageIO.
#pragma once

#include <OpenImageIO/imageio.h>

#include "cli/pictures/Metadata.h"

namespace vantorel::cli {

// Arrays of strings, which no format but OpenEXR has, are left out.
Metadata metadataOf(const OIIO::ImageSpec& spec);

// Adds the attribute to the spec, or puts it in the place of that of its name.
void addAttribute(OIIO::ImageSpec& spec, const Attribute& attribute);

}  // namespace vantorel::cli
