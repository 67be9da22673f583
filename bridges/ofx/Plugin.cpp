// The functions that hosts load the plug-in by, and its entry. Nothing is thrown into the host.
#include <memory>
#include <new>
#include <string_view>

#include "bridges/common/EmbeddedModule.h"
#include "bridges/ofx/Describe.h"
#include "bridges/ofx/Effect.h"
#include "bridges/ofx/Names.h"
#include "bridges/ofx/Regions.h"
#include "bridges/ofx/Render.h"

namespace vantorel::ofx {
namespace {

// From load to unload, so that instances share one.
std::shared_ptr<const host::Module> the_module;

EffectHandle effectHandle(const void* handle) {
  return static_cast<EffectHandle>(const_cast<void*>(handle));
}

void load() {
  fetchSuites();
  host::Result<std::shared_ptr<const host::Module>> module = bridges::embeddedModule();
  if (!module) {
    dropSuites();
    throw Fault{Status::Failed, host::errorText(module.error())};
  }
  the_module = std::move(*module);
}

void unload() {
  the_module.reset();
  dropSuites();
}

Status instanceChanged(Effect& effect, const Properties& in) {
  const auto name = in.text(kPropName);
  if (in.text("OfxPropChangeReason") != "OfxChangeUserEdited" || (name != kResetParam && name != kResetFromParam)) {
    return Status::ReplyDefault;
  }
  resetCorners(effect, name == kResetFromParam, in.number(kPropTime).value_or(0.0));
  return Status::Ok;
}

Status renderAction(Effect& effect, const Properties& in) {
  try {
    render(effect, in);
  } catch (const Fault& fault) {
    effect.showError(fault.message);
    throw;
  }
  effect.clearError();
  return Status::Ok;
}

Status instanceAction(std::string_view action, EffectHandle handle, const Properties& in, const Properties& out) {
  if (action == "OfxImageEffectActionRender") {
    return renderAction(Effect::of(handle), in);
  }
  if (action == "OfxImageEffectActionGetRegionOfDefinition") {
    return regionOfDefinition(Effect::of(handle), in, out);
  }
  if (action == "OfxImageEffectActionGetRegionsOfInterest") {
    return regionsOfInterest(Effect::of(handle), in, out);
  }
  if (action == "OfxImageEffectActionIsIdentity") {
    return identity(Effect::of(handle), in, out);
  }
  if (action == "OfxImageEffectActionGetClipPreferences") {
    return clipPreferences(Effect::of(handle), out);
  }
  if (action == "OfxActionInstanceChanged") {
    return instanceChanged(Effect::of(handle), in);
  }
  if (action == "OfxActionPurgeCaches") {
    Effect::of(handle).purge();
    return Status::Ok;
  }
  return Status::ReplyDefault;
}

Status perform(std::string_view action, const void* handle, const Properties& in, const Properties& out) {
  if (action == "OfxActionLoad") {
    load();
  } else if (suites().property == nullptr) {
    return Status::Failed;
  } else if (action == "OfxActionUnload") {
    unload();
  } else if (action == "OfxActionDescribe") {
    describe(effectHandle(handle));
  } else if (action == "OfxImageEffectActionDescribeInContext") {
    describeInContext(effectHandle(handle), in);
  } else if (action == "OfxActionCreateInstance") {
    Effect::create(effectHandle(handle), the_module);
  } else if (action == "OfxActionDestroyInstance") {
    Effect::destroy(effectHandle(handle));
  } else {
    return instanceAction(action, effectHandle(handle), in, out);
  }
  return Status::Ok;
}

Status mainEntry(const char* action, const void* handle, PropertySet in, PropertySet out) {
  try {
    return action != nullptr ? perform(action, handle, Properties(in), Properties(out)) : Status::BadValue;
  } catch (const Fault& fault) {
    return fault.status;
  } catch (const std::bad_alloc&) {
    return Status::Memory;
  } catch (...) {
    return Status::Failed;
  }
}

Plugin the_plugin{"OfxImageEffectPluginAPI",
                  1,
                  VANTOREL_OFX_IDENTIFIER,
                  VANTOREL_MAJOR_VERSION,
                  VANTOREL_MINOR_VERSION,
                  setHost,
                  mainEntry};

}  // namespace
}  // namespace vantorel::ofx

#pragma GCC visibility push(default)
// The interface gives the names.
// NOLINTBEGIN(readability-identifier-naming)
extern "C" {

int OfxGetNumberOfPlugins() {
  return 1;
}

vantorel::ofx::Plugin* OfxGetPlugin(int index) {
  return index == 0 ? &vantorel::ofx::the_plugin : nullptr;
}

vantorel::ofx::Status OfxSetHost(const vantorel::ofx::Host* /*host*/) {
  return vantorel::ofx::Status::Ok;
}
}
// NOLINTEND(readability-identifier-naming)
#pragma GCC visibility pop
