// Parses numbers in arguments and files: the whole text must be a number. Independent of the locale.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

namespace vantorel::cli {

// A finite number, or the error as a phrase that continues "'<text>' ...": "is not a number", "is not finite".
tl::expected<double, std::string> parseNumber(std::string_view text);

// A whole number that fits into 32 bits; empty for other texts.
std::optional<std::int32_t> parseInt(std::string_view text);

// A whole number from `least` to `most`. Throws CommandError naming `input`.
int parseIntInRange(const std::string& input, std::string_view text, int least, int most);

}  // namespace vantorel::cli
