// The arguments of `render`, as written and as understood.
#pragma once

#include <CLI/App.hpp>
#include <array>
#include <string>

#include "cli/Options.h"

namespace vantorel::cli {

// As they stand on the command line; empty where not given.
struct RenderArguments {
  std::string layer;
  std::string output;
  std::array<std::string, kCornerCount> corners;
  std::string corners_file;
  std::string size;
  bool fit = false;
  std::string plate;
  bool linear = false;
  std::string quality;
  std::string depth;
  std::string protocol;
  std::string downsample;
  std::string frames;
  std::string rate;
  bool resume = false;
  bool keep_going = false;
  std::string threads;
  std::string module;
  bool progress = false;
  bool no_progress = false;
  bool json = false;
};

// Adds the subcommand; parsing fills `arguments`, which must outlive the app.
CLI::App* addRender(CLI::App& app, RenderArguments& arguments);

// Throws CommandError, naming the option, for what is not understood.
RenderOptions renderOptions(const RenderArguments& arguments);

}  // namespace vantorel::cli
