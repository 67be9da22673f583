// What the plug-in keeps for the host's handles.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>

namespace vantorel::ofx {

// From any thread. What is found stays alive for as long as its finder holds it, even if the host destroys the handle
// on another thread in the meantime.
template <typename Handle, typename Kept>
class Registry {
 public:
  void put(Handle handle, std::shared_ptr<Kept> kept) {
    const std::unique_lock lock(mutex_);
    kept_[handle] = std::move(kept);
  }

  // Null where there is nothing.
  std::shared_ptr<Kept> find(Handle handle) const {
    const std::shared_lock lock(mutex_);
    const auto found = kept_.find(handle);
    return found != kept_.end() ? found->second : nullptr;
  }

  // Like `find`, and forgets it.
  std::shared_ptr<Kept> take(Handle handle) {
    const std::unique_lock lock(mutex_);
    auto node = kept_.extract(handle);
    return node ? std::move(node.mapped()) : nullptr;
  }

  void clear() {
    const std::unique_lock lock(mutex_);
    kept_.clear();
  }

 private:
  mutable std::shared_mutex mutex_;
  std::map<Handle, std::shared_ptr<Kept>> kept_;
};

}  // namespace vantorel::ofx
