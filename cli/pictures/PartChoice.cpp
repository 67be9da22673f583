#include "cli/pictures/PartChoice.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"

namespace vantorel::cli {

int partNumber(const std::vector<std::string>& names, const std::string& wanted, const std::string& path) {
  if (wanted.empty()) {
    return 0;
  }
  if (const auto found = std::ranges::find(names, wanted); found != names.end()) {
    return static_cast<int>(found - names.begin());
  }
  const auto number = parseNumber(wanted);
  const auto last = static_cast<int>(names.size()) - 1;
  if (number && *number >= 0.0 && *number <= last && *number == std::floor(*number)) {
    return static_cast<int>(*number);
  }
  std::string known;
  for (const std::string& name : names) {
    known += name.empty() ? "" : name + ", ";
  }
  throw fileFailure(path, fmt::format("has no part '{}'; give --part as {}{}", wanted, known,
                                      last > 0 ? fmt::format("or 0 to {}", last) : "0, its only one"));
}

}  // namespace vantorel::cli
