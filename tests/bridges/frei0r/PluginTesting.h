// The filter as programs load it, and an instance of it.
#pragma once

#include <gtest/gtest.h>

#include <dlfcn.h>
#include <frei0r.h>

#include <cstdint>
#include <vector>

#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::frei0r {

using Pixels = std::vector<std::uint32_t>;

class Plugin {
 public:
  Plugin() : library_(dlopen(VANTOREL_FREI0R_PLUGIN, RTLD_NOW | RTLD_LOCAL)) {
    EXPECT_NE(library_, nullptr) << dlerror();
    EXPECT_EQ(find<int()>("f0r_init")(), 1);
  }
  ~Plugin() {
    find<void()>("f0r_deinit")();
    dlclose(library_);
  }
  Plugin(const Plugin&) = delete;

  template <typename Function>
  Function* find(const char* name) const {
    return reinterpret_cast<Function*>(dlsym(library_, name));
  }

 private:
  void* library_;
};

class Instance {
 public:
  Instance(const Plugin& plugin, host::Size size)
      : plugin_(plugin),
        size_(size),
        instance_(plugin.find<f0r_instance_t(unsigned, unsigned)>("f0r_construct")(
            static_cast<unsigned>(size.width), static_cast<unsigned>(size.height))) {
    EXPECT_NE(instance_, nullptr);
  }
  ~Instance() { plugin_.find<void(f0r_instance_t)>("f0r_destruct")(instance_); }
  Instance(const Instance&) = delete;

  void set(int index, const void* value) {
    plugin_.find<void(f0r_instance_t, const void*, int)>("f0r_set_param_value")(instance_, value, index);
  }
  void setQuality(const char* name) { set(8, &name); }
  void setNumber(int index, double value) { set(index, &value); }
  void setCorners(const host::Corners& corners) {
    for (int i = 0; i < 4; ++i) {
      const host::Point& point = corners[static_cast<std::size_t>(i)];
      setNumber(2 * i, (point.x / size_.width + 1.0) / 3.0);
      setNumber(2 * i + 1, (point.y / size_.height + 1.0) / 3.0);
    }
  }
  Pixels draw(const Pixels& in) {
    Pixels out(in.size(), 0x5A5A5A5A);
    update(in.data(), out.data());
    return out;
  }
  void update(const std::uint32_t* in, std::uint32_t* out) {
    plugin_.find<void(f0r_instance_t, double, const std::uint32_t*, std::uint32_t*)>("f0r_update")(instance_, 0.0, in,
                                                                                                   out);
  }

 private:
  const Plugin& plugin_;
  host::Size size_;
  f0r_instance_t instance_;
};

}  // namespace vantorel::frei0r
