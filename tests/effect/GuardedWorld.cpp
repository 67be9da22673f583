#include "tests/effect/GuardedWorld.h"

#include <algorithm>
#include <cstring>

#if defined(__SANITIZE_ADDRESS__)
#define ADDRESS_SANITIZER
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define ADDRESS_SANITIZER
#endif
#endif
#ifdef ADDRESS_SANITIZER
#include <sanitizer/asan_interface.h>
#endif

namespace {

constexpr std::uint8_t kGuard = 0xDB;
constexpr std::size_t kGuardBytes = 64;

}  // namespace

GuardedWorld::GuardedWorld(int depth, const WorldShape& shape)
    : shape_(shape),
      pixel_row_bytes_(std::size_t(shape.width) * (depth / 2)),
      row_bytes_(pixel_row_bytes_ + std::size_t(shape.row_padding) * (depth / 8)),
      bytes_(2 * kGuardBytes + row_bytes_ * std::size_t(shape.height), kGuard) {
  const std::size_t first = shape.bottom_up && shape.height > 0 ? row_bytes_ * std::size_t(shape.height - 1) : 0;
  const auto step = static_cast<std::int32_t>(row_bytes_);
  world = {bytes_.data() + kGuardBytes + first,
           shape.bottom_up ? -step : step,
           shape.width,
           shape.height,
           {0, 0, shape.width, shape.height}};
  fillBytes(0);
}

GuardedWorld::~GuardedWorld() {
  openGuards();
}

template <typename Visit>
void GuardedWorld::forRows(std::vector<std::uint8_t>& bytes, Visit visit) const {
  for (std::size_t row = 0; row < std::size_t(shape_.height); ++row) {
    visit(bytes.data() + kGuardBytes + row * row_bytes_);
  }
}

void GuardedWorld::fillBytes(std::uint8_t value) {
  forRows(bytes_, [&](std::uint8_t* row) { std::memset(row, value, pixel_row_bytes_); });
}

std::string GuardedWorld::pixelBytes() const {
  std::string pixels;
  forRows(bytes_, [&](const std::uint8_t* row) { pixels.append(row, row + pixel_row_bytes_); });
  return pixels;
}

bool GuardedWorld::guardsIntact() const {
  openGuards();
  std::vector<std::uint8_t> rest = bytes_;
  forRows(rest, [&](std::uint8_t* row) { std::memset(row, kGuard, pixel_row_bytes_); });
  return std::ranges::all_of(rest, [](std::uint8_t byte) { return byte == kGuard; });
}

void GuardedWorld::protectGuards() {
#ifdef ADDRESS_SANITIZER
  ASAN_POISON_MEMORY_REGION(bytes_.data(), bytes_.size());
  forRows(bytes_, [&](std::uint8_t* row) { ASAN_UNPOISON_MEMORY_REGION(row, pixel_row_bytes_); });
#endif
}

void GuardedWorld::openGuards() const {
#ifdef ADDRESS_SANITIZER
  ASAN_UNPOISON_MEMORY_REGION(bytes_.data(), bytes_.size());
#endif
}
