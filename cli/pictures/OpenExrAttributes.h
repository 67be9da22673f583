// Attributes between OpenEXR's header and those of all formats.
#pragma once

#include <OpenEXR/ImfHeader.h>

#include <span>

#include "cli/pictures/Metadata.h"

namespace vantorel::cli {

// What the header states, under the names and with the types that OpenImageIO has for it. Lists of texts, and
// what has no such type, are left out.
Metadata attributesOf(const Imf::Header& header);

// Adds the attributes, those that OpenEXR has names of its own for under these. What it has no type for is left out.
void addAttributes(Imf::Header& header, const Metadata& metadata);

// A copy without the attributes of these names. OpenEXR's own erase() loses the attribute's memory.
Imf::Header without(const Imf::Header& header, std::span<const char* const> names);

}  // namespace vantorel::cli
