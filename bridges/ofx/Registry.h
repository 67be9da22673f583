// Objects that the plug-in keeps, by the host's handles.
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <shared_mutex>
#include <utility>

namespace vantorel::ofx {

// Thread-safe. An object stays alive while its finder holds it, even if another thread takes it out meanwhile.
template <typename Handle, typename Kept>
class Registry {
 public:
  void put(Handle handle, std::shared_ptr<Kept> kept) {
    const std::unique_lock lock(mutex_);
    kept_[handle] = std::move(kept);
  }

  // Null if there is none.
  std::shared_ptr<Kept> find(Handle handle) const {
    const std::shared_lock lock(mutex_);
    const auto found = kept_.find(handle);
    return found != kept_.end() ? found->second : nullptr;
  }

  // Like `find`, but removes it.
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
