#include <stdexcept>

#include "bench/quality/Renderer.h"
#include "host/Instance.h"

namespace vantorel::quality {

namespace {

// The settings that are measured; times are given relative to `high`.
struct Setting {
  const char* name;
  host::FrameOptions options;
  bool moves_corners = false;
};

host::FrameOptions withQuality(host::Quality quality, int samples = 0) {
  host::FrameOptions options;
  options.quality = quality;
  options.samples = samples;
  options.threads = 1;
  return options;
}

// The effect's own convention for positions.
host::FrameOptions highFromCentres() {
  host::FrameOptions options = withQuality(host::Quality::High);
  options.placement = host::Placement::Centres;
  return options;
}

host::FrameOptions highWithCrispEdges() {
  host::FrameOptions options = withQuality(host::Quality::High);
  options.edges = host::Edges::Crisp;
  return options;
}

// Corners that compensate for it on the perspective path: where the layer's outline is drawn when moved by half a layer
// pixel, moved back by half a canvas pixel.
host::Corners movedCorners(const Scene& scene) {
  if (scene.path != host::RenderPath::Perspective) {
    return scene.corners;
  }
  Ring ring = imageOfMovedOutline(scene.layer, ringOf(scene.corners), 0.5);
  for (host::Point& point : ring) {
    point = {point.x - 0.5, point.y - 0.5};
  }
  return {ring[0], ring[1], ring[3], ring[2]};
}

std::vector<Setting> settings() {
  return {
      {"high, centres", highFromCentres()},
      {"high, centres, corners moved", highFromCentres(), true},
      {"standard", withQuality(host::Quality::Standard)},
      {"high", withQuality(host::Quality::High)},
      {"high, crisp edges", highWithCrispEdges()},
      {"best", withQuality(host::Quality::Best)},
      {"best, 1 sample", withQuality(host::Quality::Best, 1)},
      {"best, 2 x 2 samples", withQuality(host::Quality::Best, 2)},
      {"best, 4 x 4 samples", withQuality(host::Quality::Best, 4)},
  };
}

[[noreturn]] void fail(const host::Error& error) {
  throw std::runtime_error(error.input + ": " + error.message);
}

Frame prepare(const std::shared_ptr<const host::Module>& module, const Setting& setting, const Scene& scene,
              const host::ConstImageView& layer, const host::ImageView& output) {
  const auto instance = std::make_shared<host::Instance>(module);
  if (const auto done = instance->setCorners(setting.moves_corners ? movedCorners(scene) : scene.corners); !done) {
    fail(done.error());
  }
  return {[=, options = setting.options] {
            const host::Rect canvas{0, 0, output.size.width, output.size.height};
            const auto frame = instance->render(layer, canvas, output, options);
            if (!frame) {
              fail(frame.error());
            }
            if (frame->path != scene.path) {
              throw std::runtime_error(scene.name + ": drawn by the other path; choose other corners");
            }
          },
          {}};
}

}  // namespace

std::vector<Renderer> hostRenderers(const std::shared_ptr<const host::Module>& module) {
  std::vector<Renderer> renderers;
  for (const Setting& setting : settings()) {
    renderers.push_back(
        {setting.name, true, true,
         [module, setting](const Scene& scene, const host::ConstImageView& layer, const host::ImageView& output) {
           return prepare(module, setting, scene, layer, output);
         }});
  }
  return renderers;
}

}  // namespace vantorel::quality
