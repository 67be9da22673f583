// The command line: options, help and errors.
#pragma once

#include "cli/base/ExitCode.h"

namespace vantorel::cli {

// Parses the arguments and runs the command. Help goes to standard output. Throws CommandError.
ExitCode runCommandLine(int argc, const char* const* argv);

}  // namespace vantorel::cli
