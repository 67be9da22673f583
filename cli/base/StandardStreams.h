// Standard input and output as files named "-".
#pragma once

#include <cstdio>
#include <stop_token>
#include <string>

namespace vantorel::cli {

constexpr const char* kStandardStream = "-";

inline bool isStandardStream(const std::string& path) {
  return path == kStandardStream;
}

// The names of an input and an output in messages.
std::string inputName(const std::string& path);
std::string outputName(const std::string& path);

// An anonymous file in memory that can be opened by its path() as long as this object exists.
class UnnamedFile {
 public:
  // Throws CommandError naming `user` if there is not enough memory.
  explicit UnnamedFile(const std::string& user);
  ~UnnamedFile();
  UnnamedFile(const UnnamedFile&) = delete;
  UnnamedFile& operator=(const UnnamedFile&) = delete;

  int descriptor() const { return descriptor_; }
  std::string path() const;

 private:
  int descriptor_ = -1;
};

// Reads standard input to its end, once, for openablePath(). Throws CommandError: a file failure if it is a terminal,
// empty or cannot be read; interrupted when the token is triggered.
void readStandardInput(const std::string& wanted, const std::stop_token& stop);

// The path itself or, for "-", the path of what readStandardInput() has read.
std::string openablePath(const std::string& path);

// Writes the whole file to standard output. Throws CommandError (file failure), for example if the reader has gone.
void writeToStandardOutput(int descriptor);

}  // namespace vantorel::cli
