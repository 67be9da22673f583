// A file that appears whole or not at all: written under a temporary name beside its place, then renamed.
#pragma once

#include <OpenImageIO/filesystem.h>

#include <cstdio>
#include <memory>
#include <string>

namespace vantorel::cli {

// The sink that OpenImageIO's writers write to. Unless commit() succeeds the destructor removes what was written and
// the place keeps what it held.
class OutputFile : public OIIO::Filesystem::IOProxy {
 public:
  // Creates the temporary file. A symbolic link is followed, so that its target is what gets replaced. Throws
  // CommandError (file failure) naming the path.
  explicit OutputFile(const std::string& path);
  ~OutputFile() override;
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  // For writers that write to a file of a name rather than to the sink.
  const std::string& temporaryPath() const { return temporary_; }

  // Puts the file in its place. Throws CommandError when any write failed, for example on a full disk.
  void commit();

  // Throws the error of the first write that failed, if one did.
  void throwIfFailed() const;

  const char* proxytype() const override { return "vantorel output"; }
  void close() override {}
  bool seek(int64_t offset) override;
  int64_t tell() override;
  size_t read(void* buffer, size_t size) override;
  size_t write(const void* buffer, size_t size) override;
  size_t pread(void* buffer, size_t size, int64_t offset) override;
  size_t pwrite(const void* buffer, size_t size, int64_t offset) override;
  size_t size() const override;
  void flush() const override;

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  void note(bool succeeded) const;

  std::string path_;       // as the user named it
  std::string target_;     // the place itself
  std::string temporary_;  // empty once renamed
  std::unique_ptr<std::FILE, Close> file_;
  mutable int fault_ = 0;  // errno of the first failure
};

// Throws CommandError (file failure) when the folder that `path` would be in does not exist or cannot be written to,
// or when something that is no plain file is in the place.
void requireWritablePlace(const std::string& path);

}  // namespace vantorel::cli
