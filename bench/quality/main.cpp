// Compares pictures with the truth, and prints tables.
#include <fmt/ranges.h>

#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "bench/quality/Measurements.h"
#include "bench/quality/SampleRule.h"

namespace {

using namespace vantorel;

struct Options {
  std::string module;
  std::string truths = "truths";
  std::string json;
  std::vector<std::string> columns;
  quality::Selection selection;
  bool prints_rule = false;
};

std::vector<quality::Renderer> allRenderers(const std::string& path) {
  const auto module = host::Module::load(path);
  if (!module) {
    throw std::runtime_error(module.error().input + ": " + module.error().message);
  }
  std::vector<quality::Renderer> renderers = quality::hostRenderers(*module);
  for (std::vector<quality::Renderer> peers :
       {quality::openCvRenderers(), quality::openImageIoRenderers(), quality::imageMagickRenderers()}) {
    std::move(peers.begin(), peers.end(), std::back_inserter(renderers));
  }
  return renderers;
}

// The renderers of the named columns, in that order; all if none is named.
std::vector<quality::Renderer> chosen(const std::vector<quality::Renderer>& renderers,
                                      const std::vector<std::string>& names) {
  if (names.empty()) {
    return renderers;
  }
  std::vector<quality::Renderer> result;
  for (const std::string& name : names) {
    const auto found = std::find_if(renderers.begin(), renderers.end(),
                                    [&](const quality::Renderer& renderer) { return renderer.name == name; });
    if (found == renderers.end()) {
      std::vector<std::string> known;
      std::transform(renderers.begin(), renderers.end(), std::back_inserter(known),
                     [](const quality::Renderer& renderer) { return renderer.name; });
      throw std::runtime_error(
          fmt::format("--columns: unknown column \"{}\"; choose from\n  {}", name, fmt::join(known, "\n  ")));
    }
    result.push_back(*found);
  }
  return result;
}

void writeJson(const std::string& path, const quality::Measurements& measurements) {
  std::ofstream stream(path);
  stream << quality::jsonOf(measurements).dump(1) << '\n';
  stream.close();
  if (!stream) {
    throw std::runtime_error(path + ": writing failed; choose another file");
  }
}

void run(const Options& options) {
  if (options.prints_rule) {
    std::fputs(quality::sampleRuleCsv().c_str(), stdout);
    return;
  }
  const quality::Measurements measurements = quality::measure(chosen(allRenderers(options.module), options.columns),
                                                              quality::TruthCache(options.truths), options.selection);
  if (measurements.pictures.empty() && measurements.placements.empty() && measurements.coverage.empty()) {
    throw std::runtime_error("--rows: no row's name contains \"" + options.selection.row + "\"; choose another part");
  }
  std::fputs(quality::markdownOf(measurements).c_str(), stdout);
  if (!options.json.empty()) {
    writeJson(options.json, measurements);
  }
}

}  // namespace

int main(int argc, char** argv) try {
  Options options;
  CLI::App app("Measures pictures of the effect, and of other tools, against a truth of 16x16 samples a pixel.");
  app.add_option("MODULE", options.module, "the effect module")->required();
  app.add_option("--truths", options.truths, "the folder that keeps truths from one run to the next")
      ->capture_default_str();
  app.add_option("--json", options.json, "writes every figure into this file too");
  app.add_option("--rows", options.selection.row, "only the rows whose name contains this");
  app.add_option("--columns", options.columns, "only these columns, separated by slashes")->delimiter('/');
  app.add_flag("!--no-times", options.selection.times, "leaves the times out");
  app.add_flag("--rule", options.prints_rule, "prints instead what the host's rule of samples chooses, as CSV");
  CLI11_PARSE(app, argc, argv);
  run(options);
  return 0;
} catch (const std::exception& failure) {
  std::fprintf(stderr, "vantorel_quality: %s\n", failure.what());
  return 1;
}
