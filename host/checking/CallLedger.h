// Checking mode: tracks what a module has checked out or acquired and must give back.
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// The checkouts of one command. The first misuse found is kept. Safe to use from several threads.
class CallLedger {
 public:
  void parameterCheckedOut(const PF_ParamDef* record, std::int32_t index);
  void parameterCheckedIn(const PF_ParamDef* record);
  void suiteAcquired(const char* name, std::int32_t version);
  void suiteReleased(const char* name, std::int32_t version);
  void report(const std::string& misuse);

  // Reports anything that was not given back when the command returned.
  void close();

  // The first misuse, empty if there was none.
  const std::string& misuse() const { return misuse_; }

 private:
  void reportLocked(const std::string& misuse);

  std::mutex mutex_;
  std::map<const PF_ParamDef*, std::int32_t> parameters_;
  std::map<std::pair<std::string, std::int32_t>, int> suites_;
  std::string misuse_;
};

}  // namespace vantorel::host
