#include <OpenImageIO/imageio.h>
#include <tbb/global_control.h>

#include "cli/Commands.h"
#include "cli/FrameWorkers.h"
#include "cli/Progress.h"
#include "cli/Shot.h"

namespace vantorel::cli {

namespace {

// With several frames at a time each is decoded and encoded by its own thread; a single one may use them all.
void limitCodecThreads(const Shot& shot) {
  const bool single = shot.frames_in_flight == 1;
  constexpr int kCallerOnly = -1;
  const int threads = static_cast<int>(shot.options.threads);
  OIIO::attribute("threads", single ? threads : 1);
  OIIO::attribute("exr_threads", single && threads > 1 ? threads : kCallerOnly);
}

}  // namespace

ExitCode runRender(const RenderOptions& options, const std::stop_token& stop) {
  const Shot shot = planShot(options);
  limitCodecThreads(shot);
  // The frames' own threads count, and the workers that help them come on top.
  const std::size_t helpers = options.threads - static_cast<unsigned>(shot.frames_in_flight);
  const tbb::global_control limit(tbb::global_control::max_allowed_parallelism, helpers + 1);
  Progress progress(options.progress, shot.frames.count());
  return renderFrames(shot, stop, progress);
}

}  // namespace vantorel::cli
