// What a loaded module holds of the host between calls, shared by all its instances: string tables and blocks.
#pragma once

#include <memory>
#include <mutex>
#include <vector>

#include "host/Module.h"
#include "host/module/HandleStore.h"
#include "host/module/StringTable.h"

namespace vantorel::host {

// The registered string tables, each under a reference of the host's own. Safe to use from several threads.
class StringTableStore {
 public:
  // Keeps the table; the result is its reference, valid until `remove`.
  void* add(StringTable table);

  // The table of a reference, or null for a reference that is not one of the store's.
  const StringTable* find(const void* reference) const;

  // False for a reference that is not one of the store's.
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
