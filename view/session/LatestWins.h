// Requests of which only the last one counts.
#pragma once

#include <mutex>
#include <stop_token>

namespace vantorel::view {

// Safe to use from several threads.
class LatestWins {
 public:
  // Ends what was begun before, and gives the token by which this one is ended.
  std::stop_token begin() {
    const std::scoped_lock lock(mutex_);
    source_.request_stop();
    source_ = std::stop_source();
    if (closed_) {
      source_.request_stop();
    }
    return source_.get_token();
  }

  void end() {
    const std::scoped_lock lock(mutex_);
    source_.request_stop();
  }

  // Ends all, those to come as well.
  void close() {
    const std::scoped_lock lock(mutex_);
    closed_ = true;
    source_.request_stop();
  }

 private:
  std::mutex mutex_;
  std::stop_source source_;
  bool closed_ = false;
};

}  // namespace vantorel::view
