#include "cli/CommandLine.h"

#include <fmt/format.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/CommandError.h"
#include "cli/Commands.h"
#include "cli/RenderArguments.h"
#include "cli/SizeArgument.h"
#include "cli/Suggestion.h"

namespace vantorel::cli {

namespace {

constexpr const char* kExitCodes =
    "Exit codes: 0 done; 1 the effect or host reported an error, or frames failed under\n"
    "--keep-going; 2 bad arguments; 3 a file could not be read or written; 130 interrupted.";

constexpr const char* kRenderExamples =
    "Examples:\n"
    "  vantorel render photo.jpg -o out.png --ul 100,80 --ur 900,40 --ll 60,700 --lr 980,760\n"
    "  vantorel render sign.png -o shot.####.exr --frames 1-100 --corners track.csv --over plate.####.exr\n\n";

struct TestCardArguments {
  std::string output;
  std::string size;
};

class HelpFormatter : public CLI::Formatter {
 public:
  std::string make_usage(const CLI::App* app, std::string) const override {
    const std::string& command = app->get_name();
    std::string arguments = "COMMAND ...";
    if (command == "render") {
      arguments = "render LAYER -o OUT [OPTIONS]";
    } else if (command == "info") {
      arguments = "info [OPTIONS]";
    } else if (command == "testcard") {
      arguments = "testcard -o OUT [OPTIONS]";
    }
    return "Usage: vantorel " + arguments + "\n";
  }
};

void prepare(CLI::App& app) {
  app.formatter(std::make_shared<HelpFormatter>());
  // What is left over is examined here, to say what may have been meant.
  app.allow_extras();
  // Of an option given twice the later holds, so that scripts can append to a usual set.
  app.option_defaults()->multi_option_policy(CLI::MultiOptionPolicy::TakeLast);
}

CLI::App* addInfo(CLI::App& app, InfoOptions& options) {
  CLI::App* info = app.add_subcommand("info", "Tell what the effect module says of itself");
  prepare(*info);
  info->add_option("--module", options.module, "The effect module (default: the one beside the command)")
      ->type_name("FILE");
  info->add_flag("--json", options.json, "Print one JSON object");
  return info;
}

CLI::App* addTestCard(CLI::App& app, TestCardArguments& arguments) {
  CLI::App* card = app.add_subcommand("testcard", "Write a test card, for trying things out");
  prepare(*card);
  card->add_option("-o,--output", arguments.output, "The picture to write: .png, .jpg, .tif, .exr or .dpx")
      ->type_name("OUT");
  card->add_option("--size", arguments.size, "Its size in pixels (default: 1920x1080)")->type_name("WxH");
  return card;
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

std::string meant(const std::optional<std::string>& suggestion, const std::string& help_command) {
  if (suggestion) {
    return fmt::format("did you mean '{}'?", *suggestion);
  }
  return fmt::format("see '{}'", help_command);
}

// Complains about what no option or argument took.
void refuseExtras(const CLI::App& app) {
  const std::vector<std::string> extras = app.remaining();
  if (extras.empty()) {
    return;
  }
  const std::string help = fmt::format("vantorel {} --help", app.get_name());
  for (const std::string& extra : extras) {
    if (extra.size() > 1 && extra.front() == '-') {
      const std::string name = extra.substr(0, extra.find('='));
      throw badArgument(name, fmt::format("is no option of '{}'; {}", app.get_name(),
                                          meant(nearestWord(name, optionNames(app)), help)));
    }
  }
  throw badArgument(extras.front(), fmt::format("is one argument too many for '{}'; see '{}'", app.get_name(), help));
}

CommandError unknownCommand(const CLI::App& app) {
  const std::vector<std::string> extras = app.remaining();
  if (extras.empty()) {
    return badArgument("", fmt::format("no command was given; use render, info or testcard, or see 'vantorel --help'"));
  }
  const std::string& word = extras.front();
  if (word.front() == '-') {
    return badArgument(word, fmt::format("is no option of vantorel; {}",
                                         meant(nearestWord(word, optionNames(app)), "vantorel --help")));
  }
  return badArgument(word, fmt::format("is no command; {}",
                                       meant(nearestWord(word, {"render", "info", "testcard"}), "vantorel --help")));
}

CommandError fromParser(const CLI::ParseError& error) {
  std::string text = error.what();
  if (const std::size_t end = text.find('\n'); end != std::string::npos) {
    text.resize(end);
  }
  const std::size_t colon = text.find(": ");
  const std::string input = colon == std::string::npos ? "" : text.substr(0, colon);
  const std::string fault = colon == std::string::npos ? text : text.substr(colon + 2);
  return badArgument(input, fault + "; see 'vantorel --help'");
}

TestCardOptions testCardOptions(const TestCardArguments& arguments) {
  if (arguments.output.empty()) {
    throw badArgument("--output", "is missing; name the picture to write with -o OUT");
  }
  TestCardOptions options;
  options.output = arguments.output;
  if (!arguments.size.empty()) {
    options.size = parseSize("--size", arguments.size);
  }
  return options;
}

}  // namespace

ExitCode runCommandLine(int argc, const char* const* argv, const std::stop_token& stop) {
  CLI::App app("Stretches pictures onto any quadrilateral: stills, sequences and plates.", "vantorel");
  prepare(app);
  app.set_version_flag("--version", "vantorel " VANTOREL_VERSION);
  app.footer(std::string("'vantorel COMMAND --help' tells about a command, 'man vantorel' about all.\n") + kExitCodes);
  RenderArguments render_arguments;
  InfoOptions info_options;
  TestCardArguments card_arguments;
  CLI::App* render = addRender(app, render_arguments);
  prepare(*render);
  render->footer(std::string(kRenderExamples) + kExitCodes);
  CLI::App* info = addInfo(app, info_options);
  CLI::App* card = addTestCard(app, card_arguments);
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& success) {
    app.exit(success);
    return ExitCode::Done;
  } catch (const CLI::ParseError& error) {
    throw fromParser(error);
  }

  for (const CLI::App* command : app.get_subcommands()) {
    refuseExtras(*command);
  }
  if (render->parsed()) {
    return runRender(renderOptions(render_arguments), stop);
  }
  if (info->parsed()) {
    return runInfo(info_options);
  }
  if (card->parsed()) {
    return runTestCard(testCardOptions(card_arguments), stop);
  }
  throw unknownCommand(app);
}

}  // namespace vantorel::cli
