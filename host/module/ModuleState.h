// What a loaded module consists of.
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
  std::optional<SharedLibrary> library;  // first: what the members below point into; none for an entry of the program's
  PF_EffectMain entry = nullptr;
  mutable ModuleResources resources;  // guarded by themselves, as are the workers
  mutable WorkerPool workers;
  PF_Handle global_data = nullptr;
  bool is_set_up = false;  // global setup succeeded, so global set-down is owed
  bool checking = false;
  std::function<void(const Error&)> on_setdown_failure;
  ModuleInfo info;
};

}  // namespace vantorel::host
