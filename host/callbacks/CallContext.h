// What the callbacks of one running command work on. A callback finds it through the effect_ref that it is given; one
// that gets none finds it through its thread.
#pragma once

#include <cstdint>
#include <exception>
#include <new>
#include <optional>
#include <vector>

#include "host/checking/CallLedger.h"
#include "host/frames/FrameState.h"
#include "host/module/ModuleResources.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Codes that the host's callbacks return beside those of the interface.
constexpr std::int32_t kCodeInterrupted = 600;  // the frame was stopped
constexpr std::int32_t kCodeBadArgument = 601;  // an argument that the callback cannot serve
constexpr std::int32_t kCodeException = 602;    // something was thrown through the callback

struct CallContext {
  explicit CallContext(ModuleResources& module_resources) : resources(module_resources) {}

  ModuleResources& resources;
  FrameState* frame = nullptr;                     // null for commands that are about no frame
  std::vector<ParameterInfo>* declared = nullptr;  // where declared parameters go; null except in parameter setup
  PF_OutData* out = nullptr;
  CallLedger* ledger = nullptr;                      // null unless misuse is looked for
  char parameter_name[PF_PARAM_NAME_CAPACITY] = {};  // the last text looked up in parameter setup, cut to fit
  std::optional<Error> failure;                      // why a callback failed, where its code cannot tell
};

// The context of the command that runs on this thread; null outside of commands.
CallContext* currentCall();

inline CallContext* contextOf(void* effect_ref) {
  return effect_ref != nullptr ? static_cast<CallContext*>(effect_ref) : currentCall();
}

// Makes a context this thread's current one while it lives.
class CallScope {
 public:
  explicit CallScope(CallContext& context);
  ~CallScope();
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

 private:
  CallContext* outer_;
};

// Runs a callback's body, turning what it throws into a code: nothing is thrown into a module.
template <typename Body>
std::int32_t guarded(Body body) noexcept {
  try {
    return body();
  } catch (const std::bad_alloc&) {
    return ERR_OUT_OF_MEMORY;
  } catch (...) {
    return kCodeException;
  }
}

}  // namespace vantorel::host
