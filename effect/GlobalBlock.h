// The effect's one piece of state between calls: 8 bytes, reached through the handle that the host keeps as
// global_data.
#pragma once

#include <cstddef>

#include "support/PF_HostRecords.h"

struct GlobalBlock {
  void* string_table;  // the reference returned when the string table was registered
};

static_assert(sizeof(GlobalBlock) == 8);

// The string-table reference of the global block, or null when there is no block (no successful global setup).
inline void* stringTableReference(const PF_InData* in_data) {
  return in_data->global_data == nullptr ? nullptr
                                         : static_cast<const GlobalBlock*>(*in_data->global_data)->string_table;
}
