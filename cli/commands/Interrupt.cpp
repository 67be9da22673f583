#include "cli/commands/Interrupt.h"

#include <ctime>

namespace vantorel::cli {

namespace {

bool isIgnored(int signal_number) {
  struct sigaction action {};
  return sigaction(signal_number, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

}  // namespace

void ignoreSignalsOfWriting() {
  signal(SIGPIPE, SIG_IGN);
  signal(SIGXFSZ, SIG_IGN);
}

Interrupt::Interrupt() {
  sigemptyset(&signals_);
  for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
    if (!isIgnored(number)) {
      sigaddset(&signals_, number);
    }
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
