#include "tracks/CornerNames.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <vector>

#include "tracks/Text.h"

namespace vantorel::tracks {

namespace {

// "upperleft", "lefttop", "bl", "rl": a height and a side, or their first letters, in either order.
std::optional<Corner> cornerOfWord(std::string_view word) {
  constexpr std::array<std::string_view, 4> kHeights{"upper", "top", "lower", "bottom"};
  constexpr std::array<std::string_view, 2> kSides{"left", "right"};
  constexpr std::array<Corner, 4> kCorners{kUpperLeft, kUpperRight, kLowerLeft, kLowerRight};
  const auto joins = [word](std::string_view first, std::string_view second) {
    return word.size() == first.size() + second.size() && word.starts_with(first) && word.ends_with(second);
  };
  for (std::size_t h = 0; h < kHeights.size(); ++h) {
    for (std::size_t s = 0; s < kSides.size(); ++s) {
      const std::string_view height = kHeights[h];
      const std::string_view side = kSides[s];
      const std::string_view h1 = height.substr(0, 1);
      const std::string_view s1 = side.substr(0, 1);
      if (joins(height, side) || joins(side, height) || joins(h1, s1) || joins(s1, h1)) {
        return kCorners[h / 2 * 2 + s];
      }
    }
  }
  return std::nullopt;
}

bool isLetter(char c) {
  return c >= 'a' && c <= 'z';
}
bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

// The words of the name, in lower case: "Plate_TopLeft.2" gives "plate", "topleft".
std::vector<std::string> lettersOf(std::string_view name) {
  std::vector<std::string> words(1);
  for (const char c : lowerCase(name)) {
    if (isLetter(c)) {
      words.back() += c;
    } else if (!words.back().empty()) {
      words.emplace_back();
    }
  }
  return words;
}

std::string lettersAndDigits(std::string_view name) {
  std::string result = lowerCase(name);
  result.erase(std::remove_if(result.begin(), result.end(), [](char c) { return !isLetter(c) && !isDigit(c); }),
               result.end());
  return result;
}

// "1", "p1", "corner1", "point1"; the number as written.
std::optional<std::size_t> numberOfPoint(std::string_view text) {
  for (const std::string_view prefix : {"corner", "point", "pt", "pos", "p", "c"}) {
    if (text.substr(0, prefix.size()) == prefix) {
      text.remove_prefix(prefix.size());
      break;
    }
  }
  if (text.size() != 1 || !isDigit(text.front())) {
    return std::nullopt;
  }
  return static_cast<std::size_t>(text.front() - '0');
}

}  // namespace

std::optional<Corner> cornerOfName(std::string_view name) {
  const std::vector<std::string> words = lettersOf(name);
  std::optional<Corner> found;
  const auto take = [&](const std::optional<Corner>& corner) {
    const bool contradicts = found && corner && *found != *corner;
    found = corner ? corner : found;
    return !contradicts;
  };
  for (std::size_t w = 0; w < words.size(); ++w) {
    if (!take(cornerOfWord(words[w])) || (w + 1 < words.size() && !take(cornerOfWord(words[w] + words[w + 1])))) {
      return std::nullopt;
    }
  }
  return found;
}

std::optional<CoordinateColumn> coordinateOfColumn(std::string_view name) {
  const std::string text = lettersAndDigits(name);
  const auto with_axis = [](char axis, std::string_view point) -> std::optional<CoordinateColumn> {
    if (axis != 'x' && axis != 'y') {
      return std::nullopt;
    }
    if (const auto corner = cornerOfWord(point.substr(0, 6) == "corner" ? point.substr(6) : point)) {
      return CoordinateColumn{*corner, false, axis == 'y'};
    }
    if (const auto number = numberOfPoint(point)) {
      return CoordinateColumn{*number, true, axis == 'y'};
    }
    return std::nullopt;
  };
  if (text.size() < 2) {
    return std::nullopt;
  }
  const std::string_view view = text;
  const auto at_end = with_axis(view.back(), view.substr(0, view.size() - 1));
  return at_end ? at_end : with_axis(view.front(), view.substr(1));
}

bool isFrameColumn(std::string_view name) {
  const std::string text = lettersAndDigits(name);
  constexpr std::array<std::string_view, 6> kWords{"frame", "frames", "f", "framenumber", "frameno", "fr"};
  return std::find(kWords.begin(), kWords.end(), text) != kWords.end();
}

}  // namespace vantorel::tracks
