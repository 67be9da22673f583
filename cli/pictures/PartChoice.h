// Which of the pictures in a file is meant.
#pragma once

#include <string>
#include <vector>

namespace vantorel::cli {

// The number of the part of that name, or of that number from 0 where none has such a name; 0 for an empty text.
// `names` are those of all parts, empty for one without. Throws CommandError (file failure) naming the path, and what
// there is to choose from.
int partNumber(const std::vector<std::string>& names, const std::string& wanted, const std::string& path);

}  // namespace vantorel::cli
