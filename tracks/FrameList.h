// Frames as messages list them.
#pragma once

#include <string>
#include <vector>

namespace vantorel::tracks {

// "frame 12", "frames 1-5, 9 and 12-14"; after five runs, "and 20 more". Ascending frames, at least one.
std::string frameList(const std::vector<double>& frames);

}  // namespace vantorel::tracks
