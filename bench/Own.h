// The effect through the embedded host.
#pragma once

#include <memory>

#include "bench/Case.h"
#include "host/Module.h"

namespace vantorel::bench {

// Every work at every depth and quality, at one thread, and (a), (c), (f) and (g) at 1920x1080 at two.
void addOwnFrames(const Effort& effort, const std::shared_ptr<const host::Module>& module);

// What a frame costs beside its pixels: frame setup and pre-render alone, and the first and the hundredth frame of an
// instance.
void addOwnSetup(const Effort& effort, const std::shared_ptr<const host::Module>& module);

// An instance that has the work's corners. Throws std::runtime_error with the host's message.
host::Instance instanceFor(const std::shared_ptr<const host::Module>& module, const Work& work);

// Draws the work's picture into the shared canvas. Throws std::runtime_error with the host's message.
void renderFrame(host::Instance& instance, const Work& work, host::Depth depth, host::Quality quality, int threads);

}  // namespace vantorel::bench
