#include "bench/Case.h"

#include <benchmark/benchmark.h>

#include "bench/Cpu.h"

namespace vantorel::bench {

namespace {

std::string nameOf(const Labels& labels) {
  std::string name;
  const auto append = [&name](const char* key, const std::string& value) {
    if (!value.empty()) {
      name.append(name.empty() ? "" : "/").append(key).append(":").append(value);
    }
  };
  append("kind", labels.kind);
  append("workload", labels.workload);
  append("size", labels.size);
  append("depth", labels.depth);
  append("quality", labels.quality);
  append("tool", labels.tool);
  append("cpus", std::to_string(labels.threads));
  return name;
}

}  // namespace

Labels frameLabels(const Workload& workload, host::Depth depth, const std::string& tool, int threads) {
  return {"frame", workload.name, sizeText(workload.canvas), depthText(depth), "", tool, threads};
}

std::string depthText(host::Depth depth) {
  return depth == host::Depth::Float ? "float" : std::to_string(static_cast<int>(depth));
}

std::string qualityText(host::Quality quality) {
  return quality == host::Quality::High ? "high" : "standard";
}

void add(const Effort& effort, const Case& measured) {
  const auto body = [measured](benchmark::State& state) {
    pinTo(measured.labels.threads);
    if (!measured.slow) {
      measured.run();
      // Threads that this run started have inherited this thread's processor.
      pinTo(measured.labels.threads);
    }
    for ([[maybe_unused]] const auto iteration : state) {
      measured.run();
    }
    state.SetItemsProcessed(state.iterations() * measured.items);
  };
  auto* registered = benchmark::RegisterBenchmark(nameOf(measured.labels).c_str(), body)
                         ->MeasureProcessCPUTime()
                         ->Repetitions(measured.slow ? effort.slow_repetitions : effort.repetitions)
                         ->MinTime(effort.seconds);
  if (measured.labels.threads > 1) {
    registered->UseRealTime();
  }
}

void addManuallyTimed(const Effort& effort, const Labels& labels, std::function<double()> run) {
  const auto body = [labels, run = std::move(run)](benchmark::State& state) {
    pinTo(labels.threads);
    for ([[maybe_unused]] const auto iteration : state) {
      state.SetIterationTime(run());
    }
  };
  benchmark::RegisterBenchmark(nameOf(labels).c_str(), body)
      ->Iterations(1)
      ->UseManualTime()
      ->Repetitions(effort.slow_repetitions);
}

}  // namespace vantorel::bench
