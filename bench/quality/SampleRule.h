// The sample counts that the host's rule chooses, for plotting.
#pragma once

#include <string>

namespace vantorel::quality {

// A line of CSV for every turn (0 to 90 degrees) and shrinking (1/4 to 32 times): degrees,shrunk,samples.
std::string sampleRuleCsv();

}  // namespace vantorel::quality
