#include <chrono>
#include <stdexcept>

#include "bench/Pictures.h"
#include "bench/VantorelFrames.h"

namespace vantorel::bench {

namespace {

constexpr int kLaterFrame = 100;

// The bounding box, which the host asks the module for by frame setup.
void addFrameSetup(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Workload& workload) {
  const auto instance = std::make_shared<host::Instance>(instanceFor(module, workload));
  add(effort, {{"frame-setup", workload.name, sizeText(workload.canvas), "", "", "vantorel"}, [=] {
                 if (!instance->boundingBox(workload.layer, {})) {
                   throw std::runtime_error("frame setup failed");
                 }
               }});
}

// A frame whose canvas is one pixel outside the quadrilateral ends after pre-render.
void addPreRender(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Workload& workload) {
  const auto instance = std::make_shared<host::Instance>(instanceFor(module, workload));
  const host::ConstImageView layer = picture(workload.layer, host::Depth::Bits8);
  const host::ImageView pixel = canvas({1, 1}, host::Depth::Bits8);
  add(effort, {{"pre-render", workload.name, sizeText(workload.canvas), "", "", "vantorel"}, [=] {
                 host::FrameOptions options;
                 options.threads = 1;
                 const auto frame = instance->render(layer, {-500, -500, -499, -499}, pixel, options);
                 if (!frame || !frame->drawn.empty()) {
                   throw std::runtime_error("pre-render failed, or its result is not empty");
                 }
               }});
}

// The time in seconds of the last of `frames` frames of a new instance.
double lastFrame(const std::shared_ptr<const host::Module>& module, const Workload& workload, host::Depth depth,
                 int frames) {
  host::Instance instance = instanceFor(module, workload);
  for (int i = 1; i < frames; ++i) {
    renderFrame(instance, workload, depth, host::Quality::High, 1);
  }
  const auto begin = std::chrono::steady_clock::now();
  renderFrame(instance, workload, depth, host::Quality::High, 1);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

void addVantorelSetup(const Effort& effort, const std::shared_ptr<const host::Module>& module) {
  addFrameSetup(effort, module, hdWorkload("a"));
  addPreRender(effort, module, hdWorkload("a"));
  const Workload workload = hdWorkload("g");
  const host::Depth depth = host::Depth::Bits8;
  preparePictures(workload, depth);
  for (const int frames : {1, kLaterFrame}) {
    const std::string kind = "frame-" + std::to_string(frames);
    addManuallyTimed(effort, {kind, workload.name, sizeText(workload.canvas), depthText(depth), "high", "vantorel"},
                     [=] { return lastFrame(module, workload, depth, frames); });
  }
}

}  // namespace vantorel::bench
