// What TIFF files state that OpenImageIO neither reads nor writes: a position, a film's speed, and XMP.
#pragma once

#include <string>

#include "cli/pictures/Metadata.h"

namespace vantorel::cli {

// Adds what that part of the file states, as far as it can be read.
void addTiffMetadata(const std::string& path, int part, Metadata& metadata);

// Adds it to a file that is otherwise complete. Returns whether that could be written.
bool writeTiffMetadata(const std::string& path, const Metadata& metadata);

}  // namespace vantorel::cli
