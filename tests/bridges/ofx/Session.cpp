#include "tests/bridges/ofx/Session.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <exception>

namespace vantorel::ofx {
namespace {

bool isFine(Status status) {
  return status == Status::Ok || status == Status::ReplyDefault;
}

// Loaded once, and mapped until the end: hosts load and unload plug-ins in one binary, and sessions by the thousand do.
Plugin* plugin() {
  static void* const kLibrary = dlopen(VANTOREL_OFX_PLUGIN, RTLD_LAZY | RTLD_LOCAL);
  return kLibrary != nullptr ? reinterpret_cast<Plugin* (*)(int)>(dlsym(kLibrary, "OfxGetPlugin"))(0) : nullptr;
}

}  // namespace

Session::~Session() {
  host.refused_call = -1;
  try {
    close();
  } catch (const std::exception& error) {
    ADD_FAILURE() << error.what();
  }
}

Status Session::load() {
  plugin_ = ofx::plugin();
  if (plugin_ == nullptr) {
    return Status::Failed;
  }
  plugin_->set_host(&host.record);
  const Status status = perform("OfxActionLoad", nullptr);
  is_loaded_ = isFine(status);
  return status;
}

Status Session::describe(const char* context) {
  const Status status = perform("OfxActionDescribe", &descriptor);
  if (!isFine(status)) {
    return status;
  }
  PropertySetRecord in;
  in.put("OfxImageEffectPropContext", std::string(context));
  instance.properties.put("OfxImageEffectPropContext", std::string(context));
  return perform("OfxImageEffectActionDescribeInContext", &descriptor, &in);
}

void Session::prepare(EffectRecord* made) const {
  made->properties.put("OfxImageEffectPropProjectSize", project_.x, project_.y);
  made->properties.put("OfxImageEffectPropProjectOffset", 0.0, 0.0);
  for (const auto& [name, clip] : descriptor.clips) {
    made->clips[name].properties.put("OfxImageClipPropConnected", 0);
  }
  for (const auto& [name, defined] : descriptor.params.params) {
    ParamRecord& param = made->params.params[name];
    param.type = defined.type;
    param.value.clear();
    const auto found = defined.properties.values.find("OfxParamPropDefault");
    for (std::size_t i = 0; found != defined.properties.values.end() && i < found->second.size(); ++i) {
      const Value& value = found->second[i];
      const bool is_position = param.type == "OfxParamTypeDouble2D";
      const double extent = !is_position ? 1.0 : i == 0 ? project_.x : project_.y;
      param.value.push_back(extent *
                            (std::holds_alternative<int>(value) ? std::get<int>(value) : std::get<double>(value)));
    }
  }
}

Status Session::create() {
  prepare(&instance);
  const Status status = action("OfxActionCreateInstance");
  has_instance_ = isFine(status);
  if (has_instance_ && !isFine(overlay("OfxActionCreateInstance"))) {
    return Status::Failed;
  }
  return status;
}

Status Session::open(const char* context) {
  for (const auto& step : {std::function([&] { return load(); }), std::function([&] { return describe(context); }),
                           std::function([&] { return create(); })}) {
    if (const Status status = step(); !isFine(status)) {
      return status;
    }
  }
  return Status::Ok;
}

Status Session::close() {
  Status status = Status::Ok;
  if (has_instance_) {
    overlay("OfxActionDestroyInstance");
    status = action("OfxActionDestroyInstance");
    has_instance_ = false;
  }
  if (is_loaded_) {
    perform("OfxActionUnload", nullptr);
    is_loaded_ = false;
  }
  return status;
}

Status Session::perform(const char* name, const void* handle, PropertySet in, PropertySet out) {
  return plugin_->main_entry(name, handle, in, out);
}

Status Session::action(const char* name, PropertySet in, PropertySet out) {
  return perform(name, &instance, in, out);
}

Status Session::overlay(const char* name, PropertySet in) {
  for (const char* version :
       {"OfxImageEffectPluginPropOverlayInteractV2", "OfxImageEffectPluginPropOverlayInteractV1"}) {
    const auto found = descriptor.properties.values.find(version);
    if (found != descriptor.properties.values.end()) {
      auto* const entry = reinterpret_cast<MainEntry*>(std::get<void*>(found->second.front()));
      if (in != nullptr) {
        in->put("OfxPropEffectInstance", static_cast<void*>(&instance));
        in->put("OfxPropTime", host.now);
      }
      return entry(name, &interact, in, nullptr);
    }
  }
  return Status::ReplyDefault;
}

PropertySetRecord& Session::connect(const char* name, const Layout& layout) {
  ClipRecord& clip = instance.clips.at(name);
  clip.image = makeImage(layout);
  clip.properties.put("OfxImageClipPropConnected", 1);
  clip.properties.put("OfxImageEffectPropPreMultiplication", std::string(layout.premultiplication));
  clip.properties.put("OfxImagePropPixelAspectRatio", layout.pixel_aspect);
  const RectI& frame = layout.full_frame.empty() ? layout.bounds : layout.full_frame;
  clip.region = {frame.x1 * layout.pixel_aspect, static_cast<double>(frame.y1), frame.x2 * layout.pixel_aspect,
                 static_cast<double>(frame.y2)};
  return *clip.image;
}

void Session::setCorners(const host::Corners& corners, const RectI& frame, const char* prefix) {
  const std::string p = prefix;
  const char* const plain[] = {"upperLeft", "upperRight", "lowerLeft", "lowerRight"};
  const char* const from[] = {"fromUpperLeft", "fromUpperRight", "fromLowerLeft", "fromLowerRight"};
  for (std::size_t i = 0; i < 4; ++i) {
    setParam(p.empty() ? plain[i] : from[i], {frame.x1 + corners[i].x, frame.y2 - corners[i].y});
  }
}

PropertySetRecord renderArguments(const RectI& window, PointD scale) {
  PropertySetRecord in;
  in.put("OfxPropTime", 0.0);
  in.put("OfxImageEffectPropRenderScale", scale.x, scale.y);
  in.put("OfxImageEffectPropRenderWindow", window.x1, window.y1, window.x2, window.y2);
  in.put("OfxImageEffectPropFieldToRender", std::string("OfxFieldNone"));
  return in;
}

Status Session::render(const RectI& window, PointD scale) {
  PropertySetRecord in = renderArguments(window, scale);
  return action("OfxImageEffectActionRender", &in);
}

}  // namespace vantorel::ofx
