// Registers measurements with the benchmark library.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "bench/Workload.h"
#include "host/Image.h"
#include "host/Instance.h"

namespace vantorel::bench {

// How often measurements are repeated. A repetition is one run of at least `seconds`; the repetitions of all
// measurements run in random order.
struct Effort {
  int repetitions = 9;
  int slow_repetitions = 3;  // of cases that take a second or more
  double seconds = 0.03;
};

// The labels that identify a result. They become its name, "kind:frame/workload:a/...". `size` is that of the canvas.
struct Labels {
  std::string kind;
  std::string workload;
  std::string size;
  std::string depth;
  std::string quality;
  std::string tool;
  int threads = 1;
};

// The labels of one workload's frame as drawn by a tool.
Labels frameLabels(const Workload& workload, host::Depth depth, const std::string& tool, int threads = 1);

std::string depthText(host::Depth depth);
std::string qualityText(host::Quality quality);

struct Case {
  Labels labels;
  std::function<void()> run;  // once
  std::int64_t items = 1;     // pixels or calls in one run
  bool slow = false;
};

// Registers a measurement of processor time, that of the whole process, and wall-clock time. A case that is not slow
// runs once, uncounted, before each repetition.
void add(const Effort& effort, const Case& measured);

// Registers a measurement whose run returns the seconds to report as wall-clock time. It runs once per repetition.
void addManuallyTimed(const Effort& effort, const Labels& labels, std::function<double()> run);

}  // namespace vantorel::bench
