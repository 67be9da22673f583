// The command line: options, help and their errors.
#pragma once

#include "cli/base/ExitCode.h"

namespace vantorel::cli {

// Parses the arguments and runs what they ask for. Help goes to standard output. Throws CommandError.
ExitCode runCommandLine(int argc, const char* const* argv);

}  // namespace vantorel::cli
