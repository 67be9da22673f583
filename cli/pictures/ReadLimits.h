// What a picture file may demand before it is refused: a few bytes can state a picture of any size.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>

#include "host/Image.h"

namespace vantorel::cli {

struct ReadLimits {
  // Of the picture and of what its file stores of it, in millions. The default holds the largest layer that the effect
  // takes at once, 32768x32768.
  double megapixels = 1100.0;
  // From opening a file to its last row, looked at between stretches of rows.
  std::chrono::duration<double> time{600.0};
};

// The limits as the environment raises or lowers them: VANTOREL_MAX_MEGAPIXELS and VANTOREL_MAX_READ_SECONDS. Throws
// CommandError (bad argument) naming the variable for a value that is no positive number.
ReadLimits readLimits();

// Throws CommandError naming the path where a picture of that size is larger than the limits have it. `what` is what
// has the size, such as "the picture".
void requirePixelsWithin(const ReadLimits& limits, const std::string& path, const char* what, host::Size size);

// Measures the time that the reading of one file takes.
class ReadClock {
 public:
  ReadClock(const ReadLimits& limits, std::string path);

  // Throws CommandError naming the path once the time is over.
  void require() const;

 private:
  std::chrono::duration<double> limit_;
  std::string path_;
  std::chrono::steady_clock::time_point begin_;
};

}  // namespace vantorel::cli
