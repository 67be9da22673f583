#include "host/module/ModuleResources.h"

#include <algorithm>
#include <utility>

namespace vantorel::host {

void* StringTableStore::add(StringTable table) {
  const std::lock_guard lock(mutex_);
  tables_.push_back(std::make_unique<StringTable>(std::move(table)));
  return tables_.back().get();
}

const StringTable* StringTableStore::find(const void* reference) const {
  const std::lock_guard lock(mutex_);
  for (const auto& table : tables_) {
    if (table.get() == reference) {
      return table.get();
    }
  }
  return nullptr;
}

bool StringTableStore::remove(const void* reference) {
  const std::lock_guard lock(mutex_);
  return std::erase_if(tables_, [reference](const auto& table) { return table.get() == reference; }) != 0;
}

}  // namespace vantorel::host
