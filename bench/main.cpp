// bench MODULE [--quick] [the benchmark library's own options]
#include <benchmark/benchmark.h>

#include <cstdio>
#include <exception>
#include <string>
#include <vector>

#include "bench/Components.h"
#include "bench/Cpu.h"
#include "bench/Peers.h"
#include "bench/PictureDifference.h"
#include "bench/VantorelFrames.h"

namespace {

using namespace vantorel;

constexpr bench::Effort kQuick{3, 1, 0.005};

std::shared_ptr<const host::Module> loadModule(const std::string& path) {
  auto module = host::Module::load(path);
  if (!module) {
    throw std::runtime_error(module.error().input + ": " + module.error().message);
  }
  return *module;
}

void addAll(const bench::Effort& effort, const std::shared_ptr<const host::Module>& module) {
  bench::addVantorelFrames(effort, module);
  bench::addVantorelSetup(effort, module);
  bench::addPeers(effort);
  bench::addRowSamplers(effort);
  bench::addAreaSamplers(effort);
  bench::addBaselines(effort);
}

// Removes MODULE and --quick from the arguments and passes the rest to the benchmark library.
int run(std::vector<char*> arguments) {
  if (arguments.size() < 2) {
    std::fputs("usage: bench MODULE [--quick] [--benchmark_...]\n", stderr);
    return 2;
  }
  const auto module = loadModule(arguments[1]);
  const bool quick = arguments.size() > 2 && std::string(arguments[2]) == "--quick";
  arguments.erase(arguments.begin() + 1, arguments.begin() + (quick ? 3 : 2));

  bench::rememberProcessors();
  static char interleave[] = "--benchmark_enable_random_interleaving=true";
  arguments.push_back(interleave);
  int count = static_cast<int>(arguments.size());
  benchmark::Initialize(&count, arguments.data());
  if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) {
    return 2;
  }
  addAll(quick ? kQuick : bench::Effort{}, module);
  if (!quick) {
    for (const auto& [what, ratio] : bench::pictureDifferences(module)) {
      benchmark::AddCustomContext("difference " + what, ratio);
    }
  }
  benchmark::AddCustomContext("processors", std::to_string(bench::processorCount()));
  benchmark::RunSpecifiedBenchmarks();
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return run({argv, argv + argc});
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "bench: %s\n", failure.what());
    return 1;
  }
}
