// A file that appears whole or not at all: written under a temporary name beside its place, then renamed.
#pragma once

#include <cstdio>
#include <memory>
#include <string>

#include "cli/base/StandardStreams.h"

namespace vantorel::cli {

// Unless commit() succeeds the destructor removes what was written and the place keeps what it held.
class OutputFile {
 public:
  // Creates the temporary file, and removes those for the same place that killed processes have left. A symbolic link
  // is followed, so that its target is replaced or created and the link stays. "-" stands for standard output, to which
  // commit() writes. Throws CommandError (file failure) naming the path.
  explicit OutputFile(const std::string& path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // What to write to; open for reading and writing until commit().
  std::FILE* stream() const { return file_.get(); }

  // For writers that write to a file of a name rather than to the stream.
  const std::string& temporaryPath() const { return temporary_; }

  // Keeps errno as the fault of the first write that failed.
  void note(bool succeeded);

  // Throws the error of the first write that failed, if one did.
  void throwIfFailed() const;

  // Puts the file in its place. Throws CommandError when any write failed, for example on a full disk.
  void commit();

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void discard();

  std::unique_ptr<UnnamedFile> unnamed_;  // what goes to standard output, until it does
  std::string path_;                      // as the user named it
  std::string target_;                    // the place itself
  std::string temporary_;                 // empty once renamed
  std::unique_ptr<std::FILE, Close> file_;
  int lock_ = -1;  // a descriptor that keeps the file locked until it is in its place
  int fault_ = 0;  // errno of the first failure
};

// Throws CommandError (file failure) when standard output is a terminal that "-" would fill, when the folder that
// `path` would be in does not exist or cannot be written to, or when something other than a regular file is in the
// place.
void requireWritablePlace(const std::string& path);

}  // namespace vantorel::cli
