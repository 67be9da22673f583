#include <stdexcept>

#include "bench/Own.h"
#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

void addFrame(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Work& work,
              host::Depth depth, host::Quality quality, int threads) {
  Labels labels = frameLabels(work, depth, "vantorel", threads);
  labels.quality = qualityText(quality);
  const auto instance = std::make_shared<host::Instance>(instanceFor(module, work));
  preparePictures(work, depth);
  add(effort, {labels, [=] { renderFrame(*instance, work, depth, quality, threads); },
               std::int64_t{work.canvas.width} * work.canvas.height});
}

void addQualities(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Work& work,
                  int threads) {
  for (const host::Depth depth : kDepths) {
    // The bilinear renderer knows no quality.
    if (work.perspective && !work.minifies) {
      addFrame(effort, module, work, depth, host::Quality::Standard, threads);
    }
    addFrame(effort, module, work, depth, host::Quality::High, threads);
  }
}

}  // namespace

host::Instance instanceFor(const std::shared_ptr<const host::Module>& module, const Work& work) {
  host::Instance instance(module);
  if (const auto done = instance.setCorners(work.corners); !done) {
    throw std::runtime_error(done.error().input + ": " + done.error().message);
  }
  return instance;
}

void renderFrame(host::Instance& instance, const Work& work, host::Depth depth, host::Quality quality, int threads) {
  host::FrameOptions options;
  options.quality = quality;
  options.threads = static_cast<unsigned>(threads);
  const auto frame = instance.render(picture(work.layer, depth), {0, 0, work.canvas.width, work.canvas.height},
                                     canvas(work.canvas, depth), options);
  if (!frame) {
    throw std::runtime_error(frame.error().input + ": " + frame.error().message);
  }
}

void addOwnFrames(const Effort& effort, const std::shared_ptr<const host::Module>& module) {
  for (const int factor : {1, 2}) {
    for (const Work& work : worksAt(factor)) {
      addQualities(effort, module, work, 1);
    }
  }
  for (const char* name : {"a", "c", "f", "g"}) {
    addQualities(effort, module, hdWork(name), 2);
  }
}

}  // namespace vantorel::bench
