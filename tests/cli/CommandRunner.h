// Runs the built command as a user would.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "TestFolder.h"

namespace vantorel::cli {

struct CommandResult {
  int code = -1;
  std::string out;
  std::string err;

  // The lines of standard output as JSON.
  std::vector<nlohmann::json> lines() const;
};

// Runs `vantorel ARGUMENTS` by the shell in that folder, so that quoting is the shell's. `before` are shell commands
// that set the scene, such as "ulimit -f 8;".
CommandResult run(const TestFolder& folder, const std::string& arguments, const std::string& before = "",
                  const std::string& command_file = VANTOREL_COMMAND);

// What `vantorel ARGUMENTS` writes, both streams together, when run in a terminal of that many columns.
std::string runInTerminal(const TestFolder& folder, const std::string& arguments, unsigned short columns);

// Runs it and expects success.
CommandResult runWell(const TestFolder& folder, const std::string& arguments);

// Root mean square difference of two pictures' samples, 0 to 1; 1 where sizes or channels differ.
double difference(const std::string& first, const std::string& second);

}  // namespace vantorel::cli
