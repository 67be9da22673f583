// Ctrl-C and requests to end, as a stop token.
#pragma once

#include <signal.h>

#include <stop_token>
#include <thread>

namespace vantorel::cli {

// While one lives, SIGINT, SIGTERM and SIGHUP trigger its token instead of ending the process, and a closed pipe is an
// error of writing rather than a signal. Make it before any other thread starts, since threads inherit what is blocked.
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
