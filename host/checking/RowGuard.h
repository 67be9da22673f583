// Checking mode's output: a world surrounded by guard pixels, which reveal any write outside a row.
#pragma once

#include <cstddef>
#include <span>

#include "host/Image.h"
#include "host/checking/CallLedger.h"

namespace vantorel::host {

class RowGuard {
 public:
  // Fails like Image::create.
  static Result<RowGuard> create(Size size, Depth depth);

  // The world inside the guards.
  ImageView world() { return worldIn(pixels_); }

  // Remembers the world's current content; call after clearing it.
  void remember();

  // Call after row y has been written. Reports bytes that changed outside it: in the rows above and below, and in the
  // padding.
  void rowWritten(int y, CallLedger& ledger);

  // Call after the command. Reports changed guards and, if the frame was drawn by rows, any other bytes changed outside
  // those rows.
  void finish(bool drawn_by_rows, CallLedger& ledger) const;

 private:
  ImageView worldIn(Image& image);
  std::span<std::byte> rowOf(Image& image, int y) const;  // the pixels of a row, without guards
  std::span<const std::byte> whole(const Image& image,
                                   int y) const;  // a row with its guard; rows -1 and height are guards

  Image pixels_;
  Image remembered_;
  Size size_;
};

}  // namespace vantorel::host
