// How much memory pictures may take, asked before they are made: the system may end a process that takes too much.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "host/Image.h"

namespace vantorel::cli {

// Bytes that this process can still take before the machine or its control group is out of memory; nothing where the
// system does not tell.
std::optional<std::uint64_t> availableMemory();

std::uint64_t pictureBytes(host::Size size, host::Depth depth);

// "37.3 GiB"
std::string memoryText(std::uint64_t bytes);

}  // namespace vantorel::cli
