// The pixels of a picture and their channels, row by row, for loops that visit each of them.
#pragma once

#include <vector>

struct PixelPosition {
  int x;
  int y;
};

struct ChannelPosition {
  int x;
  int y;
  int c;  // 0 to 3
};

// Of an area with the sides left, top, right and bottom.
template <typename Area>
std::vector<PixelPosition> pixelsOf(const Area& area) {
  std::vector<PixelPosition> pixels;
  for (int y = area.top; y < area.bottom; ++y) {
    for (int x = area.left; x < area.right; ++x) {
      pixels.push_back({x, y});
    }
  }
  return pixels;
}

inline std::vector<PixelPosition> pixelsOf(int width, int height) {
  struct {
    int left, top, right, bottom;
  } const whole{0, 0, width, height};
  return pixelsOf(whole);
}

inline std::vector<ChannelPosition> channelsOf(int width, int height) {
  std::vector<ChannelPosition> channels;
  for (const PixelPosition& pixel : pixelsOf(width, height)) {
    for (int c = 0; c < 4; ++c) {
      channels.push_back({pixel.x, pixel.y, c});
    }
  }
  return channels;
}
