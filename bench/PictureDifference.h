// How far the pictures of the tools that are compared differ.
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/Module.h"

namespace vantorel::bench {

// One entry per peer and workload that the effect draws in perspective: "workload tool", and the peak signal-to-noise
// ratio ("48.1 dB") of the peer's picture against the effect's at high quality, over the whole canvas at 16 bits.
std::vector<std::pair<std::string, std::string>> pictureDifferences(const std::shared_ptr<const host::Module>& module);

}  // namespace vantorel::bench
