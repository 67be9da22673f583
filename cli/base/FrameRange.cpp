#include "cli/base/FrameRange.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <limits>
#include <numeric>
#include <optional>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"

namespace vantorel::cli {

namespace {

constexpr double kFastestRate = 10000.0;
constexpr std::size_t kDigitsOfAnInt = std::numeric_limits<std::int32_t>::digits10;

std::optional<FrameRate> broadcastRate(std::string_view text) {
  struct Named {
    std::string_view text;
    std::uint32_t scale;
  };
  constexpr std::array<Named, 5> kNamed{
      {{"23.976", 24000}, {"23.98", 24000}, {"29.97", 30000}, {"59.94", 60000}, {"119.88", 120000}}};
  for (const Named& named : kNamed) {
    if (named.text == text) {
      return FrameRate{named.scale, 1001};
    }
  }
  return std::nullopt;
}

// Converts a decimal, rounded to thousandths, to a ratio in lowest terms.
std::optional<FrameRate> decimalRate(std::string_view text) {
  const auto value = parseNumber(text);
  if (!value || *value < 0.001 || *value > kFastestRate) {
    return std::nullopt;
  }
  const auto thousandths = static_cast<std::int32_t>(std::lround(*value * 1000.0));
  const std::int32_t common = std::gcd(thousandths, 1000);
  return FrameRate{static_cast<std::uint32_t>(thousandths / common), 1000 / common};
}

std::optional<FrameRate> ratioRate(std::string_view text) {
  const std::size_t slash = text.find('/');
  if (slash == std::string_view::npos) {
    return std::nullopt;
  }
  const auto scale = parseInt(text.substr(0, slash));
  const auto step = parseInt(text.substr(slash + 1));
  if (!scale || !step || *scale < 1 || *step < 1) {
    return std::nullopt;
  }
  return FrameRate{static_cast<std::uint32_t>(*scale), *step};
}

}  // namespace

FrameRange parseFrameRange(const std::string& input, std::string_view text) {
  const CommandError malformed = badArgument(
      input,
      fmt::format("'{}' is not a range of frames; give FIRST-LAST, such as 1-100, or 1-100x2 for every second", text));
  std::string_view rest = text;
  FrameRange range;
  if (const std::size_t cross = rest.find_first_of("xX"); cross != std::string_view::npos) {
    const auto step = parseInt(rest.substr(cross + 1));
    if (!step) {
      throw malformed;
    }
    if (*step < 1) {
      throw badArgument(input, fmt::format("'{}' steps by {}; the step must be 1 or more", text, *step));
    }
    range.step = *step;
    rest = rest.substr(0, cross);
  }
  // The sign of a negative first frame is not the separator.
  const std::size_t dash = rest.find('-', 1);
  const auto first = parseInt(rest.substr(0, dash));
  const auto last = dash == std::string_view::npos ? first : parseInt(rest.substr(dash + 1));
  if (!first || !last) {
    if (text.find_first_not_of("0123456789-xX") == std::string_view::npos && text.size() > kDigitsOfAnInt) {
      throw badArgument(
          input, fmt::format("'{}' goes beyond the frame numbers {} to {}; renumber the frames", text,
                             std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max()));
    }
    throw malformed;
  }
  if (*last < *first) {
    throw badArgument(input, fmt::format("'{}' ends before it starts; give the lower frame first", text));
  }
  range.first = *first;
  range.last = *last;
  return range;
}

FrameRate parseFrameRate(const std::string& input, std::string_view text) {
  for (const auto& parse : {broadcastRate, ratioRate, decimalRate}) {
    if (const auto rate = parse(text)) {
      return *rate;
    }
  }
  throw badArgument(input, fmt::format("'{}' is not a frame rate; give frames per second, such as 25, 23.976 or "
                                       "24000/1001",
                                       text));
}

host::FrameTime timeOf(std::int32_t frame, const FrameRate& rate) {
  const std::int64_t time = std::int64_t{frame} * rate.step;
  if (time < std::numeric_limits<std::int32_t>::min() || time > std::numeric_limits<std::int32_t>::max()) {
    throw badArgument("--frames", fmt::format("the time of frame {} at this --fps is too large for an effect; renumber "
                                              "the frames or give a whole frame rate",
                                              frame));
  }
  return {static_cast<std::int32_t>(time), rate.step, rate.scale};
}

}  // namespace vantorel::cli
