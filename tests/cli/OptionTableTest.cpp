// The options' tables against everything else that lists options: help, man page, completion and guides.
#include <gtest/gtest.h>

#include <regex>
#include <set>
#include <string>

#include "CommandRunner.h"
#include "cli/base/CommandError.h"
#include "cli/commands/OptionTables.h"

namespace vantorel::cli {
namespace {

using Names = std::set<std::string>;

// Every long option in the text.
Names optionsIn(const std::string& text) {
  static const std::regex kOption("--[a-z]+(-[a-z]+)*");
  return {std::sregex_token_iterator(text.begin(), text.end(), kOption), {}};
}

// The long options of a table, with the help's own; arguments are left out.
template <typename Options>
Names namesOf(const std::vector<OptionRow<Options>>& table) {
  Names names{"--help"};
  for (const OptionRow<Options>& row : table) {
    names.merge(optionsIn(row.names));
  }
  return names;
}

std::string document(const std::string& name) {
  std::string text = contents(std::string(VANTOREL_DOCS "/") + name);
  EXPECT_NE(text, "") << name;
  return text;
}

// What the completion offers in a `case` arm: the words after "words='" of the line that starts with `pattern`.
std::string completionWords(const std::string& completion, const std::string& pattern) {
  const std::size_t arm = completion.find(pattern + ')');
  const std::size_t begin = completion.find("words='", arm) + 7;
  return arm == std::string::npos ? "" : completion.substr(begin, completion.find('\'', begin) - begin);
}

TEST(OptionTable, HelpCompletionManPageAndGuidesListTheSameOptions) {
  const TestFolder folder;
  const std::string completion = document("vantorel.bash-completion");
  Names all{"--version"};
  const auto compare = [&](const std::string& command, Names names) {
    // The help may mention an option beside those that it lists, but none that there is not.
    EXPECT_EQ(optionsIn(runWell(folder, command + " --help").out), names) << command;
    EXPECT_EQ(optionsIn(completionWords(completion, "        " + command)), names) << command;
    all.merge(names);
  };
  compare("render", namesOf(renderOptionTable()));
  compare("view", namesOf(viewOptionTable()));
  compare("rectify", namesOf(rectifyOptionTable()));
  compare("corners", namesOf(cornersOptionTable()));
  compare("info", namesOf(infoOptionTable()));
  compare("testcard", namesOf(testCardOptionTable()));
  // An option that means another thing to another command says so.
  const std::string view = runWell(folder, "view --help").out;
  EXPECT_NE(view.find("(default: a test card)"), std::string::npos) << view;
  EXPECT_NE(view.find("Where the page's Render button writes: .png"), std::string::npos) << view;

  const std::string man = std::regex_replace(document("vantorel.1"), std::regex(R"(\\-)"), "-");
  EXPECT_EQ(optionsIn(man), all);
  for (const std::string& name : optionsIn(document("using.md"))) {
    EXPECT_TRUE(all.count(name) == 1) << name << " of using.md is not an option";
  }
}

TEST(OptionTable, TheShellCompletesOptionsAndTheirValues) {
  const TestFolder folder;
  folder.write("complete.sh",
               ". \"$1\"\nCOMP_WORDS=(vantorel render card.png $2)\nCOMP_CWORD=$((${#COMP_WORDS[@]} - 1))\n"
               "_vantorel\necho \"${COMPREPLY[@]}\"\n");
  const auto completed = [&](const std::string& words) {
    return run(folder, "complete.sh " VANTOREL_DOCS "/vantorel.bash-completion '" + words + "'", "", "bash").out;
  };
  EXPECT_EQ(completed("--qual"), "--quality\n");
  EXPECT_EQ(completed("--quality h"), "high\n");
  EXPECT_EQ(completed("--shutter-samples 1"), "\n");
}

TEST(OptionTable, ChoicesAreTakenAndCompleted) {
  const std::string completion = document("vantorel.bash-completion");
  for (const OptionRow<RenderOptions>& row : renderOptionTable()) {
    const std::string choices = row.value;
    if (choices.find('|') == std::string::npos) {
      continue;
    }
    RenderOptions options;
    EXPECT_THROW(row.set(options, row.names, "no such choice"), CommandError);
    static const std::regex kWord("[^|]+");
    for (std::sregex_iterator choice(choices.begin(), choices.end(), kWord), end; choice != end; ++choice) {
      EXPECT_NO_THROW(row.set(options, row.names, choice->str())) << row.names << " " << choice->str();
    }
    const std::string pattern = std::regex_replace(row.names, std::regex(","), " | ");
    EXPECT_EQ(completionWords(completion, "    " + pattern), std::regex_replace(choices, std::regex("\\|"), " "));
  }
}

}  // namespace
}  // namespace vantorel::cli
