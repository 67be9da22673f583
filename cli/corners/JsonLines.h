// On which line of a JSON text each value stands.
#pragma once

#include <map>
#include <optional>
#include <string>

namespace vantorel::cli {

struct JsonLines {
  // Lines from 1 on, by the value's path as in "/keys/3/ul/0", as JSON pointers write it; of a name that stands twice
  // in an object, that of the last.
  std::map<std::string, int> line_of;
  // The path of the first value whose name stands in its object already.
  std::optional<std::string> repeated;
};

// The text must be valid JSON; values nested more than eight deep are left out.
JsonLines jsonLines(const std::string& text);

}  // namespace vantorel::cli
