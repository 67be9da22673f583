#include "bridges/ofx/StrokeFont.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace vantorel::ofx {
namespace {

constexpr double kAdvance = 3.2;  // distance between letters, in cells

// The letters of the overlay's messages. A point is two digits, x and y (up); polylines are separated by spaces.
constexpr std::array<std::pair<char, std::string_view>, 16> kLetters{{{'a', "0003142320 0222"},
                                                                      {'c', "24040020"},
                                                                      {'d', "00041423211000"},
                                                                      {'e', "24040020 0222"},
                                                                      {'f', "240400 0222"},
                                                                      {'h', "0004 2024 0222"},
                                                                      {'i', "1014"},
                                                                      {'l', "040020"},
                                                                      {'n', "00042024"},
                                                                      {'o', "0004242000"},
                                                                      {'p', "0004242202"},
                                                                      {'r', "0004242202 1220"},
                                                                      {'s', "002022020424"},
                                                                      {'t', "0424 1410"},
                                                                      {'v', "041024"},
                                                                      {':', "1011 1213"}}};

std::string_view linesOf(char letter) {
  for (const auto& [name, lines] : kLetters) {
    if (name == letter) {
      return lines;
    }
  }
  return {};
}

}  // namespace

void drawStrokes(const char* text, const PointD& at, const PointD& unit,
                 const std::function<void(std::span<const PointD>)>& draw) {
  double left = at.x;
  for (const char letter : std::string_view(text)) {
    std::string_view lines = linesOf(letter);
    while (!lines.empty()) {
      const std::string_view line = lines.substr(0, lines.find(' '));
      std::array<PointD, 8> points;
      std::size_t count = 0;
      for (std::size_t i = 0; i + 1 < line.size(); i += 2) {
        points[count++] = {left + (line[i] - '0') * unit.x, at.y + (line[i + 1] - '0') * unit.y};
      }
      draw({points.data(), count});
      lines.remove_prefix(std::min(lines.size(), line.size() + 1));
    }
    left += kAdvance * unit.x;
  }
}

}  // namespace vantorel::ofx
