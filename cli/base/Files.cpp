#include "cli/base/Files.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <system_error>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

void requireReadableFile(const std::string& path, const char* wanted) {
  std::error_code fault;
  const fs::file_status status = fs::status(path, fault);
  if (status.type() == fs::file_type::not_found) {
    throw fileFailure(path, "does not exist; check the name");
  }
  if (fault) {
    throw fileFailure(path, fmt::format("cannot be reached ({}); check the name and its folders", fault.message()));
  }
  if (!fs::is_regular_file(status)) {
    throw fileFailure(
        path, fmt::format("is {}; give {}", fs::is_directory(status) ? "a folder" : "not a regular file", wanted));
  }
  const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (descriptor < 0) {
    const int reason = errno;
    const char* remedy = "check the file and its disk";
    if (reason == EACCES || reason == EPERM) {
      remedy = "check its permissions";
    } else if (reason == EMFILE || reason == ENFILE) {
      remedy = "raise the limit on open files (ulimit -n) or give fewer --threads";
    }
    throw fileFailure(path, fmt::format("cannot be opened ({}); {}", std::generic_category().message(reason), remedy));
  }
  close(descriptor);
}

void fetchAhead(const std::string& path) {
  std::error_code fault;
  const int file = fs::is_regular_file(path, fault) ? open(path.c_str(), O_RDONLY | O_CLOEXEC) : -1;
  if (file >= 0) {
    posix_fadvise(file, 0, 0, POSIX_FADV_WILLNEED);
    close(file);
  }
}

}  // namespace vantorel::cli
