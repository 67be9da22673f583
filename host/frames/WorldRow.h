// Access to a world's rows.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Row `y` as pixels, channels or bytes. Always inlined, since it is used in files compiled for different instruction
// sets: the linker keeps one copy of an inline function, which may need instructions that the processor lacks.
template <typename Unit>
[[gnu::always_inline]] inline Unit* worldRow(const PF_LayerDef& world, std::int64_t y) {
  return reinterpret_cast<Unit*>(static_cast<std::byte*>(world.data) + std::ptrdiff_t{world.row_bytes} * y);
}

}  // namespace vantorel::host
