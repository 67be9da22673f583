// The state of a loaded module.
#pragma once

#include <functional>
#include <optional>

#include "host/Module.h"
#include "host/frames/WorkerPool.h"
#include "host/module/ModuleResources.h"
#include "host/module/SharedLibrary.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

struct ModuleState {
  // First, since the members below point into it; empty for an entry point in the program.
  std::optional<SharedLibrary> library;
  PF_EffectMain entry = nullptr;
  mutable ModuleResources resources;  // synchronised internally, like the workers
  mutable WorkerPool workers;
  PF_Handle global_data = nullptr;
  bool is_set_up = false;  // global setup succeeded, so global set-down must follow
  bool checking = false;
  std::function<void(const Error&)> on_setdown_failure;
  ModuleInfo info;
};

}  // namespace vantorel::host
