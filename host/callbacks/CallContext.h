// The data of a running command that its callbacks work on. A callback finds it through its effect_ref argument or, if
// it has none, through a thread-local pointer.
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

// Codes that the host's callbacks return in addition to those of the interface.
constexpr std::int32_t kCodeInterrupted = 600;  // the frame was stopped
constexpr std::int32_t kCodeBadArgument = 601;  // an invalid argument
constexpr std::int32_t kCodeException = 602;    // an exception was caught in the callback

struct CallContext {
  explicit CallContext(ModuleResources& module_resources) : resources(module_resources) {}

  ModuleResources& resources;
  FrameState* frame = nullptr;                     // null for commands without a frame
  std::vector<ParameterInfo>* declared = nullptr;  // where declared parameters go; null except in parameter setup
  PF_OutData* out = nullptr;
  CallLedger* ledger = nullptr;                      // null unless in checking mode
  char parameter_name[PF_PARAM_NAME_CAPACITY] = {};  // the last text looked up in parameter setup, truncated to fit
  std::optional<Error> failure;                      // why a callback failed, if its code alone does not say
};

// The context of the command running on this thread; null if there is none.
CallContext* currentCall();

inline CallContext* contextOf(void* effect_ref) {
  return effect_ref != nullptr ? static_cast<CallContext*>(effect_ref) : currentCall();
}

// Makes a context this thread's current one for the lifetime of the object.
class CallScope {
 public:
  explicit CallScope(CallContext& context);
  ~CallScope();
  CallScope(const CallScope&) = delete;
  CallScope& operator=(const CallScope&) = delete;

 private:
  CallContext* outer_;
};

// Runs a callback's body and converts exceptions to error codes, since nothing may be thrown into a module.
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
