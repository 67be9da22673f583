// Runs the built command as a user would.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "tests/TestFolder.h"

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

// A folder with a test card of that size, card.png.
struct FolderWithCard : TestFolder {
  explicit FolderWithCard(const std::string& size);
};

// A call that is refused with this exit code and a message that holds `message`.
struct BadCall {
  std::string arguments;
  int code;
  std::string message;
  std::string before = {};  // shell commands that set the scene
};

// Runs each and expects its refusal, told in one line of the command's, with nothing left behind.
void expectRefused(const TestFolder& folder, const std::vector<BadCall>& calls);

// Root mean square difference of two pictures' samples, 0 to 1; 1 where sizes or channels differ.
double difference(const std::string& first, const std::string& second);

}  // namespace vantorel::cli
