// How many threads the libraries that read and write picture files may use.
#pragma once

#include <optional>

namespace vantorel::cli {

// With several pictures at a time each is decoded and encoded by its own thread; a single one may use them all. Holds
// for the process.
void limitCodecThreads(unsigned threads, bool one_picture_at_a_time);

// The threads that one picture may use, at least 1; nothing where no limit has been given.
std::optional<unsigned> codecThreads();

// Gives OpenEXR's own library that many. To be called before a file is opened by it.
void startOpenExrThreads();

}  // namespace vantorel::cli
