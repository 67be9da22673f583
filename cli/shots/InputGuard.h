// Keeps a rendering from replacing what it is made from.
#pragma once

#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Throws CommandError (bad argument) when a frame's output is, by itself or through links, a file of the layer, the
// plate or the corners of any frame.
void refuseToReplaceInputs(const Shot& shot);

}  // namespace vantorel::cli
