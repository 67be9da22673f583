#include <benchmark/benchmark.h>

#include <array>
#include <cstring>

#include "bench/Components.h"
#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

void copyRows(const host::ConstImageView& from, const host::ImageView& to) {
  for (int y = 0; y < from.size.height; ++y) {
    std::memcpy(to.row(y), from.row(y), static_cast<std::size_t>(from.size.width) * bytesPerPixel(from.depth));
  }
  benchmark::ClobberMemory();
}

// The four channel sums of the picture: per row in RowSum, which holds an integer sum exactly, then in Sum.
template <typename Channel, typename RowSum, typename Sum>
std::array<Sum, 4> sumOnce(const host::ConstImageView& view) {
  std::array<Sum, 4> total{};
  for (int y = 0; y < view.size.height; ++y) {
    const auto* pixel = reinterpret_cast<const Channel*>(view.row(y));
    RowSum row[4] = {};
    for (int x = 0; x < view.size.width; ++x, pixel += 4) {
      for (int i = 0; i < 4; ++i) {
        row[i] += pixel[i];
      }
    }
    for (std::size_t i = 0; i < 4; ++i) {
      total[i] += row[i];
    }
  }
  return total;
}

void sumPicture(const host::ConstImageView& view) {
  switch (view.depth) {
    case host::Depth::Bits8:
      benchmark::DoNotOptimize(sumOnce<std::uint8_t, std::uint32_t, std::uint64_t>(view));
      break;
    case host::Depth::Bits16:
      benchmark::DoNotOptimize(sumOnce<std::uint16_t, std::uint32_t, std::uint64_t>(view));
      break;
    case host::Depth::Float:
      benchmark::DoNotOptimize(sumOnce<float, float, double>(view));
      break;
  }
}

}  // namespace

void addBaselines(const Effort& effort) {
  for (const host::Depth depth : kDepths) {
    for (const host::Size size : {kHd, kUhd}) {
      const Labels labels{"copy", "", sizeText(size), depthText(depth), "", "memcpy"};
      add(effort, {labels, [=] { copyRows(picture(size, depth), canvas(size, depth)); },
                   std::int64_t{size.width} * size.height});
    }
    add(effort, {{"sum", "c", sizeText(kUhd), depthText(depth), "", "plain"},
                 [=] { sumPicture(picture(kUhd, depth)); },
                 std::int64_t{kUhd.width} * kUhd.height});
  }
}

}  // namespace vantorel::bench
