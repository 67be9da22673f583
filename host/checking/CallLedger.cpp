#include "host/checking/CallLedger.h"

namespace vantorel::host {

namespace {

std::string suiteText(const std::string& name, std::int32_t version) {
  return "suite \"" + name + "\" version " + std::to_string(version);
}

}  // namespace

void CallLedger::parameterCheckedOut(const PF_ParamDef* record, std::int32_t index) {
  const std::lock_guard lock(mutex_);
  if (!parameters_.emplace(record, index).second) {
    reportLocked("parameter " + std::to_string(index) + " was checked out into a record that is still in use");
  }
}

void CallLedger::parameterCheckedIn(const PF_ParamDef* record) {
  const std::lock_guard lock(mutex_);
  if (parameters_.erase(record) == 0) {
    reportLocked("a parameter that is not checked out was checked in");
  }
}

void CallLedger::suiteAcquired(const char* name, std::int32_t version) {
  const std::lock_guard lock(mutex_);
  ++suites_[{name, version}];
}

void CallLedger::suiteReleased(const char* name, std::int32_t version) {
  const std::lock_guard lock(mutex_);
  const auto found = suites_.find({name, version});
  if (found == suites_.end()) {
    reportLocked(suiteText(name, version) + " was released without having been acquired");
  } else if (--found->second == 0) {
    suites_.erase(found);
  }
}

void CallLedger::report(const std::string& misuse) {
  const std::lock_guard lock(mutex_);
  reportLocked(misuse);
}

void CallLedger::close() {
  const std::lock_guard lock(mutex_);
  for (const auto& [record, index] : parameters_) {
    reportLocked("parameter " + std::to_string(index) + " was checked out and not checked in");
  }
  for (const auto& [suite, count] : suites_) {
    reportLocked(suiteText(suite.first, suite.second) + " was acquired and not released");
  }
}

void CallLedger::reportLocked(const std::string& misuse) {
  if (misuse_.empty()) {
    misuse_ = misuse;
  }
}

}  // namespace vantorel::host
