// Requests that are superseded by later ones.
#pragma once

#include <mutex>
#include <stop_token>

namespace vantorel::view {

// Safe to use from several threads.
class LatestWins {
 public:
  // Stops the previous request, and returns the stop token of the new one.
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

  // Stops all requests, including future ones.
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
