// Images between guard bytes, which tell whether anything but pixels was written.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "support/PF_HostRecords.h"

struct WorldShape {
  int width;               // pixels
  int height;              // pixels
  int row_padding = 12;    // channels behind each row
  bool bottom_up = false;  // the first row is the last in memory, so that the row stride is negative
};

// An image of `depth` bits a channel. Guard bytes stand before its first row, after its last and at the end of each.
class GuardedWorld {
 public:
  GuardedWorld(int depth, int width, int height) : GuardedWorld(depth, WorldShape{width, height}) {}
  GuardedWorld(int depth, const WorldShape& shape);
  ~GuardedWorld();
  GuardedWorld(const GuardedWorld&) = delete;

  template <typename Pixel>
  Pixel& at(int x, int y) {
    return reinterpret_cast<Pixel*>(static_cast<char*>(world.data) + std::ptrdiff_t{y} * world.row_bytes)[x];
  }
  void fillBytes(std::uint8_t value);
  std::string pixelBytes() const;
  bool guardsIntact() const;
  // From now on the address sanitizer, where it is there, also stops whoever reads the guard bytes.
  void protectGuards();

  PF_LayerDef world;  // the extent hint is the whole image

 private:
  template <typename Visit>
  void forRows(std::vector<std::uint8_t>& bytes, Visit visit) const;
  void openGuards() const;

  WorldShape shape_;
  std::size_t pixel_row_bytes_;
  std::size_t row_bytes_;
  mutable std::vector<std::uint8_t> bytes_;
};
