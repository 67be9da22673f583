// What the command says on standard error, and what its libraries would say there.
#pragma once

#include <cstdio>
#include <string>

namespace vantorel::cli {

// Standard error as the process got it, whatever the libraries' messages are sent to meanwhile. Unbuffered.
std::FILE* console();

// Writes all of the text to standard output, at once. Throws CommandError (file failure).
void printOut(const std::string& text);

// While one lives, what libraries write to standard error is dropped: picture libraries report there what they report
// to their caller too. Several may live at the same time, in any threads.
class LibraryMessagesDropped {
 public:
  LibraryMessagesDropped();
  ~LibraryMessagesDropped();
  LibraryMessagesDropped(const LibraryMessagesDropped&) = delete;
  LibraryMessagesDropped& operator=(const LibraryMessagesDropped&) = delete;
};

}  // namespace vantorel::cli
