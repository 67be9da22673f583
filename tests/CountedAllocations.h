// Counts every allocation of its process, those of the libraries that it loads included: linked into programs of its
// own.
#pragma once

#include <atomic>
#include <limits>

namespace vantorel::testing {

extern std::atomic<long> allocations;
extern std::atomic<long> blocks_held;  // allocated and not yet freed
// When none are left, allocations fail.
constexpr long kUnlimited = std::numeric_limits<long>::max();
extern std::atomic<long> allocations_left;

}  // namespace vantorel::testing
