// The subcommands.
#pragma once

#include <stop_token>

#include "cli/ExitCode.h"
#include "cli/Options.h"

namespace vantorel::cli {

// Each does its work and returns how it ended, or throws CommandError.
ExitCode runRender(const RenderOptions& options, const std::stop_token& stop);
ExitCode runInfo(const InfoOptions& options);
ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop);

}  // namespace vantorel::cli
