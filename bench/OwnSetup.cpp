#include <chrono>
#include <stdexcept>

#include "bench/Own.h"
#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

constexpr int kLaterFrame = 100;

// What the module answers to the question for its bounding box.
void addFrameSetup(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Work& work) {
  const auto instance = std::make_shared<host::Instance>(instanceFor(module, work));
  add(effort, {{"frame-setup", work.name, sizeText(work.canvas), "", "", "vantorel"}, [=] {
                 if (!instance->boundingBox(work.layer, {})) {
                   throw std::runtime_error("frame setup failed");
                 }
               }});
}

// A frame whose canvas is one pixel that the quadrilateral does not reach ends after pre-render.
void addPreRender(const Effort& effort, const std::shared_ptr<const host::Module>& module, const Work& work) {
  const auto instance = std::make_shared<host::Instance>(instanceFor(module, work));
  const host::ConstImageView layer = picture(work.layer, host::Depth::Bits8);
  const host::ImageView pixel = canvas({1, 1}, host::Depth::Bits8);
  add(effort, {{"pre-render", work.name, sizeText(work.canvas), "", "", "vantorel"}, [=] {
                 host::FrameOptions options;
                 options.threads = 1;
                 const auto frame = instance->render(layer, {-500, -500, -499, -499}, pixel, options);
                 if (!frame || !frame->drawn.empty()) {
                   throw std::runtime_error("pre-render failed, or asked for more than nothing");
                 }
               }});
}

// The last of that many frames of a new instance, in seconds.
double lastFrame(const std::shared_ptr<const host::Module>& module, const Work& work, host::Depth depth, int frames) {
  host::Instance instance = instanceFor(module, work);
  for (int i = 1; i < frames; ++i) {
    renderFrame(instance, work, depth, host::Quality::High, 1);
  }
  const auto begin = std::chrono::steady_clock::now();
  renderFrame(instance, work, depth, host::Quality::High, 1);
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count();
}

}  // namespace

void addOwnSetup(const Effort& effort, const std::shared_ptr<const host::Module>& module) {
  addFrameSetup(effort, module, hdWork("a"));
  addPreRender(effort, module, hdWork("a"));
  const Work work = hdWork("g");
  const host::Depth depth = host::Depth::Bits8;
  preparePictures(work, depth);
  for (const int frames : {1, kLaterFrame}) {
    const std::string kind = "frame-" + std::to_string(frames);
    addTimedByItself(effort, {kind, work.name, sizeText(work.canvas), depthText(depth), "high", "vantorel"},
                     [=] { return lastFrame(module, work, depth, frames); });
  }
}

}  // namespace vantorel::bench
