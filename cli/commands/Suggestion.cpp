#include "cli/commands/Suggestion.h"

#include <algorithm>
#include <numeric>

namespace vantorel::cli {

namespace {

// The number of insertions, deletions and replacements that turn one word into the other.
std::size_t editDistance(const std::string& from, const std::string& to) {
  std::vector<std::size_t> row(to.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= from.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= to.size(); ++j) {
      const std::size_t replaced = diagonal + (from[i - 1] == to[j - 1] ? 0 : 1);
      diagonal = row[j];
      row[j] = std::min({replaced, row[j] + 1, row[j - 1] + 1});
    }
  }
  return row.back();
}

}  // namespace

std::optional<std::string> nearestWord(const std::string& word, const std::vector<std::string>& known) {
  std::optional<std::string> nearest;
  std::size_t least = std::string::npos;
  for (const std::string& candidate : known) {
    const std::size_t distance = editDistance(word, candidate);
    if (distance < least && distance * 3 <= candidate.size()) {
      least = distance;
      nearest = candidate;
    }
  }
  return nearest;
}

}  // namespace vantorel::cli
