// The common form of all the command's errors: what the error is about, what is wrong, and what to do.
#pragma once

#include <exception>
#include <string>

#include "cli/base/ExitCode.h"
#include "cli/base/Text.h"
#include "host/Error.h"

namespace vantorel::cli {

class CommandError : public std::exception {
 public:
  // `input` names the option or file; `message` reads "<what is wrong>; <what to do>".
  CommandError(ExitCode code, const std::string& input, const std::string& message)
      : code_(code), text_(escaped(input.empty() ? message : input + ": " + message)) {}

  ExitCode code() const { return code_; }
  // "<input>: <what is wrong>; <what to do>" in one line, safe to show on a terminal.
  const std::string& text() const { return text_; }
  const char* what() const noexcept override { return text_.c_str(); }

 private:
  ExitCode code_;
  std::string text_;
};

CommandError badArgument(const std::string& input, const std::string& message);
CommandError fileFailure(const std::string& input, const std::string& message);
CommandError interrupted();
// For anything that needs more memory than available: always exit code 1.
CommandError outOfMemory(const std::string& input, const std::string& message);

// Converts an error of the host: an interrupted frame gives exit code 130, everything else 1.
CommandError fromHost(const host::Error& error);

// The value, or throws the error converted by fromHost.
template <typename T>
T valueOrThrow(host::Result<T> result) {
  if (!result) {
    throw fromHost(result.error());
  }
  if constexpr (!std::is_void_v<T>) {
    return std::move(*result);
  }
}

}  // namespace vantorel::cli
