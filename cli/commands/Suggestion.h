// Suggestions for mistyped words.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vantorel::cli {

// The nearest of the known words, if one is near enough: at most a third of its letters differ.
std::optional<std::string> nearestWord(const std::string& word, const std::vector<std::string>& known);

}  // namespace vantorel::cli
