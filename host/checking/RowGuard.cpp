#include "host/checking/RowGuard.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <utility>

namespace vantorel::host {

namespace {

constexpr int kGuardPixels = 16;  // at the end of every row
constexpr int kGuardRows = 1;     // above and below
constexpr int kGuardByte = 0xA5;

bool same(std::span<const std::byte> a, std::span<const std::byte> b) {
  return std::ranges::equal(a, b);
}

void fillGuards(Image& image) {
  const ImageView view = image.view();
  std::memset(view.data, kGuardByte,
              static_cast<std::size_t>(view.row_bytes) * static_cast<std::size_t>(view.size.height));
}

}  // namespace

Result<RowGuard> RowGuard::create(Size size, Depth depth) {
  const Size guarded{size.width + kGuardPixels, size.height + 2 * kGuardRows};
  RowGuard guard;
  for (Image* image : {&guard.pixels_, &guard.remembered_}) {
    Result<Image> created = Image::create(guarded, depth);
    if (!created) {
      return tl::unexpected(std::move(created).error());
    }
    *image = std::move(*created);
    fillGuards(*image);
  }
  guard.size_ = size;
  return guard;
}

void RowGuard::remember() {
  const ImageView from = pixels_.view();
  std::memcpy(remembered_.view().data, from.data,
              static_cast<std::size_t>(from.row_bytes) * static_cast<std::size_t>(from.size.height));
}

void RowGuard::rowWritten(int y, CallLedger& ledger) {
  const std::size_t pixel_bytes = rowOf(pixels_, y).size();
  const bool padding_kept = same(whole(pixels_, y).subspan(pixel_bytes), whole(remembered_, y).subspan(pixel_bytes));
  if (!padding_kept || !same(whole(pixels_, y - 1), whole(remembered_, y - 1)) ||
      !same(whole(pixels_, y + 1), whole(remembered_, y + 1))) {
    ledger.report("the pixel function of row " + std::to_string(y) + " wrote outside the row");
  }
  std::ranges::copy(rowOf(pixels_, y), rowOf(remembered_, y).begin());
}

void RowGuard::finish(bool drawn_by_rows, CallLedger& ledger) const {
  for (int y = -kGuardRows; y < size_.height + kGuardRows; ++y) {
    const bool is_guard = y < 0 || y >= size_.height;
    const std::size_t pixel_bytes = static_cast<std::size_t>(size_.width) * bytesPerPixel(pixels_.depth());
    const std::size_t unguarded = is_guard || drawn_by_rows ? 0 : pixel_bytes;
    if (!same(whole(pixels_, y).subspan(unguarded), whole(remembered_, y).subspan(unguarded))) {
      ledger.report("the module wrote outside the output or the rows that it had iterated, at row " +
                    std::to_string(y));
    }
  }
}

ImageView RowGuard::worldIn(Image& image) {
  const ImageView view = image.view();
  return {view.row(kGuardRows), view.row_bytes, size_, view.depth};
}

std::span<std::byte> RowGuard::rowOf(Image& image, int y) const {
  return {image.view().row(y + kGuardRows), static_cast<std::size_t>(size_.width) * bytesPerPixel(image.depth())};
}

std::span<const std::byte> RowGuard::whole(const Image& image, int y) const {
  const ConstImageView view = image.view();
  return {view.row(y + kGuardRows), static_cast<std::size_t>(view.row_bytes)};
}

}  // namespace vantorel::host
