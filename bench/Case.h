// What is measured, as the benchmark library knows it.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "bench/Work.h"
#include "host/Image.h"
#include "host/Instance.h"

namespace vantorel::bench {

// How often measurements are repeated. Each repetition is one run of at least `seconds`, in random order among all.
struct Effort {
  int repetitions = 9;
  int slow_repetitions = 3;  // of what takes a second and more
  double seconds = 0.03;
};

// The labels by which a result is found again; they become the name, "kind:frame/work:a/...". `size` is the canvas's.
struct Labels {
  std::string kind;
  std::string work;
  std::string size;
  std::string depth;
  std::string quality;
  std::string tool;
  int threads = 1;
};

// The labels of a work's frame drawn by a tool.
Labels frameLabels(const Work& work, host::Depth depth, const std::string& tool, int threads = 1);

std::string depthText(host::Depth depth);
std::string qualityText(host::Quality quality);

struct Case {
  Labels labels;
  std::function<void()> run;  // once
  std::int64_t items = 1;     // pixels or calls in one run
  bool slow = false;
};

// Registers a measurement: processor time of the whole process, and the wall's clock beside it. A case that is not slow
// is run once before each repetition.
void add(const Effort& effort, Case measured);

// Registers a measurement whose run returns the seconds that count, which are then reported as wall time. It is run
// once a repetition.
void addTimedByItself(const Effort& effort, const Labels& labels, std::function<double()> run);

}  // namespace vantorel::bench
