// The exported functions and the main entry. No exception leaves the plug-in.
#include <array>
#include <memory>
#include <new>
#include <string_view>

#include "bridges/common/EmbeddedModule.h"
#include "bridges/ofx/Describe.h"
#include "bridges/ofx/Effect.h"
#include "bridges/ofx/Interact.h"
#include "bridges/ofx/Names.h"
#include "bridges/ofx/Regions.h"
#include "bridges/ofx/Render.h"

namespace vantorel::ofx {
namespace {

// Shared by all instances; set from load to unload.
std::shared_ptr<const host::Module> the_module;

EffectHandle effectHandle(const void* handle) {
  checkNotNull(handle, "an action's effect");
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
  dropOverlays();
  Effect::destroyAll();
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

struct InstanceAction {
  std::string_view name;
  Status (*perform)(Effect& effect, const Properties& in, const Properties& out);
};

constexpr std::array<InstanceAction, 7> kInstanceActions{
    {{"OfxImageEffectActionRender",
      [](Effect& effect, const Properties& in, const Properties&) { return renderAction(effect, in); }},
     {"OfxImageEffectActionGetRegionOfDefinition",
      [](Effect& effect, const Properties& in, const Properties& out) { return regionOfDefinition(effect, in, out); }},
     {"OfxImageEffectActionGetRegionsOfInterest", regionsOfInterest},
     {"OfxImageEffectActionIsIdentity",
      [](Effect& effect, const Properties& in, const Properties& out) { return identity(effect, in, out); }},
     {"OfxImageEffectActionGetClipPreferences",
      [](Effect& effect, const Properties&, const Properties& out) { return clipPreferences(effect, out); }},
     {"OfxActionInstanceChanged",
      [](Effect& effect, const Properties& in, const Properties&) { return instanceChanged(effect, in); }},
     {"OfxActionPurgeCaches", [](Effect& effect, const Properties&, const Properties&) {
        effect.purge();
        return Status::Ok;
      }}}};

// Other actions are left to the host.
Status instanceAction(std::string_view name, const void* handle, const Properties& in, const Properties& out) {
  for (const InstanceAction& action : kInstanceActions) {
    if (action.name == name) {
      return action.perform(*Effect::of(effectHandle(handle)), in, out);
    }
  }
  return Status::ReplyDefault;
}

Status perform(std::string_view action, const void* handle, const Properties& in, const Properties& out) {
  if (action == "OfxActionLoad") {
    load();
  } else if (!isLoaded()) {
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
    return instanceAction(action, handle, in, out);
  }
  return Status::Ok;
}

Status mainEntry(const char* action, const void* handle, PropertySet in, PropertySet out) {
  try {
    return action != nullptr ? perform(action, handle, Properties(in), Properties(out)) : Status::BadValue;
  } catch (const Fault& fault) {
    // A reply that some suite gave in place of an error must not become the answer to the host's action.
    const bool is_reply = fault.status >= Status::ReplyYes && fault.status <= Status::ReplyDefault;
    return is_reply ? Status::Failed : fault.status;
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
// These names are the interface's.
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
