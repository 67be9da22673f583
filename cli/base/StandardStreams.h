// Standard input and output in place of files, under the name "-".
#pragma once

#include <cstdio>
#include <stop_token>
#include <string>

namespace vantorel::cli {

constexpr const char* kStandardStream = "-";

inline bool isStandardStream(const std::string& path) {
  return path == kStandardStream;
}

// What messages call an input and an output.
std::string inputName(const std::string& path);
std::string outputName(const std::string& path);

// A file without a name, in memory, that can be opened by path() as long as this lives.
class UnnamedFile {
 public:
  // Throws CommandError naming `user` where there is no memory for one.
  explicit UnnamedFile(const std::string& user);
  ~UnnamedFile();
  UnnamedFile(const UnnamedFile&) = delete;
  UnnamedFile& operator=(const UnnamedFile&) = delete;

  int descriptor() const { return descriptor_; }
  std::string path() const;

 private:
  int descriptor_ = -1;
};

// Reads standard input to its end, once, for openablePath. Throws CommandError (file failure) where it is a terminal,
// empty or cannot be read; interrupted when the token is triggered.
void readStandardInput(const std::string& wanted, const std::stop_token& stop);

// The path itself, or for "-" that of what readStandardInput has read.
std::string openablePath(const std::string& path);

// Writes all of the file to standard output. Throws CommandError (file failure) when nobody reads it.
void writeToStandardOutput(int descriptor);

}  // namespace vantorel::cli
