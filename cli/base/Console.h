// The command's output on standard error, and suppressing that of its libraries.
#pragma once

#include <cstdio>
#include <string>

namespace vantorel::cli {

// The process's original standard error, even while the libraries' messages are redirected. Unbuffered.
std::FILE* console();

// Writes the text to standard output and flushes it. Throws CommandError (file failure).
void printOut(const std::string& text);

// While an object of this class exists, anything that libraries write to standard error is dropped: picture libraries
// print there what they also report to their caller. Several may exist at the same time, on any threads.
class LibraryMessagesDropped {
 public:
  LibraryMessagesDropped();
  ~LibraryMessagesDropped();
  LibraryMessagesDropped(const LibraryMessagesDropped&) = delete;
  LibraryMessagesDropped& operator=(const LibraryMessagesDropped&) = delete;
};

}  // namespace vantorel::cli
