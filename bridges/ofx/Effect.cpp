#include "bridges/ofx/Effect.h"

#include <new>
#include <utility>

#include "bridges/ofx/Geometry.h"
#include "bridges/ofx/Names.h"
#include "bridges/ofx/Registry.h"

namespace vantorel::ofx {
namespace {

constexpr const char* kErrorType = "OfxMessageError";
constexpr const char* kMessageId = "vantorel";

Registry<EffectHandle, Effect> instances;

}  // namespace

Properties propertiesOf(EffectHandle handle) {
  PropertySet set = nullptr;
  check(suites().effect->properties(handle, &set), "the effect's properties");
  return Properties(set);
}

ParamSet paramSetOf(EffectHandle handle) {
  ParamSet set = nullptr;
  check(suites().effect->param_set(handle, &set), "the effect's parameters");
  checkNotNull(set, "the effect's parameters");
  return set;
}

Effect::Effect(EffectHandle handle, std::shared_ptr<const host::Module> module)
    : handle_(handle),
      module_(std::move(module)),
      parameters_(paramSetOf(handle)),
      source_(Clip::find(handle, kSourceClip)),
      output_(Clip::find(handle, kOutputClip)) {
  if (output_.handle == nullptr) {
    throw Fault{Status::Failed, "the host has no output for the effect"};
  }
  background_ = Clip::find(handle, kBackgroundClip);
  matte_ = Clip::find(handle, kMatteClip);
  is_general_ = propertiesOf(handle).text(kPropContext) == kContextGeneral;
}

void Effect::create(EffectHandle handle, std::shared_ptr<const host::Module> module) {
  instances.put(handle, std::make_shared<Effect>(handle, std::move(module)));
}

void Effect::destroy(EffectHandle handle) {
  if (instances.take(handle) == nullptr) {
    throw Fault{Status::BadHandle, {}};
  }
}

void Effect::destroyAll() {
  instances.clear();
}

std::shared_ptr<Effect> Effect::find(EffectHandle handle) {
  return instances.find(handle);
}

std::shared_ptr<Effect> Effect::of(EffectHandle handle) {
  std::shared_ptr<Effect> effect = find(handle);
  if (effect == nullptr) {
    throw Fault{Status::BadHandle, {}};
  }
  return effect;
}

Project Effect::project(Time time) const {
  const Properties properties = propertiesOf(handle_);
  const auto size = properties.point("OfxImageEffectPropProjectSize");
  const auto offset = properties.point("OfxImageEffectPropProjectOffset");
  if (size && size->x > 0.0 && size->y > 0.0) {
    return {offset.value_or(PointD{}), *size};
  }
  const auto region = source_.regionOfDefinition(time);
  const RectD frame = region && isBounded(*region) ? *region : RectD{};
  return {{frame.x1, frame.y1}, {frame.x2 - frame.x1, frame.y2 - frame.y1}};
}

std::optional<RectD> Effect::sourceFrame(Time time) const {
  const auto region = source_.regionOfDefinition(time);
  if (!region || isBounded(*region)) {
    return region;
  }
  const RectD frame = project(time).frame();
  return frame.x1 < frame.x2 && isBounded(frame) ? std::optional(frame) : std::nullopt;
}

std::unique_ptr<Renderer> Effect::takeRenderer() {
  const std::scoped_lock lock(mutex_);
  if (idle_.empty()) {
    return std::make_unique<Renderer>(module_);
  }
  std::unique_ptr<Renderer> renderer = std::move(idle_.back());
  idle_.pop_back();
  return renderer;
}

void Effect::giveBack(std::unique_ptr<Renderer> renderer) noexcept {
  const std::scoped_lock lock(mutex_);
  try {
    idle_.push_back(std::move(renderer));
  } catch (const std::bad_alloc&) {
    renderer.reset();  // the next window creates another
  }
}

void Effect::purge() {
  const std::scoped_lock lock(mutex_);
  idle_.clear();
}

void Effect::showError(const std::string& message) {
  const MessageSuite* const suite = suites().message;
  if (suite == nullptr || message.empty()) {
    return;
  }
  if (suites().has_persistent_messages) {
    suite->set_persistent(handle_, kErrorType, kMessageId, "%s", message.c_str());
    has_error_ = true;
  } else if (!has_error_.exchange(true)) {
    suite->message(handle_, kErrorType, kMessageId, "%s", message.c_str());
  }
}

void Effect::clearError() {
  if (has_error_.exchange(false) && suites().has_persistent_messages) {
    suites().message->clear_persistent(handle_);
  }
}

}  // namespace vantorel::ofx
