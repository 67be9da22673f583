#include "bridges/ofx/Render.h"

#include <algorithm>
#include <stop_token>
#include <thread>
#include <utility>

#include "bridges/ofx/Names.h"
#include "bridges/ofx/PixelRows.h"
#include "bridges/ofx/Placement.h"

namespace vantorel::ofx {
namespace {

// The window, and the pixels that the effect draws into: the output's own memory if its layout allows that.
struct Target {
  const ClipImage& image;
  RectI window;  // pixels, y up
  host::ImageView view;
};

bool isDrawable(const ClipImage& image) {
  return image.components() == Components::Rgba && image.depth() != PixelDepth::Half;
}

// The interface's rows run upwards; a view begins with the top row.
template <typename View>
View viewOf(const ClipImage& image, const RectI& part) {
  return {
      image.pixel(part.x1, part.y2 - 1), -image.rowBytes(), {part.width(), part.height()}, drawnDepth(image.depth())};
}

Target targetOf(const ClipImage& output, const RectI& window, Renderer& renderer) {
  if (isDrawable(output)) {
    return {output, window, viewOf<host::ImageView>(output, window)};
  }
  orFault(renderer.target.fit({window.width(), window.height()}, drawnDepth(output.depth())));
  return {output, window, renderer.target.view()};
}

bool isInside(const RectI& part, const RectI& whole) {
  return part.x1 >= whole.x1 && part.y1 >= whole.y1 && part.x2 <= whole.x2 && part.y2 <= whole.y2;
}

// The source's frame as premultiplied RGBA: the host's own memory if that holds all of it in this form, otherwise a
// copy in which only the part that the window needs is filled.
host::ConstImageView layerOf(const ClipImage& source, const Placement& placement, const RectI& window,
                             const host::FrameOptions& options, Renderer& renderer) {
  const RectI& frame = placement.frame;
  if (isInside(frame, source.bounds()) && isDrawable(source) && !source.isUnpremultiplied()) {
    return viewOf<host::ConstImageView>(source, frame);
  }
  orFault(renderer.layer.fit({frame.width(), frame.height()}, drawnDepth(source.depth())));
  const host::ImageView layer = renderer.layer.view();
  const RectI needed = placement.neededFor(window, options, &renderer.instance);
  for (int y = needed.y1; y < needed.y2; ++y) {
    loadRow(source, y, needed.x1, needed.x2, layer.pixel(needed.x1 - frame.x1, frame.y2 - 1 - y));
  }
  return host::asConst(layer);
}

void clear(const host::ImageView& view) {
  for (int y = 0; y < view.size.height; ++y) {
    std::fill_n(view.row(y), host::bytesPerPixel(view.depth) * static_cast<std::size_t>(view.size.width), std::byte{0});
  }
}

// As many as the host allows. Small windows are drawn on the calling thread, because hosts render several at once.
unsigned threadsFor(const RectI& window) {
  constexpr std::int64_t kSmall = 256 * 256;
  const MultiThreadSuite* const suite = suites().threads;
  if (std::int64_t{window.width()} * window.height() <= kSmall ||
      (suite != nullptr && suite->is_spawned_thread() != 0)) {
    return 1;
  }
  unsigned count = 0;
  return suite != nullptr && suite->cpu_count(&count) == Status::Ok ? count : 0;
}

// The time and scale of a render.
struct Moment {
  Time time;
  PointD scale;
};

// A single field may have half the frame's rows, or every row doubled; the height tells which.
PixelScale scaleOf(const ClipImage& image, const Clip& clip, const Moment& moment) {
  bool is_half = image.isField();
  if (const auto region = is_half ? clip.regionOfDefinition(moment.time) : std::nullopt) {
    const double full = (region->y2 - region->y1) * moment.scale.y;
    is_half = image.fullFrame().value_or(image.bounds()).height() < 0.75 * full;
  }
  return PixelScale::of(moment.scale, image.pixelAspect(), is_half);
}

// The image's full frame; if that is endless or unknown, the clip's.
RectI frameOf(const Effect& effect, const ClipImage& source, const PixelScale& scale, Time time) {
  if (source.fullFrame()) {
    return *source.fullFrame();
  }
  const std::optional<RectD> frame = effect.sourceFrame(time);
  return (frame ? pixelsRound(pixelsOf(*frame, scale)) : std::nullopt).value_or(source.bounds());
}

// Draws the source onto the corners. False if the host aborted the render.
bool drawSource(const Effect& effect, const ClipImage& source, const ParameterValues& values, const Moment& moment,
                const Target& target, Renderer& renderer) {
  const PixelScale source_scale = scaleOf(source, effect.source(), moment);
  const Placement placement{frameOf(effect, source, source_scale, moment.time),
                            scaleOf(target.image, effect.output(), moment), source_scale};
  placement.apply(values, &renderer.instance);
  host::FrameOptions options = optionsOf(values);
  options.threads = threadsFor(target.window);
  std::stop_source stop;
  options.stop = stop.get_token();
  // Hosts expect the question on the thread that renders.
  options.progress = [&, caller = std::this_thread::get_id()](double) {
    if (std::this_thread::get_id() == caller && suites().effect->abort(effect.handle()) != 0) {
      stop.request_stop();
    }
  };
  const host::ConstImageView layer = layerOf(source, placement, target.window, options, renderer);
  const host::Result<host::FrameResult> drawn =
      renderer.instance.render(layer, placement.plane().at(target.window), target.view, options);
  if (!drawn && drawn.error().kind == host::ErrorKind::Interrupted) {
    return false;
  }
  orFault(drawn);
  return true;
}

// Applies the opacity and the optional clips, and writes the rows to the output's image.
void finish(const ParameterValues& values, const std::optional<ClipImage>& matte,
            const std::optional<ClipImage>& background, const Target& target, Renderer& renderer) {
  const RectI& window = target.window;
  const host::Depth depth = target.view.depth;
  const bool is_stored = isDrawable(target.image) && !target.image.isUnpremultiplied();
  if (is_stored && !matte && !background && values.opacity == 1.0) {
    return;
  }
  orFault(renderer.row.fit({window.width(), 1}, depth));
  std::byte* const other = renderer.row.view().row(0);
  for (int i = 0; i < window.height(); ++i) {
    std::byte* const row = target.view.row(i);
    const int y = window.y2 - 1 - i;
    if (values.opacity < 1.0) {
      fadeRow(depth, row, window.width(), values.opacity);
    }
    if (matte) {
      loadRow(*matte, y, window.x1, window.x2, other);
      holdOutRow(depth, row, other, window.width());
    }
    if (background) {
      loadRow(*background, y, window.x1, window.x2, other);
      layOverRow(depth, row, other, window.width());
    }
    storeRow(target.image, y, window.x1, window.x2, row);
  }
}

std::optional<ClipImage> fetchLike(const ClipImage& output, const Clip& clip, const char* name, Time time) {
  std::optional<ClipImage> image = ClipImage::fetch(clip, name, time);
  if (image && drawnDepth(image->depth()) != drawnDepth(output.depth())) {
    throw Fault{Status::ImageFormat,
                std::string(name) + ": its bit depth differs from the output's; use the same depth for all clips"};
  }
  return image;
}

}  // namespace

void render(Effect& effect, const Properties& arguments) {
  const Time time = required(arguments.number(kPropTime), kPropTime);
  const Moment moment{time, renderScaleOf(arguments)};
  const RectI asked = required(arguments.rectangle(kPropRenderWindow), kPropRenderWindow);
  const std::optional<ClipImage> output = ClipImage::fetch(effect.output(), kOutputClip, time);
  if (!output) {
    if (suites().effect->abort(effect.handle()) != 0) {
      return;
    }
    throw Fault{Status::Failed, "the host does not deliver the output image"};
  }
  const RectI window = common(asked, output->bounds());
  if (window.empty()) {
    return;
  }
  const ParameterValues values = effect.parameters().at(time, effect.project(time));
  const std::optional<ClipImage> source = fetchLike(*output, effect.source(), kSourceClip, time);
  const std::optional<ClipImage> matte = fetchLike(*output, effect.matte(), kMatteClip, time);
  const std::optional<ClipImage> background = fetchLike(*output, effect.background(), kBackgroundClip, time);

  BorrowedRenderer renderer(effect);
  const Target target = targetOf(*output, window, *renderer);
  if (!source) {
    clear(target.view);
  } else if (!drawSource(effect, *source, values, moment, target, *renderer)) {
    return;
  }
  finish(values, matte, background, target, *renderer);
}

}  // namespace vantorel::ofx
