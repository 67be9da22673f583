// The plug-in in a test host: loaded, described, and with one instance, as the interface orders the actions.
#pragma once

#include <string>

#include "host/Animation.h"
#include "tests/bridges/ofx/TestHost.h"

namespace vantorel::ofx {

inline constexpr const char* kFilter = "OfxImageEffectContextFilter";
inline constexpr const char* kGeneral = "OfxImageEffectContextGeneral";

class Session {
 public:
  explicit Session(PointD project = {64.0, 48.0}) : project_(project) {}
  ~Session();
  Session(const Session&) = delete;

  TestHost host;
  EffectRecord descriptor;
  EffectRecord instance;

  const Plugin& plugin() const { return *plugin_; }

  // Each step returns the first status that is neither Ok nor ReplyDefault.
  Status load();
  Status describe(const char* context);
  Status create();
  // Properties, clips and parameters of an instance, as the descriptor has them.
  void prepare(EffectRecord* made) const;
  Status open(const char* context = kGeneral);  // all three
  Status close();                               // what has been opened

  Status perform(const char* name, const void* handle, PropertySet in = nullptr, PropertySet out = nullptr);
  // Of the instance.
  Status action(const char* name, PropertySet in = nullptr, PropertySet out = nullptr);
  Status overlay(const char* name, PropertySet in = nullptr);

  // Connects a clip to an image; its region is the image's full frame.
  PropertySetRecord& connect(const char* clip, const Layout& layout);
  std::vector<double> corner(const char* name) { return instance.params.params.at(name).value; }
  void setParam(const char* name, const std::vector<double>& value) {
    const std::scoped_lock lock(host.mutex);
    instance.params.params.at(name).value = value;
  }
  // Corners in pixels from the upper left corner of a frame, y down, on a project whose frame it is.
  void setCorners(const host::Corners& corners, const RectI& frame, const char* prefix = "");
  Status render(const RectI& window, PointD scale = {1.0, 1.0});

  InteractRecord interact;

 private:
  Plugin* plugin_ = nullptr;
  PointD project_;
  bool is_loaded_ = false;
  bool has_instance_ = false;
};

PropertySetRecord renderArguments(const RectI& window, PointD scale = {1.0, 1.0});

}  // namespace vantorel::ofx
