// How much memory pictures may take, asked before they are made: the system may end a process that takes too much.
#pragma once

#include <optional>
#include <string>

#include "host/Image.h"

namespace vantorel::cli {

// Bytes that this process can still take before the machine or its control group is out of memory; nothing where the
// system does not tell.
std::optional<double> availableMemory();

// Exact up to 2^53, and never too large for the type.
double pictureBytes(host::Size size, host::Depth depth);

// Nothing where so many bytes fit in what is free, a tenth of it left for the rest; else "needs 37.3 GiB of memory and
// 4.0 GiB are free".
std::optional<std::string> memoryShortage(double bytes);

// Lets this process keep what it frees of the sizes that the frames of a shot take again and again, rather than give it
// back to the system after each.
void keepFreedMemory();

}  // namespace vantorel::cli
