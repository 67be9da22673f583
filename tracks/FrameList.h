// Formats lists of frames for messages.
#pragma once

#include <string>
#include <vector>

namespace vantorel::tracks {

// "frame 12", "frames 1-5, 9 and 12-14"; after five ranges, "and 20 more". Frames must be ascending, and at least one.
std::string frameList(const std::vector<double>& frames);

}  // namespace vantorel::tracks
