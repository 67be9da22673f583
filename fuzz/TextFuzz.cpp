// Fuzzes what the command and the host read of people's text: frame ranges and rates, numbers, positions, sizes and
// crops, patterns of file names, and translations. What is refused is refused with an error that names its input and
// its remedy; what is taken lies in its range.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>

#include "cli/base/CommandError.h"
#include "cli/base/FramePattern.h"
#include "cli/base/FrameRange.h"
#include "cli/base/NumberParsing.h"
#include "cli/base/SizeParsing.h"
#include "cli/base/Text.h"
#include "cli/corners/Corners.h"
#include "cli/shots/Crop.h"
#include "fuzz/Input.h"
#include "host/Module.h"

namespace {

using namespace vantorel;
using vantorel::fuzz::Input;
using vantorel::fuzz::require;

constexpr const char* kInput = "--input";

void fuzzFrames(const std::string& text) {
  const cli::FrameRange range = cli::parseFrameRange(kInput, text);
  require(range.first <= range.last && range.step >= 1 && range.count() >= 1, "a range holds frames in order");
  const std::int64_t last = range.at(range.count() - 1);
  require(last <= range.last && last + range.step > range.last, "a range's last frame is its last");
}

void fuzzRate(const std::string& text) {
  const cli::FrameRate rate = cli::parseFrameRate(kInput, text);
  require(rate.scale > 0 && rate.step > 0, "a rate is positive");
  try {
    cli::timeOf(1001, rate);
  } catch (const cli::CommandError& error) {
    require(error.text().find("--frames") == 0, "a time that does not fit is the frame's fault");
  }
}

void fuzzPattern(const std::string& text) {
  const cli::FramePattern pattern = cli::FramePattern::parse(kInput, text);
  require(!pattern.hasNumber() || pattern.path(1) != pattern.path(2), "two frames have two names");
  require(pattern.hasNumber() || pattern.path(1) == pattern.path(2), "a still has one name");
  require(cli::FramePattern::literal(text).path(7) == text, "a literal name stays");
}

void fuzzNumbers(const std::string& text) {
  const auto number = cli::parseNumber(text);
  require(!number || std::isfinite(*number), "a number is finite");
  cli::parseInt(text);
  const auto corner = cli::parseCorner(text);
  if (corner) {
    const auto placed = cli::toLayerPixels(*corner, {1920, 1080});
    require(!placed || (host::isCoordinate(placed->x) && host::isCoordinate(placed->y)), "a position is in range");
  }
  const int in_range = cli::parseIntInRange(kInput, text, -7, 1000);
  require(in_range >= -7 && in_range <= 1000, "a whole number is in its range");
}

void fuzzSizes(const std::string& text) {
  if (text.find('x') != std::string::npos) {
    const host::Size size = cli::parseSize(kInput, text);
    require(size.width >= 1 && size.height >= 1, "a size has pixels");
    return;
  }
  const auto left = cli::remaining(cli::parseCrop(kInput, text), {640, 480});
  require(!left || (!left->empty() && left->left >= 0 && left->right <= 640 && left->top >= 0 && left->bottom <= 480),
          "what a crop leaves lies in the layer");
}

void fuzzTranslations(const std::string& text) {
  const auto read = host::parseTranslations(text, kInput);
  require(read || !read.error().message.empty(), "an error says what is wrong");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  constexpr void (*kReaders[])(const std::string&) = {fuzzFrames,  fuzzRate,  fuzzPattern,
                                                      fuzzNumbers, fuzzSizes, fuzzTranslations};
  Input input(bytes, size);
  const auto reader = kReaders[input.inRange(0, std::size(kReaders) - 1)];
  try {
    reader(input.rest());
  } catch (const cli::CommandError& error) {
    require(error.text().find(kInput) == 0 && error.text().find(';') != std::string::npos,
            "an error names its input and a remedy");
    require(error.text().find('\n') == std::string::npos, "an error is one line");
  }
  return 0;
}
