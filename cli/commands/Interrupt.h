// Ctrl-C and termination requests as a stop token.
#pragma once

#include <signal.h>

#include <stop_token>
#include <thread>

namespace vantorel::cli {

// Makes writing to a closed pipe or beyond the file size limit fail with an error, rather than with a signal that would
// kill the process and leave its temporary files behind.
void ignoreSignalsOfWriting();

// While an object of this class exists, SIGINT, SIGTERM and SIGHUP trigger its token instead of ending the process;
// those that were ignored when the process started (nohup, a shell's background jobs) stay ignored. Create it before
// any other thread starts, since threads inherit the blocked signals. Throws std::system_error if its thread cannot be
// started.
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
