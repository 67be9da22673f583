#include "cli/pictures/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <random>
#include <system_error>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

std::string reason(int fault) {
  return std::generic_category().message(fault);
}

CommandError unwritable(const std::string& path, int fault) {
  const char* remedy = fault == ENOSPC || fault == EDQUOT ? "make room and run the command again"
                                                          : "check the folder and its permissions";
  return fileFailure(path, fmt::format("cannot be written ({}); {}", reason(fault), remedy));
}

fs::path folderOf(const fs::path& target) {
  return target.has_parent_path() ? target.parent_path() : fs::path(".");
}

fs::path followLinks(const std::string& path) {
  std::error_code fault;
  if (!fs::is_symlink(fs::symlink_status(path, fault))) {
    return path;
  }
  fs::path target = fs::weakly_canonical(path, fault);
  return fault ? fs::path(path) : target;
}

// Unlike any name that another process, here or on another machine that shares the folder, would choose.
std::string temporaryName(const fs::path& target) {
  static std::atomic<unsigned> count{0};
  const std::string mark = fmt::format(".{:x}-{:x}-{}.tmp", getpid(), std::random_device{}(), count++);
  // A name may have 255 bytes in all.
  const std::string stem = target.filename().string().substr(0, 200);
  return (folderOf(target) / ("." + stem + mark)).string();
}

}  // namespace

void requireWritablePlace(const std::string& path) {
  const fs::path target = followLinks(path);
  const fs::path folder = folderOf(target);
  std::error_code fault;
  const fs::file_status folder_status = fs::status(folder, fault);
  if (folder_status.type() == fs::file_type::not_found) {
    throw fileFailure(path, fmt::format("the folder '{}' does not exist; create it first", folder.string()));
  }
  if (!fs::is_directory(folder_status)) {
    throw fileFailure(path, fmt::format("'{}' is not a folder; give a name inside one", folder.string()));
  }
  if (access(folder.c_str(), W_OK | X_OK) != 0) {
    throw unwritable(path, errno);
  }
  const fs::file_status status = fs::status(target, fault);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    throw fileFailure(path, "exists and is not a regular file; give another name");
  }
}

OutputFile::OutputFile(const std::string& path) : path_(path), target_(followLinks(path).string()) {
  requireWritablePlace(path);
  const std::string temporary = temporaryName(target_);
  constexpr mode_t kLeftToUmask = 0666;
  const int descriptor = open(temporary.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kLeftToUmask);
  if (descriptor < 0) {
    throw unwritable(path, errno);
  }
  temporary_ = temporary;
  file_.reset(fdopen(descriptor, "w+b"));
  if (!file_) {
    const int fault = errno;
    ::close(descriptor);
    unlink(temporary_.c_str());
    throw unwritable(path, fault);
  }
}

OutputFile::~OutputFile() {
  file_.reset();
  if (!temporary_.empty()) {
    unlink(temporary_.c_str());
  }
}

void OutputFile::commit() {
  note(std::fclose(file_.release()) == 0);
  throwIfFailed();
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
    throw unwritable(path_, errno);
  }
  temporary_.clear();
}

void OutputFile::throwIfFailed() const {
  if (fault_ != 0) {
    throw unwritable(path_, fault_);
  }
}

void OutputFile::note(bool succeeded) {
  if (!succeeded && fault_ == 0) {
    fault_ = errno != 0 ? errno : EIO;
  }
}

}  // namespace vantorel::cli
