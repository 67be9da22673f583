// Renders a shot's frames, a limited number of them at the same time, so that one frame can be read while another is
// rendered and a third is written.
#pragma once

#include <stop_token>

#include "cli/base/ExitCode.h"
#include "cli/shots/Progress.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Renders all frames and reports each one as the options say. The first failure ends the run, after the frames in
// progress have finished, and is thrown as CommandError. With --keep-going, failures are reported as they occur and
// listed at the end, and the result is EffectFailed.
ExitCode renderFrames(const Shot& shot, const std::stop_token& stop, Progress& progress);

}  // namespace vantorel::cli
