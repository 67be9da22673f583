#include "cli/shots/FrameRenderer.h"

#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/Memory.h"
#include "cli/base/Text.h"
#include "cli/pictures/AbandonedFiles.h"
#include "cli/pictures/Composite.h"
#include "cli/pictures/Fade.h"
#include "cli/pictures/Feather.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/ImageWriter.h"
#include "cli/shots/Resume.h"
#include "cli/shots/ShotColour.h"
#include "cli/shots/Source.h"

namespace vantorel::cli {

namespace {

class Stopwatch {
 public:
  double seconds() const { return std::chrono::duration<double>(Clock::now() - start_).count(); }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point start_ = Clock::now();
};

int floorToMultiple(int value, int n) {
  return value - ((value % n) + n) % n;
}
int ceilToMultiple(int value, int n) {
  return -floorToMultiple(-value, n);
}

// Rounds the edges outwards to multiples of n, so that pixels at 1/n resolution are aligned with the full picture's
// grid.
host::Rect alignedOutward(const host::Rect& rect, int n) {
  return {floorToMultiple(rect.left, n), floorToMultiple(rect.top, n), ceilToMultiple(rect.right, n),
          ceilToMultiple(rect.bottom, n)};
}

}  // namespace

FrameRenderer::FrameRenderer(const Shot& shot, std::stop_token stop, std::function<void(double)> progress)
    : shot_(shot), stop_(std::move(stop)), progress_(std::move(progress)), instance_(shot.module) {}

std::optional<FrameReport> FrameRenderer::render(std::int32_t frame) {
  const std::string path = shot_.output.path(frame);
  FrameState state = FrameState::Missing;
  if (shot_.options.resume) {
    state = stateOf(shot_, frame);
    if (state == FrameState::Done) {
      removeAbandoned(path);
      return std::nullopt;
    }
  }

  ComposedFrame composed = compose(frame);
  const Stopwatch writing;
  write(composed);
  FrameReport& report = composed.report;
  report.output = path;
  report.redone_because = reasonToRedo(state);
  report.write_seconds += writing.seconds();
  return report;
}

// Parts can be composed on their own at Best, which draws in tiles of a grid that does not depend on the canvas.
bool FrameRenderer::composesParts() const {
  const RenderOptions& options = shot_.options;
  return options.quality == host::Quality::Best && options.placement == host::Placement::Outline && !options.fit &&
         options.downsample == 1 && options.feather == 0.0 && !shot_.matte && !shot_.passes_plate;
}

ComposedFrame FrameRenderer::compose(std::int32_t frame, const std::optional<host::Rect>& part) {
  FrameReport report;
  report.frame = frame;
  report.depth = shot_.depth;
  const Stopwatch reading;
  const std::shared_ptr<const Picture> layer = shot_.layer->at(frame, stop_);
  const std::shared_ptr<const Picture> plate = shot_.plate ? shot_.plate->at(frame, stop_) : nullptr;
  report.read_seconds = reading.seconds();

  const bool is_part = part && composesParts();
  const host::Rect whole = canvasFor(frame, layer->info.size, plate.get());
  const host::Rect canvas = is_part ? *part : whole;
  prepareOutput(canvas);
  const host::FrameResult result = draw(*layer, canvas, frame);
  report.path = result.path;
  report.render_seconds = result.render_seconds;

  const Stopwatch compositing;
  if (shot_.options.feather > 0.0) {
    featherEdges(frame, canvas);
  }
  if (shot_.options.opacity < 1.0) {
    fade(output_.view(), shot_.options.opacity);
  }
  if (shot_.matte) {
    applyMatte(frame, canvas);
  }
  if (plate) {
    composite(*plate, shot_.plate->path(frame), canvas, is_part);
  }
  report.write_seconds = compositing.seconds();
  const host::Rect written = writtenPart(frame, canvas, plate.get());
  report.origin_x = written.left / shot_.options.downsample;
  report.origin_y = written.top / shot_.options.downsample;
  report.size = host::downsampled({written.width(), written.height()}, shot_.options.downsample);
  return {output_.view(), canvas, written, plate ? plate : layer, std::move(report)};
}

host::FrameResult FrameRenderer::draw(const Picture& layer, const host::Rect& canvas, std::int32_t frame) {
  auto result = instance_.render(shownPixels(layer), canvas, output_.view(), frameOptions(frame));
  if (!result && result.error().input == "source") {
    throw sourceFault(shot_, frame, result.error());
  }
  return valueOrThrow(std::move(result));
}

host::FrameOptions FrameRenderer::frameOptions(std::int32_t frame) const {
  host::FrameOptions options;
  options.time = timeOf(frame, shot_.options.rate);
  options.quality = shot_.options.quality;
  options.samples = shot_.options.samples;
  options.edges = shot_.options.edges;
  options.placement = shot_.options.placement;
  options.shutter = shot_.options.shutter;
  options.protocol = shot_.options.protocol;
  options.downsample = shot_.options.downsample;
  options.threads = shot_.threads_per_frame;
  options.progress = progress_;
  options.stop = stop_;
  return options;
}

void FrameRenderer::placeCorners(host::Size layer) {
  if (corners_layer_ == layer) {
    return;
  }
  corners_ = toAnimation(shot_.corners, layer, shot_.frame_size, shot_.options.rate);
  valueOrThrow(instance_.setCorners(corners_));
  if (const auto source = enlargedSourceOf(shot_, layer)) {
    valueOrThrow(instance_.setSource(*source));
  }
  corners_layer_ = layer;
}

host::Rect FrameRenderer::canvasFor(std::int32_t frame, host::Size layer, const Picture* plate) {
  placeCorners(layer);
  if (plate != nullptr && shot_.passes_plate) {
    return plate->area;
  }
  if (!shot_.options.fit) {
    return {0, 0, shot_.frame_size.width, shot_.frame_size.height};
  }
  return alignedOutward(valueOrThrow(instance_.boundingBox(layer, frameOptions(frame))), shot_.options.downsample);
}

void FrameRenderer::prepareOutput(const host::Rect& canvas) {
  const host::Size size = host::downsampled({canvas.width(), canvas.height()}, shot_.options.downsample);
  if (size == output_.size()) {
    return;
  }
  output_ = {};
  if (const auto shortage = memoryShortage(pictureBytes(size, shot_.depth))) {
    const bool fits = shot_.options.fit;
    throw outOfMemory(fits ? "--fit" : "--size",
                      fmt::format("the picture, {}, {}; {}", toText(size), *shortage,
                                  fits ? "move the corners nearer to the layer or give --size"
                                       : "give a smaller --size, a smaller --depth, or --downsample"));
  }
  output_ = valueOrThrow(host::Image::create(size, shot_.depth));
}

void FrameRenderer::featherEdges(std::int32_t frame, const host::Rect& canvas) {
  const host::Corners corners = corners_.at(shot_.options.rate.seconds(frame));
  const int n = shot_.options.downsample;
  const double centre = shot_.options.placement == host::Placement::Centres ? 0.5 : 0.0;
  const auto inOutput = [&](const host::Point& p) {
    return host::Point{(p.x + centre - canvas.left) / n, (p.y + centre - canvas.top) / n};
  };
  feather(output_.view(),
          {inOutput(corners.upper_left), inOutput(corners.upper_right), inOutput(corners.lower_right),
           inOutput(corners.lower_left)},
          shot_.options.feather / n);
}

// The pixels of the frame without the plate's overscan.
host::ImageView FrameRenderer::framePart(const host::Rect& canvas) {
  host::ImageView part = output_.view();
  if (shot_.passes_plate) {
    part.data = part.pixel(-canvas.left, -canvas.top);
    part.size = shot_.frame_size;
  }
  return part;
}

// The part of the canvas that is written to a file: where the plate has pixels and where the layer is.
host::Rect FrameRenderer::writtenPart(std::int32_t frame, const host::Rect& canvas, const Picture* plate) {
  if (plate == nullptr || !shot_.passes_plate || plate->info.data == canvas) {
    return canvas;
  }
  const host::Rect box = valueOrThrow(instance_.boundingBox(*corners_layer_, frameOptions(frame)));
  const host::Rect& data = plate->info.data;
  const host::Rect both{std::max(canvas.left, std::min(data.left, box.left)),
                        std::max(canvas.top, std::min(data.top, box.top)),
                        std::min(canvas.right, std::max(data.right, box.right)),
                        std::min(canvas.bottom, std::max(data.bottom, box.bottom))};
  return both.empty() ? canvas : both;
}

void FrameRenderer::applyMatte(std::int32_t frame, const host::Rect& canvas) {
  const std::shared_ptr<const Picture> matte = shot_.matte->at(frame, stop_);
  const host::ImageView part = framePart(canvas);
  if (matte->pixels.size() != part.size) {
    throw fileFailure(shot_.matte->path(frame), fmt::format("its size is {}, the shot's is {}; give mattes of one size",
                                                            toText(matte->info.size), toText(shot_.frame_size)));
  }
  holdOut(part, matte->pixels.view(), matte->info.has_alpha ? MatteChannel::Alpha : MatteChannel::Grey);
}

void FrameRenderer::composite(const Picture& plate, const std::string& plate_name, const host::Rect& canvas,
                              bool is_part) {
  const bool shows_frame = shot_.passes_plate || is_part;
  const bool fits = shows_frame ? plate.info.size == shot_.frame_size : plate.pixels.size() == output_.size();
  if (!fits) {
    throw fileFailure(plate_name, fmt::format("its size is {}, the shot's is {}; give plates of one size",
                                              toText(plate.info.size), toText(shot_.frame_size)));
  }
  host::ConstImageView behind = plate.pixels.view();
  if (is_part) {
    behind.data = behind.pixel(canvas.left, canvas.top);
    behind.size = output_.size();
  }
  compositeOver(output_.view(), behind);
}

void FrameRenderer::write(ComposedFrame& composed) {
  const std::string path = shot_.output.path(composed.report.frame);
  const int n = shot_.options.downsample;
  const Picture& reference = *composed.reference;
  OutputPicture picture;
  picture.metadata = reference.metadata;
  if (shot_.colour) {
    shot_.colour->leave(composed.pixels, path);
  }
  const host::Rect& written = composed.written;
  picture.pixels = host::asConst(composed.pixels);
  picture.pixels.data =
      picture.pixels.pixel((written.left - composed.canvas.left) / n, (written.top - composed.canvas.top) / n);
  picture.pixels.size = composed.report.size;
  picture.window = {written.left / n, written.top / n, written.left / n + picture.pixels.size.width,
                    written.top / n + picture.pixels.size.height};
  picture.frame = host::downsampled(shot_.frame_size, n);
  picture.has_alpha = !shot_.plate || reference.info.has_alpha;
  picture.samples = shot_.samples;
  picture.encoding = shot_.options.encoding;
  picture.origin = reference.origin;
  picture.passes_plate = shot_.passes_plate;
  picture.settings = settingsOf(shot_, composed.report.frame);
  writePicture(path, *shot_.format, picture, stop_);
}

}  // namespace vantorel::cli
