#include <stdexcept>

#include "bench/Pictures.h"
#include "bench/VantorelFrames.h"

namespace vantorel::bench {

namespace {

void addFrame(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Workload& workload,
              host::Depth depth, host::Quality quality, int threads) {
  Labels labels = frameLabels(workload, depth, "vantorel", threads);
  labels.quality = qualityText(quality);
  const auto instance = std::make_shared<host::Instance>(instanceFor(module, workload));
  preparePictures(workload, depth);
  add(effort, {labels, [=] { renderFrame(*instance, workload, depth, quality, threads); },
               std::int64_t{workload.canvas.width} * workload.canvas.height});
}

void addQualities(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Workload& workload,
                  int threads) {
  for (const host::Depth depth : kDepths) {
    // The bilinear renderer ignores the quality.
    if (workload.perspective && !workload.minifies) {
      addFrame(effort, module, workload, depth, host::Quality::Standard, threads);
    }
    addFrame(effort, module, workload, depth, host::Quality::High, threads);
  }
}

}  // namespace

host::Instance instanceFor(const std::shared_ptr<const host::Module>& module, const Workload& workload) {
  host::Instance instance(module);
  if (const auto done = instance.setCorners(workload.corners); !done) {
    throw std::runtime_error(done.error().input + ": " + done.error().message);
  }
  return instance;
}

void renderFrame(host::Instance& instance, const Workload& workload, host::Depth depth, host::Quality quality,
                 int threads) {
  host::FrameOptions options;
  options.quality = quality;
  options.threads = static_cast<unsigned>(threads);
  const auto frame =
      instance.render(picture(workload.layer, depth), {0, 0, workload.canvas.width, workload.canvas.height},
                      canvas(workload.canvas, depth), options);
  if (!frame) {
    throw std::runtime_error(frame.error().input + ": " + frame.error().message);
  }
}

void addVantorelFrames(const Effort& effort, const std::shared_ptr<const host::Module>& module) {
  for (const int factor : {1, 2}) {
    for (const Workload& workload : workloadsAt(factor)) {
      addQualities(effort, module, workload, 1);
    }
  }
  for (const char* name : {"a", "c", "f", "g"}) {
    addQualities(effort, module, hdWorkload(name), 2);
  }
}

}  // namespace vantorel::bench
