// Frames of the effect, rendered through the embedded host.
#pragma once

#include <memory>

#include "bench/Case.h"
#include "host/Module.h"

namespace vantorel::bench {

// Every workload at every depth and quality on one thread; (a), (c), (f) and (g) at 1920x1080 on two threads too.
void addVantorelFrames(const Effort& effort, const std::shared_ptr<const host::Module>& module);

// The cost of a frame apart from its pixels: frame setup and pre-render alone, and the first and hundredth frames of an
// instance.
void addVantorelSetup(const Effort& effort, const std::shared_ptr<const host::Module>& module);

// An instance with the workload's corners. Throws std::runtime_error with the host's message.
host::Instance instanceFor(const std::shared_ptr<const host::Module>& module, const Workload& workload);

// Draws the workload's picture into the shared canvas. Throws std::runtime_error with the host's message.
void renderFrame(host::Instance& instance, const Workload& workload, host::Depth depth, host::Quality quality,
                 int threads);

}  // namespace vantorel::bench
