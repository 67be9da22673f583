// Checks and prefetches input files before they are read.
#pragma once

#include <string>

namespace vantorel::cli {

// Throws CommandError (file failure), naming the path and the system's reason, unless it is a regular file that can be
// opened for reading. `wanted` says what was expected: "a picture file".
void requireReadableFile(const std::string& path, const char* wanted);

// Tells the system to read ahead a file that will be needed soon, if it is a regular one; returns immediately.
void fetchAhead(const std::string& path);

}  // namespace vantorel::cli
