// Whether the tools that are compared draw the same picture.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/Module.h"

namespace vantorel::bench {

// For each peer's works that the effect draws with a perspective map: "work tool" and how near the peer's picture comes
// to the effect's at high quality, as a peak signal-to-noise ratio over the whole canvas at 16 bits.
std::vector<std::pair<std::string, std::string>> agreements(const std::shared_ptr<const host::Module>& module);

}  // namespace vantorel::bench
