#include "cli/commands/Interrupt.h"

#include <ctime>

namespace vantorel::cli {

Interrupt::Interrupt() {
  signal(SIGPIPE, SIG_IGN);
  sigemptyset(&signals_);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    sigaddset(&signals_, number);
  }
  pthread_sigmask(SIG_BLOCK, &signals_, nullptr);
  watcher_ = std::jthread([this](const std::stop_token& ended) {
    constexpr timespec kPause{0, 50'000'000};
    while (!ended.stop_requested()) {
      if (sigtimedwait(&signals_, nullptr, &kPause) > 0) {
        source_.request_stop();
      }
    }
  });
}

Interrupt::~Interrupt() {
  watcher_.request_stop();
  watcher_.join();
  pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

}  // namespace vantorel::cli
