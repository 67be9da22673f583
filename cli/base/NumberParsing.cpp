#include "cli/base/NumberParsing.h"

#include <fmt/format.h>

#include <charconv>
#include <cmath>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

template <typename Number>
std::optional<Number> parseAll(std::string_view text, std::errc& fault) {
  if (text.size() > 1 && text.front() == '+' && text[1] != '-') {
    text.remove_prefix(1);
  }
  Number value{};
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  fault = error;
  if (error != std::errc() || end != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

}  // namespace

tl::expected<double, std::string> parseNumber(std::string_view text) {
  std::errc fault{};
  const std::optional<double> value = parseAll<double>(text, fault);
  if (fault == std::errc::result_out_of_range) {
    return tl::make_unexpected("is too large for a number");
  }
  if (!value) {
    return tl::make_unexpected(text.empty() ? "is empty" : "is not a number");
  }
  if (!std::isfinite(*value)) {
    return tl::make_unexpected("is not finite");
  }
  return *value;
}

std::optional<std::int32_t> parseInt(std::string_view text) {
  std::errc fault{};
  return parseAll<std::int32_t>(text, fault);
}

int parseIntInRange(const std::string& input, std::string_view text, int least, int most) {
  const auto value = parseInt(text);
  if (!value || *value < least || *value > most) {
    throw badArgument(input, fmt::format("'{}' is not a whole number from {} to {}; give one", text, least, most));
  }
  return *value;
}

}  // namespace vantorel::cli
