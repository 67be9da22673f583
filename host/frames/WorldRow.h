// A row of a world.
#pragma once

#include <cstddef>
#include <cstdint>

#include "support/PF_HostRecords.h"

namespace vantorel::host {

// Row `y` as pixels, channels or bytes. Always inlined: files compiled for different instruction sets use it, and a
// copy compiled for one set must not serve the others.
template <typename Unit>
[[gnu::always_inline]] inline Unit* worldRow(const PF_LayerDef& world, std::int64_t y) {
  return reinterpret_cast<Unit*>(static_cast<std::byte*>(world.data) + std::ptrdiff_t{world.row_bytes} * y);
}

}  // namespace vantorel::host
