// The host resources that a loaded module holds between calls, shared by all its instances: string tables and memory
// blocks.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "host/Module.h"
#include "host/module/HandleStore.h"
#include "host/module/StringTable.h"

namespace vantorel::host {

// The registered string tables, each identified by a reference that the host creates. Safe to use from several threads.
class StringTableStore {
 public:
  // Stores the table and returns its reference, which is valid until `remove`.
  void* add(StringTable table);

  // The table of a reference, or null for an unknown reference.
  const StringTable* find(const void* reference) const;

  // False for an unknown reference.
  bool remove(const void* reference);

 private:
  mutable std::mutex mutex_;
  std::vector<std::unique_ptr<StringTable>> tables_;
};

struct ModuleResources {
  Translations translations;
  StringTableStore string_tables;
  HandleStore handles;
};

}  // namespace vantorel::host
