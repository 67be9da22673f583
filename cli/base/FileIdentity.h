// Identifies the file behind a name, through symbolic and hard links.
#pragma once

#include <sys/types.h>

#include <optional>
#include <string>
#include <utility>

namespace vantorel::cli {

using FileIdentity = std::pair<dev_t, ino_t>;

// Empty if the file does not exist or cannot be reached.
std::optional<FileIdentity> identityOf(const std::string& path);

}  // namespace vantorel::cli
