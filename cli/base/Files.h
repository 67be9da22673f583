// Input files before they are read.
#pragma once

#include <string>

namespace vantorel::cli {

// Throws CommandError (file failure) naming the path and the system's own reason unless it is a regular file that can
// be opened for reading. `wanted` is what to give instead: "a picture file".
void requireReadableFile(const std::string& path, const char* wanted);

// Lets the system fetch a file that is going to be read soon, if it is a regular one; returns at once.
void fetchAhead(const std::string& path);

}  // namespace vantorel::cli
