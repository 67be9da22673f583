#include "cli/base/CommandError.h"

namespace vantorel::cli {

CommandError badArgument(const std::string& input, const std::string& message) {
  return {ExitCode::BadArguments, input, message};
}

CommandError fileFailure(const std::string& input, const std::string& message) {
  return {ExitCode::FileFailed, input, message};
}

CommandError interrupted() {
  return {ExitCode::Interrupted, "", "interrupted; no unfinished picture was left behind"};
}

CommandError outOfMemory(const std::string& input, const std::string& message) {
  return {ExitCode::EffectFailed, input, message};
}

CommandError fromHost(const host::Error& error) {
  if (error.kind == host::ErrorKind::Interrupted) {
    return interrupted();
  }
  return {ExitCode::EffectFailed, error.input, oneLine(error.message)};
}

}  // namespace vantorel::cli
