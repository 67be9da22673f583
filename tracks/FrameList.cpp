#include "tracks/FrameList.h"

#include <fmt/format.h>

#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

constexpr std::size_t kMaxRuns = 5;

}  // namespace

std::string frameList(const std::vector<double>& frames) {
  std::string text = frames.size() == 1 ? "frame " : "frames ";
  std::size_t runs = 0;
  for (std::size_t first = 0; first < frames.size();) {
    std::size_t last = first;
    while (last + 1 < frames.size() && frames[last + 1] == frames[last] + 1.0) {
      ++last;
    }
    if (runs == kMaxRuns) {
      return text + fmt::format(" and {} more", frames.size() - first);
    }
    if (runs > 0) {
      text += last + 1 == frames.size() ? " and " : ", ";
    }
    text += printed(frames[first], 3);
    if (last > first) {
      text += '-';
      text += printed(frames[last], 3);
    }
    ++runs;
    first = last + 1;
  }
  return text;
}

}  // namespace vantorel::tracks
