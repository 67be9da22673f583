// Checks how much memory is available before pictures are allocated: the system may kill a process that uses too much.
#pragma once

#include <optional>
#include <string>

#include "host/Image.h"

namespace vantorel::cli {

// How many bytes this process can still allocate before the machine or its control group runs out of memory; empty if
// the system does not say.
std::optional<double> availableMemory();

// A double, since the product may exceed 64 bits; exact up to 2^53.
double pictureBytes(host::Size size, host::Depth depth);

// Empty if that many bytes fit into nine tenths of the free memory; else "needs 37.3 GiB of memory and 4.0 GiB are
// free".
std::optional<std::string> memoryShortage(double bytes);

// Lets the allocator keep freed blocks of the sizes that every frame of a shot needs again, rather than return them to
// the system after each frame.
void keepFreedMemory();

}  // namespace vantorel::cli
