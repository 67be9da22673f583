// Checking mode's output: a world with guards all round, in which every write outside of a row is found.
#pragma once

#include <cstddef>
#include <span>

#include "host/Image.h"
#include "host/checking/CallLedger.h"

namespace vantorel::host {

class RowGuard {
 public:
  // Fails as Image::create does.
  static Result<RowGuard> create(Size size, Depth depth);

  // The world inside the guards.
  ImageView world() { return worldIn(pixels_); }

  // Remembers the world as it is now; call after clearing it.
  void remember();

  // After row y has been written: reports bytes that changed beside it, in the rows above and below, and in the
  // padding.
  void rowWritten(int y, CallLedger& ledger);

  // After the command: reports changed guards, and in a frame drawn by rows any other byte changed outside of them.
  void finish(bool drawn_by_rows, CallLedger& ledger) const;

 private:
  ImageView worldIn(Image& image);
  std::span<std::byte> rowOf(Image& image, int y) const;              // the pixels of a row, guards left out
  std::span<const std::byte> whole(const Image& image, int y) const;  // a row with its guard; -1 and height are guards

  Image pixels_;
  Image remembered_;
  Size size_;
};

}  // namespace vantorel::host
