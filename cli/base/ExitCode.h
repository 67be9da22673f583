// The command's exit codes.
#pragma once

namespace vantorel::cli {

enum class ExitCode : int {
  Done = 0,
  // The effect or the host reported an error, memory or threads ran out, or frames failed under --keep-going.
  EffectFailed = 1,
  BadArguments = 2,
  FileFailed = 3,     // a file could not be read or written
  Interrupted = 130,  // SIGINT, SIGTERM or SIGHUP
};

}  // namespace vantorel::cli
