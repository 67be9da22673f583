#include "cli/pictures/OutputFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include "cli/base/CommandError.h"
#include "cli/pictures/AbandonedFiles.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

std::string reason(int fault) {
  return std::generic_category().message(fault);
}

const char* remedyFor(int fault) {
  switch (fault) {
    case ENOSPC:
    case EDQUOT:
      return "make room and run the command again";
    case EFBIG:
      return "raise the limit on file sizes (ulimit -f) or write to another disk";
    case EMFILE:
    case ENFILE:
      return "raise the limit on open files (ulimit -n) or give fewer --threads";
    case ENAMETOOLONG:
      return "give a shorter name";
    case EROFS:
      return "write to another disk";
    default:
      return "check the folder and its permissions";
  }
}

CommandError unwritable(const std::string& path, int fault) {
  return fileFailure(path, fmt::format("cannot be written ({}); {}", reason(fault), remedyFor(fault)));
}

// The file that links lead to, whether it exists or not. Throws CommandError for links that lead in a circle.
fs::path followLinks(const std::string& path) {
  constexpr int kMaxLinks = 40;  // the kernel's own limit
  fs::path target = path;
  std::error_code fault;
  for (int links = 0; fs::is_symlink(fs::symlink_status(target, fault)); ++links) {
    if (links == kMaxLinks) {
      throw fileFailure(path, "is a link that leads back to itself; remove it or give another name");
    }
    // An absolute link replaces the folder.
    target = folderOf(target) / fs::read_symlink(target, fault);
  }
  return target;
}

// Creates a temporary file for the target and locks it, so that nobody takes it for abandoned. Returns its descriptor,
// or -1 with errno set.
int createLocked(const fs::path& target, std::string& name) {
  while (true) {
    name = temporaryName(target);
    constexpr mode_t kLeftToUmask = 0666;
    const int descriptor = open(name.c_str(), O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, kLeftToUmask);
    if (descriptor < 0) {
      return descriptor;
    }
    // On a file system without locks the file works as well, but is not removed later.
    struct stat status {};
    if (flock(descriptor, LOCK_EX) != 0 || fstat(descriptor, &status) != 0 || status.st_nlink > 0) {
      return descriptor;
    }
    // It was removed between its creation and the lock.
    ::close(descriptor);
  }
}

}  // namespace

void requireWritablePlace(const std::string& path) {
  if (isStandardStream(path)) {
    if (isatty(STDOUT_FILENO) != 0) {
      throw fileFailure(outputName(path), "is a terminal; send the picture through a pipe or into a file");
    }
    return;
  }
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

OutputFile::OutputFile(const std::string& path)
    : path_(outputName(path)), target_(isStandardStream(path) ? path : followLinks(path).string()) {
  requireWritablePlace(path);
  int descriptor = -1;
  if (isStandardStream(path)) {
    unnamed_ = std::make_unique<UnnamedFile>(path_);
    temporary_ = unnamed_->path();
    descriptor = dup(unnamed_->descriptor());
  } else {
    removeAbandoned(target_);
    descriptor = createLocked(target_, temporary_);
  }
  if (descriptor < 0) {
    const int fault = errno;
    temporary_.clear();
    throw unwritable(path_, fault);
  }
  // The same open file once more keeps the lock when the stream is closed.
  lock_ = dup(descriptor);
  file_.reset(fdopen(descriptor, "w+b"));
  if (!file_) {
    const int fault = errno;
    ::close(descriptor);
    discard();
    throw unwritable(path_, fault);
  }
}

OutputFile::~OutputFile() {
  discard();
}

void OutputFile::discard() {
  file_.reset();
  if (!temporary_.empty() && !unnamed_) {
    unlink(temporary_.c_str());
  }
  if (lock_ >= 0) {
    ::close(lock_);
  }
  lock_ = -1;
}

void OutputFile::commit() {
  if (unnamed_) {
    note(std::fflush(file_.get()) == 0);
    throwIfFailed();
    return writeToStandardOutput(unnamed_->descriptor());
  }
  // On the disk before it takes its name, so that a power failure leaves the old file or the new one, whole. Some file
  // systems have nothing to synchronise.
  note(std::fflush(file_.get()) == 0);
  note(fsync(fileno(file_.get())) == 0 || errno == EINVAL || errno == ENOSYS);
  note(std::fclose(file_.release()) == 0);
  throwIfFailed();
  if (std::rename(temporary_.c_str(), target_.c_str()) != 0) {
    throw unwritable(path_, errno);
  }
  temporary_.clear();
  discard();
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
