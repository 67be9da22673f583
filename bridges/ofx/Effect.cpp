#include "bridges/ofx/Effect.h"

#include <map>
#include <shared_mutex>
#include <utility>

#include "bridges/ofx/Names.h"

namespace vantorel::ofx {
namespace {

constexpr const char* kErrorType = "OfxMessageError";
constexpr const char* kMessageId = "vantorel";

std::shared_mutex instances_mutex;
std::map<EffectHandle, std::unique_ptr<Effect>> instances;

}  // namespace

Properties propertiesOf(EffectHandle handle) {
  PropertySet set = nullptr;
  check(suites().effect->properties(handle, &set), "the effect's properties");
  return Properties(set);
}

ParamSet paramSetOf(EffectHandle handle) {
  ParamSet set = nullptr;
  check(suites().effect->param_set(handle, &set), "the effect's parameters");
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
  auto effect = std::make_unique<Effect>(handle, std::move(module));
  const std::unique_lock lock(instances_mutex);
  instances[handle] = std::move(effect);
}

void Effect::destroy(EffectHandle handle) {
  const std::unique_lock lock(instances_mutex);
  if (instances.erase(handle) == 0) {
    throw Fault{Status::BadHandle, {}};
  }
}

Effect& Effect::of(EffectHandle handle) {
  const std::shared_lock lock(instances_mutex);
  const auto found = instances.find(handle);
  if (found == instances.end()) {
    throw Fault{Status::BadHandle, {}};
  }
  return *found->second;
}

Project Effect::project(Time time) const {
  const Properties properties = propertiesOf(handle_);
  const auto size = properties.point("OfxImageEffectPropProjectSize");
  const auto offset = properties.point("OfxImageEffectPropProjectOffset");
  if (size && size->x > 0.0 && size->y > 0.0) {
    return {offset.value_or(PointD{}), *size};
  }
  const RectD frame = source_.regionOfDefinition(time).value_or(RectD{});
  return {{frame.x1, frame.y1}, {frame.x2 - frame.x1, frame.y2 - frame.y1}};
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

void Effect::giveBack(std::unique_ptr<Renderer> renderer) {
  const std::scoped_lock lock(mutex_);
  idle_.push_back(std::move(renderer));
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
