#include <unistd.h>

#include "cli/base/Memory.h"
#include "cli/base/Rows.h"
#include "cli/base/StandardStreams.h"
#include "cli/commands/Commands.h"
#include "cli/pictures/CodecThreads.h"
#include "cli/shots/FrameWorkers.h"
#include "cli/shots/Progress.h"
#include "cli/shots/ShotPlan.h"

namespace vantorel::cli {

ExitCode runRender(const RenderOptions& options, const std::stop_token& stop) {
  if (isStandardStream(options.layer) || isStandardStream(options.plate) || isStandardStream(options.matte)) {
    readStandardInput("a picture", stop);
  }
  keepFreedMemory();
  const Shot shot = planShot(options);
  limitCodecThreads(options.threads, shot.frames_in_flight == 1);
  // The frames' own threads count towards the limit; the rest may be helpers.
  const std::size_t helpers = options.threads - static_cast<unsigned>(shot.frames_in_flight);
  limitRowThreads(static_cast<unsigned>(helpers + 1));
  Progress progress(options.progress.value_or(isatty(STDERR_FILENO) != 0), shot.frames.count());
  for (const std::string& note : shot.notes) {
    progress.message(note);
  }
  return renderFrames(shot, stop, progress);
}

}  // namespace vantorel::cli
