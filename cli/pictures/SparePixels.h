// Memory of pictures that are no longer needed, kept for the next ones: the system clears the memory that it hands out,
// page by page.
#pragma once

#include <cstddef>
#include <mutex>
#include <utility>
#include <vector>

#include "host/Image.h"

namespace vantorel::cli {

// Safe to use from several threads.
class SparePixels {
 public:
  SparePixels() { images_.reserve(kMost); }

  // An image of any size, with undefined pixels; empty if none is left.
  host::Image take() {
    const std::scoped_lock lock(mutex_);
    if (images_.empty()) {
      return {};
    }
    host::Image image = std::move(images_.back());
    images_.pop_back();
    return image;
  }

  void giveBack(host::Image image) {
    const std::scoped_lock lock(mutex_);
    if (images_.size() < kMost) {
      images_.push_back(std::move(image));
    }
  }

 private:
  static constexpr std::size_t kMost = 16;  // as many as frames are worked on at once

  std::mutex mutex_;
  std::vector<host::Image> images_;
};

}  // namespace vantorel::cli
