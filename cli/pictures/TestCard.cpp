#include "cli/pictures/TestCard.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

#include "cli/base/Rows.h"
#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

namespace {

using Colour = std::array<float, 4>;

constexpr Colour kRed{0.86f, 0.16f, 0.14f, 1.0f};
constexpr Colour kGreen{0.16f, 0.68f, 0.24f, 1.0f};
constexpr Colour kBlue{0.15f, 0.33f, 0.86f, 1.0f};
constexpr Colour kYellow{0.95f, 0.80f, 0.14f, 1.0f};
constexpr Colour kWhite{1.0f, 1.0f, 1.0f, 1.0f};
constexpr Colour kInk{0.10f, 0.10f, 0.12f, 1.0f};
constexpr std::array<Colour, 7> kBars{{{0.75f, 0.75f, 0.75f, 1.0f},
                                       {0.75f, 0.75f, 0.0f, 1.0f},
                                       {0.0f, 0.75f, 0.75f, 1.0f},
                                       {0.0f, 0.75f, 0.0f, 1.0f},
                                       {0.75f, 0.0f, 0.75f, 1.0f},
                                       {0.75f, 0.0f, 0.0f, 1.0f},
                                       {0.0f, 0.0f, 0.75f, 1.0f}}};

Colour grey(float value) {
  return {value, value, value, 1.0f};
}

// Distances are in pixels, positions of pixel centres.
class Card {
 public:
  explicit Card(host::Size size)
      : size_(size),
        shorter_(static_cast<float>(std::min(size.width, size.height))),
        square_(std::max(4, (std::min(size.width, size.height) + 6) / 12)) {}

  Colour at(int x, int y) const {
    if (const Colour* edge = edgeLine(x, y)) {
      return *edge;
    }
    if (const Colour* corner = cornerSquare(x, y)) {
      return *corner;
    }
    const float u = (static_cast<float>(x) + 0.5f) / static_cast<float>(size_.width);
    const float v = (static_cast<float>(y) + 0.5f) / static_cast<float>(size_.height);
    if (isCentreLine(x, y)) {
      return kWhite;
    }
    if (distanceToCircle(x, y) < 1.0f) {
      return kWhite;
    }
    if (u > 0.3f && u < 0.7f && v > 0.1f && v < 0.9f) {
      return column(x, y, (u - 0.3f) / 0.4f, v);
    }
    return background(x, y, v);
  }

 private:
  // The outermost line of pixels: a frame that loses a row or column of the layer loses one colour.
  const Colour* edgeLine(int x, int y) const {
    if (y == 0) {
      return &kRed;
    }
    if (y == size_.height - 1) {
      return &kBlue;
    }
    if (x == 0) {
      return &kGreen;
    }
    if (x == size_.width - 1) {
      return &kYellow;
    }
    return nullptr;
  }

  // Upper left red, upper right green, lower left blue, lower right yellow.
  const Colour* cornerSquare(int x, int y) const {
    const bool left = x < square_;
    const bool right = x >= size_.width - square_;
    if (!left && !right) {
      return nullptr;
    }
    if (y < square_) {
      return left ? &kRed : &kGreen;
    }
    if (y >= size_.height - square_) {
      return left ? &kBlue : &kYellow;
    }
    return nullptr;
  }

  bool isCentreLine(int x, int y) const { return x == size_.width / 2 || y == size_.height / 2; }

  float distanceToCircle(int x, int y) const {
    const float dx = static_cast<float>(x) + 0.5f - static_cast<float>(size_.width) / 2.0f;
    const float dy = static_cast<float>(y) + 0.5f - static_cast<float>(size_.height) / 2.0f;
    return std::abs(std::hypot(dx, dy) - 0.46f * shorter_);
  }

  // From top to bottom: bars, a grey ramp, lines one, two and four pixels wide, rings, a transparent window.
  Colour column(int x, int y, float u, float v) const {
    if (v < 0.22f) {
      return kBars[static_cast<std::size_t>(std::clamp(static_cast<int>(u * 7.0f), 0, 6))];
    }
    if (v < 0.3f) {
      return grey(u);
    }
    if (v < 0.38f) {
      return fineLines(x, u);
    }
    if (v < 0.7f) {
      return rings(x, y);
    }
    if (v < 0.8f) {
      return window(u);
    }
    return {u, 0.25f, 1.0f - u, 1.0f};
  }

  static Colour fineLines(int x, float u) {
    const int width = u < 1.0f / 3.0f ? 1 : (u < 2.0f / 3.0f ? 2 : 4);
    return grey((x / width) % 2 == 0 ? 0.05f : 0.95f);
  }

  // A zone plate: rings that grow finer outward, up to two pixels a ring at the column's edge.
  Colour rings(int x, int y) const {
    const float dx = static_cast<float>(x) + 0.5f - 0.5f * static_cast<float>(size_.width);
    const float dy = static_cast<float>(y) + 0.5f - 0.54f * static_cast<float>(size_.height);
    const float reach = 0.2f * static_cast<float>(size_.width);
    constexpr float kPi = 3.14159265f;
    return grey(0.5f + 0.5f * std::cos(kPi * (dx * dx + dy * dy) / (2.0f * reach)));
  }

  // White fading out: alpha is the ramp itself.
  static Colour window(float u) { return {u, u, u, u}; }

  // Squares, each quarter of the height half as large as the one above.
  Colour background(int x, int y, float v) const {
    const int quarter = std::clamp(static_cast<int>(v * 4.0f), 0, 3);
    const int side = std::max(1, square_ >> quarter);
    const bool dark = ((x / side) + (y / side)) % 2 == 0;
    return dark ? kInk : grey(0.62f + 0.2f * (1.0f - v));
  }

  host::Size size_;
  float shorter_;
  int square_;
};

template <typename Channel>
void drawRow(const Card& card, int y, Channel* row, int width) {
  for (int x = 0; x < width; ++x, row += 4) {
    const Colour colour = card.at(x, y);
    for (std::size_t c = 0; c < 4; ++c) {
      if constexpr (std::is_floating_point_v<Channel>) {
        row[c] = colour[c];
      } else {
        row[c] = quantise<Channel>(colour[c]);
      }
    }
  }
}

}  // namespace

void drawTestCard(const host::ImageView& image) {
  const Card card(image.size);
  forRows(image.size.height, [&](int y) {
    switch (image.depth) {
      case host::Depth::Bits8:
        return drawRow(card, y, reinterpret_cast<std::uint8_t*>(image.row(y)), image.size.width);
      case host::Depth::Bits16:
        return drawRow(card, y, reinterpret_cast<std::uint16_t*>(image.row(y)), image.size.width);
      case host::Depth::Float:
        return drawRow(card, y, reinterpret_cast<float*>(image.row(y)), image.size.width);
    }
  });
}

}  // namespace vantorel::cli
