// Ctrl-C and requests to end, as a stop token.
#pragma once

#include <signal.h>

#include <stop_token>
#include <thread>

namespace vantorel::cli {

// Writing to a closed pipe or beyond a limit on file sizes becomes an error of writing, rather than a signal that ends
// the process and leaves its temporary files.
void ignoreSignalsOfWriting();

// While one lives, SIGINT, SIGTERM and SIGHUP trigger its token instead of ending the process; those that were ignored
// when the process started (nohup, a shell's background jobs) stay ignored. Make it before any other thread starts,
// since threads inherit what is blocked. Throws std::system_error when no thread can be started.
class Interrupt {
 public:
  Interrupt();
  ~Interrupt();
  Interrupt(const Interrupt&) = delete;
  Interrupt& operator=(const Interrupt&) = delete;

  std::stop_token token() const { return source_.get_token(); }

 private:
  std::stop_source source_;
  sigset_t signals_{};
  std::jthread watcher_;
};

}  // namespace vantorel::cli
