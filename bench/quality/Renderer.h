// The renderers: the host with different settings, and other tools' libraries.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/quality/Scene.h"
#include "host/Image.h"
#include "host/Module.h"

namespace vantorel::quality {

// A prepared frame. The views that it was prepared for must outlive it.
struct Frame {
  std::function<void()> draw;     // the timed part; on one thread
  std::function<void()> deliver;  // copies the picture to the output if `draw` does not draw there; may be empty
};

struct Renderer {
  std::string name;
  bool judged_everywhere;  // else only in the slow peers' scene
  bool own;                // one of ours: draws both paths and all depths
  // Throws std::runtime_error if the frame cannot be prepared; `draw` throws it if the frame cannot be drawn.
  std::function<Frame(const Scene&, const host::ConstImageView& layer, const host::ImageView& output)> prepare;
};

std::vector<Renderer> hostRenderers(const std::shared_ptr<const host::Module>& module);
std::vector<Renderer> openCvRenderers();
std::vector<Renderer> openImageIoRenderers();
std::vector<Renderer> imageMagickRenderers();

}  // namespace vantorel::quality
