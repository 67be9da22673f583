// Lets OpenImageIO's writers write to an output file.
#pragma once

#include <OpenImageIO/filesystem.h>

#include "cli/pictures/OutputFile.h"

namespace vantorel::cli {

// Failures are noted in the file, which must outlive the sink.
class FileSink : public OIIO::Filesystem::IOProxy {
 public:
  explicit FileSink(OutputFile& file) : IOProxy(file.temporaryPath(), Mode::Write), file_(file) {}

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
  OutputFile& file_;
};

}  // namespace vantorel::cli
