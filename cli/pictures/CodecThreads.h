// How many threads the libraries that read and write picture files may use.
#pragma once

namespace vantorel::cli {

// With several pictures at a time each is decoded and encoded by its own thread; a single one may use them all. Holds
// for the process.
void limitCodecThreads(unsigned threads, bool one_picture_at_a_time);

}  // namespace vantorel::cli
