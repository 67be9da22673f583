// On which line of a JSON text each value stands.
#pragma once

#include <map>
#include <string>

namespace vantorel::cli {

// Lines from 1 on, by the value's path as in "/keys/3/ul/0", as JSON pointers write it. The text must be valid
// JSON; values nested more than eight deep are left out.
std::map<std::string, int> jsonLines(const std::string& text);

}  // namespace vantorel::cli
