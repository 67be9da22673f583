// Renders a shot's frames, a bounded number of them at the same time, so that one frame is read while another is
// rendered and a third is written.
#pragma once

#include <stop_token>

#include "cli/base/ExitCode.h"
#include "cli/shots/Progress.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Renders every frame and reports each as the options say. The first failure ends the run after the frames under way
// are finished, and is thrown as CommandError; when keeping going, failures are reported as they come and listed at the
// end, and the result is EffectFailed.
ExitCode renderFrames(const Shot& shot, const std::stop_token& stop, Progress& progress);

}  // namespace vantorel::cli
