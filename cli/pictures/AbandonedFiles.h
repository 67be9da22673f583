// Temporary files of outputs, and the removal of those whose process was killed.
#pragma once

#include <filesystem>
#include <string>

namespace vantorel::cli {

// The folder of a file, "." for a name alone.
std::filesystem::path folderOf(const std::filesystem::path& file);

// A hidden name beside the target for a file that will become it, unlike any that another process, here or on another
// machine that shares the folder, would choose.
std::string temporaryName(const std::filesystem::path& target);

// Removes temporary files of that target whose process has ended: those that nobody holds a lock (flock) on. Leaves
// all on file systems without locks. A folder is listed once for the process, however many targets are in it. Safe to
// call from several threads.
void removeAbandoned(const std::filesystem::path& target);

}  // namespace vantorel::cli
