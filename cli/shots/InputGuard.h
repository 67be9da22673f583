// Prevents a rendering from overwriting its own inputs.
#pragma once

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Throws CommandError (bad argument) if the output of a frame is, directly or through links, an input file (layer,
// plate, matte or corners) of any frame.
void refuseToReplaceInputs(const Shot& shot);

}  // namespace vantorel::cli
