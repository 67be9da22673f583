// What draws: the host at its several settings, and other tools' libraries.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "bench/quality/Scene.h"
#include "host/Image.h"
#include "host/Module.h"

namespace vantorel::quality {

// A frame made ready. The views that it was made for must outlive it.
struct Frame {
  std::function<void()> draw;     // what is timed; on one thread
  std::function<void()> deliver;  // puts the picture into the output where `draw` leaves it elsewhere; may be empty
};

struct Renderer {
  std::string name;
  bool judged_everywhere;  // else only where the slow peers are
  bool own;                // draws both paths and all depths
  // Throws std::runtime_error when the frame cannot be made ready, and `draw` when it cannot be drawn.
  std::function<Frame(const Scene&, const host::ConstImageView& layer, const host::ImageView& output)> prepare;
};

std::vector<Renderer> hostRenderers(const std::shared_ptr<const host::Module>& module);
std::vector<Renderer> openCvRenderers();
std::vector<Renderer> openImageIoRenderers();
std::vector<Renderer> imageMagickRenderers();

}  // namespace vantorel::quality
