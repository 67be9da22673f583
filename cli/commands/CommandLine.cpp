#include "cli/commands/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cctype>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/commands/Commands.h"
#include "cli/commands/Interrupt.h"
#include "cli/commands/OptionTables.h"
#include "cli/commands/Suggestion.h"

namespace vantorel::cli {

namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 the effect or host reported an error, or frames were left out;\n"
    "2 bad arguments; 3 a file could not be read or written; 130 interrupted.";

constexpr const char* kRenderExamples =
    "Examples:\n"
    "  vantorel render photo.jpg -o out.png --ul 100,80 --ur 900,40 --ll 60,700 --lr 980,760\n"
    "  vantorel render sign.png -o shot.####.exr --frames 1-100 --corners track.csv --over plate.####.exr\n\n";

// Replaces the generated usage line by the given one.
class HelpFormatter : public CLI::Formatter {
 public:
  explicit HelpFormatter(std::string usage) : usage_(std::move(usage)) {}
  std::string make_usage(const CLI::App*, std::string) const override { return "Usage: vantorel " + usage_ + "\n"; }

 private:
  std::string usage_;
};

void prepare(CLI::App& app, const std::string& usage) {
  app.formatter(std::make_shared<HelpFormatter>(usage));
  // Leftover arguments are examined in refuseExtras(), which suggests what may have been meant.
  app.allow_extras();
}

// An option's name in messages: "--output" for "-o,--output".
std::string messageName(const std::string& names) {
  const std::size_t comma = names.find(',');
  return comma == std::string::npos ? names : names.substr(comma + 1);
}

// A subcommand, its options built from a table.
template <typename Options>
class Command {
 public:
  using Table = std::vector<OptionRow<Options>>;

  Command(CLI::App& app, const char* name, const char* help, const char* usage, const Table& table)
      : app_(*app.add_subcommand(name, help)), table_(table) {
    prepare(app_, usage);
    for (const OptionRow<Options>& row : table) {
      CLI::Option* option = *row.value == '\0' ? app_.add_flag(row.names, row.help)
                                               : app_.add_option(row.names, CLI::callback_t(), row.help);
      options_.push_back(option->group(row.group));
      if (*row.value != '\0') {
        option->type_name(row.value);
      }
    }
  }

  CLI::App& app() { return app_; }
  bool parsed() const { return app_.parsed(); }

  // If an option is given twice, the later value counts, so that scripts can append to a standard set.
  Options options() const {
    Options options;
    for (std::size_t i = 0; i < table_.size(); ++i) {
      const OptionRow<Options>& row = table_[i];
      const std::string name = messageName(row.names);
      if (options_[i]->count() == 0) {
        if (row.if_missing != nullptr) {
          throw badArgument(name, std::string("is missing; ") + row.if_missing);
        }
        continue;
      }
      const bool is_flag = *row.value == '\0';
      if (is_flag && !options_[i]->as<bool>()) {
        continue;
      }
      const std::string value = is_flag ? "" : options_[i]->results().back();
      row.set(options, name, value);
      if constexpr (requires { options.settings; }) {
        options.settings += row.use == PictureUse::ChangesPicture ? fmt::format("{} {}\n", name, value) : "";
      }
    }
    return options;
  }

 private:
  CLI::App& app_;
  const Table& table_;
  std::vector<CLI::Option*> options_;
};

// The arguments after the program's name, with "-o=NAME" split in two: the parser would take the '=' as part of the
// name.
std::vector<std::string> separated(int argc, const char* const* argv) {
  std::vector<std::string> words;
  bool options_ended = false;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    options_ended = options_ended || word == "--";
    if (!options_ended && word.size() > 2 && word[0] == '-' && std::isalpha(static_cast<unsigned char>(word[1])) != 0 &&
        word[2] == '=') {
      words.push_back(word.substr(0, 2));
      words.push_back(word.substr(3));
    } else {
      words.push_back(word);
    }
  }
  return words;
}

std::vector<std::string> optionNames(const CLI::App& app) {
  std::vector<std::string> names;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      names.push_back("--" + name);
    }
  }
  return names;
}

std::string hint(const std::optional<std::string>& suggestion, const std::string& help_command) {
  if (suggestion) {
    return fmt::format("did you mean '{}'?", *suggestion);
  }
  return fmt::format("see '{}'", help_command);
}

// Reports arguments that were not recognised.
void refuseExtras(const CLI::App& app) {
  const std::vector<std::string> extras = app.remaining();
  if (extras.empty()) {
    return;
  }
  const std::string help = fmt::format("vantorel {} --help", app.get_name());
  for (const std::string& extra : extras) {
    if (extra.size() > 1 && extra.front() == '-') {
      const std::string name = extra.substr(0, extra.find('='));
      throw badArgument(name, fmt::format("unknown option of '{}'; {}", app.get_name(),
                                          hint(nearestWord(name, optionNames(app)), help)));
    }
  }
  throw badArgument(extras.front(), fmt::format("unexpected argument of '{}'; see '{}'", app.get_name(), help));
}

CommandError unknownCommand(const CLI::App& app) {
  const std::vector<std::string> extras = app.remaining();
  if (extras.empty()) {
    return badArgument(
        "", "no command was given; use render, view, rectify, corners, info or testcard, or see 'vantorel --help'");
  }
  const std::string& word = extras.front();
  if (word.rfind('-', 0) == 0) {
    return badArgument(word,
                       fmt::format("unknown option; {}", hint(nearestWord(word, optionNames(app)), "vantorel --help")));
  }
  return badArgument(word,
                     fmt::format("unknown command; {}",
                                 hint(nearestWord(word, {"render", "view", "rectify", "corners", "info", "testcard"}),
                                      "vantorel --help")));
}

CommandError fromParser(const CLI::ParseError& error) {
  std::string text = error.what();
  if (const std::size_t end = text.find('\n'); end != std::string::npos) {
    text.resize(end);
  }
  const std::size_t colon = text.find(": ");
  const std::string input = colon == std::string::npos ? "" : text.substr(0, colon);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error) != nullptr) {
    return badArgument(input, "has no value; give one, or see 'vantorel --help'");
  }
  const std::string fault = colon == std::string::npos ? text : text.substr(colon + 2);
  return badArgument(input, fault + "; see 'vantorel --help'");
}

}  // namespace

ExitCode runCommandLine(int argc, const char* const* argv) try {
  CLI::App app("Stretches pictures onto any quadrilateral: stills, sequences and plates.", "vantorel");
  prepare(app, "COMMAND ...");
  app.set_version_flag("--version", "vantorel " VANTOREL_VERSION);
  app.footer(std::string("'vantorel COMMAND --help' describes one command, 'man vantorel' all of them.\n") +
             kExitCodes);
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
  Command<RenderOptions> render(app, "render", "Render a still, or a sequence with --frames",
                                "render LAYER -o OUT [OPTIONS]", renderOptionTable());
  render.app().footer(std::string(kRenderExamples) + kExitCodes);
  Command<ViewOptions> view(app, "view", "Place the corners in a browser, over the plate", "view [LAYER] [OPTIONS]",
                            viewOptionTable());
  view.app().footer(kExitCodes);
  const Command<RectifyOptions> rectify(app, "rectify", "Straighten a page, a screen or a sign in a photo",
                                        "rectify PHOTO -o PAGE --ul X,Y --ur X,Y --ll X,Y --lr X,Y [OPTIONS]",
                                        rectifyOptionTable());
  const Command<InfoOptions> info(app, "info", "Describe a picture file or the effect module", "info [FILE] [OPTIONS]",
                                  infoOptionTable());
  const Command<CornersOptions> corners(app, "corners", "Show, convert or plot a tracker's corners",
                                        "corners FILE [-o OUT] [OPTIONS]", cornersOptionTable());
  const Command<TestCardOptions> card(app, "testcard", "Write a test card, for trying things out",
                                      "testcard -o OUT [OPTIONS]", testCardOptionTable());
  try {
    std::vector<std::string> words = separated(argc, argv);
    // The parser consumes them from the end.
    std::reverse(words.begin(), words.end());
    app.parse(words);
  } catch (const CLI::Success& success) {
    app.exit(success);
    return ExitCode::Done;
  }

  for (const CLI::App* command : app.get_subcommands()) {
    refuseExtras(*command);
  }
  if (render.parsed()) {
    const Interrupt interrupt;
    return runRender(render.options(), interrupt.token());
  }
  if (view.parsed()) {
    const Interrupt interrupt;
    return runView(view.options(), interrupt.token());
  }
  if (rectify.parsed()) {
    const Interrupt interrupt;
    return runRectify(rectify.options(), interrupt.token());
  }
  if (info.parsed()) {
    return runInfo(info.options());
  }
  if (corners.parsed()) {
    return runCorners(corners.options());
  }
  if (card.parsed()) {
    const Interrupt interrupt;
    return runTestCard(card.options(), interrupt.token());
  }
  throw unknownCommand(app);
} catch (const CLI::ParseError& error) {
  throw fromParser(error);
}

}  // namespace vantorel::cli
