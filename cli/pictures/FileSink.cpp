#include "cli/pictures/FileSink.h"

#include <cstdio>

namespace vantorel::cli {

bool FileSink::seek(int64_t offset) {
  const bool done = fseeko(file_.stream(), offset, SEEK_SET) == 0;
  file_.note(done);
  return done;
}

int64_t FileSink::tell() {
  return ftello(file_.stream());
}

size_t FileSink::read(void* buffer, size_t size) {
  // A stream must be positioned between a write and a read.
  fseeko(file_.stream(), 0, SEEK_CUR);
  const size_t done = std::fread(buffer, 1, size, file_.stream());
  fseeko(file_.stream(), 0, SEEK_CUR);
  return done;
}

size_t FileSink::write(const void* buffer, size_t size) {
  const size_t done = std::fwrite(buffer, 1, size, file_.stream());
  file_.note(done == size);
  return done;
}

size_t FileSink::pread(void* buffer, size_t size, int64_t offset) {
  const int64_t before = tell();
  const size_t done = seek(offset) ? read(buffer, size) : 0;
  seek(before);
  return done;
}

size_t FileSink::pwrite(const void* buffer, size_t size, int64_t offset) {
  const int64_t before = tell();
  const size_t done = seek(offset) ? write(buffer, size) : 0;
  seek(before);
  return done;
}

size_t FileSink::size() const {
  const off_t before = ftello(file_.stream());
  fseeko(file_.stream(), 0, SEEK_END);
  const off_t end = ftello(file_.stream());
  fseeko(file_.stream(), before, SEEK_SET);
  return static_cast<size_t>(end);
}

void FileSink::flush() const {
  file_.note(std::fflush(file_.stream()) == 0);
}

}  // namespace vantorel::cli
