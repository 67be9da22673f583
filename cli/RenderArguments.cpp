#include "cli/RenderArguments.h"

#include <fmt/format.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <initializer_list>
#include <thread>
#include <utility>

#include "cli/CommandError.h"
#include "cli/NumberParsing.h"
#include "cli/SizeArgument.h"
#include "cli/Suggestion.h"

namespace vantorel::cli {

namespace {

constexpr std::array<const char*, kCornerCount> kCornerOptions{"--ul", "--ur", "--ll", "--lr"};
constexpr const char* kPlacing = "Placing (positions in layer pixels, 640,12.5, or percent of the layer, 10%,90%)";
constexpr int kMostThreads = 1024;
constexpr int kLeastResolution = 1024;

// The value that the word stands for; the first of the choices where nothing was given.
template <typename Value>
Value choose(const std::string& option, const std::string& word,
             std::initializer_list<std::pair<const char*, Value>> choices) {
  if (word.empty()) {
    return choices.begin()->second;
  }
  std::string known;
  for (const auto& [name, value] : choices) {
    if (word == name) {
      return value;
    }
    known += (known.empty() ? "" : ", ") + std::string(name);
  }
  throw badArgument(option, fmt::format("'{}' is not known; give one of {}", word, known));
}

int wholeBetween(const std::string& option, const std::string& text, int least, int most) {
  const auto value = parseWhole(text);
  if (!value || *value < least || *value > most) {
    throw badArgument(option, fmt::format("'{}' is not a whole number from {} to {}; give one", text, least, most));
  }
  return *value;
}

unsigned threadCount(const std::string& text) {
  if (text.empty()) {
    return std::clamp(std::thread::hardware_concurrency(), 1u, static_cast<unsigned>(kMostThreads));
  }
  return static_cast<unsigned>(wholeBetween("--threads", text, 1, kMostThreads));
}

void addPlacing(CLI::App& render, RenderArguments& arguments) {
  constexpr std::array<const char*, kCornerCount> kPlaces{"upper left", "upper right", "lower left", "lower right"};
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    render
        .add_option(kCornerOptions[c], arguments.corners[c],
                    fmt::format("Where the layer's {} corner goes (default: where it is)", kPlaces[c]))
        ->type_name("X,Y")
        ->group(kPlacing);
  }
  render
      .add_option("--corners", arguments.corners_file, "The corners, or keyframes for them, from a .json or .csv file")
      ->type_name("FILE")
      ->group(kPlacing);
  render.add_option("--size", arguments.size, "The output picture's size (default: the plate's, else the layer's)")
      ->type_name("WxH")
      ->group(kPlacing);
  render.add_flag("--fit", arguments.fit, "Instead, the size that the effect asks for: the corners' bounding box")
      ->group(kPlacing);
  render.add_option("--over", arguments.plate, "Composite the result over this picture or sequence")
      ->type_name("PLATE")
      ->group(kPlacing);
}

void addQuality(CLI::App& render, RenderArguments& arguments) {
  const auto option = [&](const char* name, std::string& value, const char* help, const char* type) {
    render.add_option(name, value, help)->type_name(type)->group("Rendering");
  };
  option("--quality", arguments.quality, "high (default) filters by area, standard is fast", "QUALITY");
  option("--depth", arguments.depth, "auto (default, the files' own), 8, 16 or float bits per channel", "DEPTH");
  option("--protocol", arguments.protocol, "How to speak to the effect: smart (default) or plain", "PROTOCOL");
  option("--downsample", arguments.downsample, "Render at 1/N of the resolution", "N");
  render.add_flag("--linear", arguments.linear, "Filter and composite in linear light, by the files' colour spaces")
      ->group("Rendering");
  option("--threads", arguments.threads, "Use at most N threads for everything (default: all cores)", "N");
  option("--module", arguments.module, "The effect module (default: the one beside the command)", "FILE");
}

void addSequence(CLI::App& render, RenderArguments& arguments) {
  render
      .add_option("--frames", arguments.frames,
                  "A sequence, every S-th frame of it; %04d or #### in LAYER, OUT and PLATE stands for the frame")
      ->type_name("A-B[xS]")
      ->group("Sequences");
  render.add_option("--fps", arguments.rate, "Frames per second, such as 25, 23.976 or 24000/1001 (default: 24)")
      ->type_name("RATE")
      ->group("Sequences");
  render.add_flag("--resume", arguments.resume, "Skip frames whose output is there, whole and newer than its inputs")
      ->group("Sequences");
  render
      .add_flag("--keep-going", arguments.keep_going,
                "Go on after a frame that fails, list those at the end and exit with 1")
      ->group("Sequences");
}

void addReporting(CLI::App& render, RenderArguments& arguments) {
  render.add_flag("--progress", arguments.progress, "Show progress (default: when standard error is a terminal)")
      ->group("Reporting");
  render.add_flag("--no-progress", arguments.no_progress, "Show none")->group("Reporting");
  render.add_flag("--json", arguments.json, "Print a line of JSON on standard output for every finished frame")
      ->group("Reporting");
}

}  // namespace

CLI::App* addRender(CLI::App& app, RenderArguments& arguments) {
  CLI::App* render = app.add_subcommand("render", "Render a still, or a sequence with --frames");
  render->add_option("LAYER", arguments.layer, "The picture to stretch, or a sequence of them")->type_name("FILE");
  render->add_option("-o,--output", arguments.output, "The picture to write: .png, .jpg, .tif, .exr or .dpx")
      ->type_name("OUT");
  addPlacing(*render, arguments);
  addQuality(*render, arguments);
  addSequence(*render, arguments);
  addReporting(*render, arguments);
  return render;
}

RenderOptions renderOptions(const RenderArguments& arguments) {
  if (arguments.layer.empty()) {
    throw badArgument("LAYER", "is missing; name the picture to render: vantorel render LAYER -o OUT");
  }
  if (arguments.output.empty()) {
    throw badArgument("--output", "is missing; name the picture to write with -o OUT");
  }
  RenderOptions options;
  options.layer = arguments.layer;
  options.output = arguments.output;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    if (!arguments.corners[c].empty()) {
      options.corners[c] = parseCorner(kCornerOptions[c], arguments.corners[c]);
    }
  }
  options.corners_file = arguments.corners_file;
  if (!arguments.size.empty()) {
    options.size = parseSize("--size", arguments.size);
  }
  options.fit = arguments.fit;
  options.plate = arguments.plate;
  options.linear = arguments.linear;
  options.quality = choose<host::Quality>("--quality", arguments.quality,
                                          {{"high", host::Quality::High}, {"standard", host::Quality::Standard}});
  options.depth = choose<DepthChoice>("--depth", arguments.depth,
                                      {{"auto", DepthChoice::Auto},
                                       {"8", DepthChoice::Bits8},
                                       {"16", DepthChoice::Bits16},
                                       {"float", DepthChoice::Float}});
  options.protocol = choose<host::Protocol>("--protocol", arguments.protocol,
                                            {{"smart", host::Protocol::Smart}, {"plain", host::Protocol::Plain}});
  if (!arguments.downsample.empty()) {
    options.downsample = wholeBetween("--downsample", arguments.downsample, 1, kLeastResolution);
  }
  if (!arguments.frames.empty()) {
    options.frames = parseFrameRange("--frames", arguments.frames);
  }
  if (!arguments.rate.empty()) {
    options.rate = parseFrameRate("--fps", arguments.rate);
  }
  options.resume = arguments.resume;
  options.keep_going = arguments.keep_going;
  options.threads = threadCount(arguments.threads);
  options.module = arguments.module;
  options.progress = !arguments.no_progress && (arguments.progress || isatty(STDERR_FILENO) != 0);
  options.json = arguments.json;
  return options;
}

}  // namespace vantorel::cli
