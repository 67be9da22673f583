// What a loaded module consists of.
#pragma once

#include <functional>

#include "host/Module.h"
#include "host/ModuleResources.h"
#include "host/SharedLibrary.h"
#include "support/PF_HostRecords.h"

namespace vantorel::host {

struct Module::State {
  SharedLibrary library;  // first: what the members below point into
  PF_EffectMain entry = nullptr;
  mutable ModuleResources resources;  // guarded by themselves
  PF_Handle global_data = nullptr;
  bool is_set_up = false;  // global setup succeeded, so global set-down is owed
  bool checking = false;
  std::function<void(const Error&)> on_setdown_failure;
  ModuleInfo info;

  explicit State(SharedLibrary loaded) : library(std::move(loaded)) {}
};

}  // namespace vantorel::host
