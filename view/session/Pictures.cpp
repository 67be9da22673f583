#include "view/session/Pictures.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/pictures/Composite.h"
#include "cli/pictures/Fade.h"
#include "cli/pictures/Feather.h"
#include "cli/pictures/Reduce.h"
#include "cli/shots/FrameRenderer.h"
#include "cli/shots/PictureSource.h"
#include "cli/shots/ShotColour.h"
#include "cli/shots/Source.h"

namespace vantorel::view {

namespace {

// A view of part of a picture.
host::ConstImageView part(const host::ConstImageView& pixels, const host::Rect& rect) {
  host::ConstImageView view = pixels;
  view.data = view.pixel(rect.left, rect.top);
  view.size = {rect.width(), rect.height()};
  return view;
}

// The region in pixels of a picture reduced to 1/n, rounded outwards.
host::Rect reducedRect(const Region& region) {
  const auto up = [&](int value) { return (value + region.n - 1) / region.n; };
  return {region.rect.left / region.n, region.rect.top / region.n, up(region.rect.right), up(region.rect.bottom)};
}

host::Point originOf(const Region& region) {
  return {static_cast<double>(region.rect.left), static_cast<double>(region.rect.top)};
}

host::Corners scaled(const host::Corners& corners, double n) {
  const auto point = [&](const host::Point& p) { return host::Point{p.x / n, p.y / n}; };
  return {point(corners.upper_left), point(corners.upper_right), point(corners.lower_left), point(corners.lower_right)};
}

// The part of the region that the corners cover, extended by `margin` full-resolution pixels and a pixel of the
// picture; may be empty.
Region around(const host::Corners& corners, double margin, const Region& region) {
  const auto [left, right] =
      std::minmax({corners.upper_left.x, corners.upper_right.x, corners.lower_left.x, corners.lower_right.x});
  const auto [top, bottom] =
      std::minmax({corners.upper_left.y, corners.upper_right.y, corners.lower_left.y, corners.lower_right.y});
  const int n = region.n;
  const auto down = [&](double v) { return static_cast<int>(std::floor((v - margin) / n) - 1) * n; };
  const auto up = [&](double v) { return static_cast<int>(std::ceil((v + margin) / n) + 1) * n; };
  return {{std::max(region.rect.left, down(left)), std::max(region.rect.top, down(top)),
           std::min(region.rect.right, up(right)), std::min(region.rect.bottom, up(bottom))},
          n};
}

double area(const host::Corners& q) {
  const auto cross = [](const host::Point& a, const host::Point& b) { return a.x * b.y - a.y * b.x; };
  return std::abs(cross(q.upper_left, q.upper_right) + cross(q.upper_right, q.lower_right) +
                  cross(q.lower_right, q.lower_left) + cross(q.lower_left, q.upper_left)) /
         2.0;
}

std::jthread readingAhead(ProxyCache& pictures, std::int32_t frame) {
  return std::jthread([&pictures, frame](const std::stop_token& stop) {
    try {
      pictures.at(frame, 1, stop);
    } catch (const std::exception&) {
      // Ignored here: the page requests the same picture and shows the error.
    }
  });
}

// The page changes only the corners; the part of the layer that is drawn onto them stays as in the file.
std::vector<tracks::CornerKey> sourceKeysOf(const cli::Shot& shot) {
  return shot.corners.read ? cli::resolveCorners(shot.corners, shot.layer_size, shot.frame_size).track.source_keys
                           : std::vector<tracks::CornerKey>{};
}

// The response if nothing is visible: an empty picture.
std::string nothing(const Region& region) {
  return pictureMessage(originOf(region), {});
}

}  // namespace

Pictures::Pictures(cli::Shot& shot)
    : shot_(shot),
      layers_(*shot.layer, shot.colour.get()),
      drafter_(shot.module),
      source_(cli::sourceOf(shot, shot.layer_size)),
      source_keys_(sourceKeysOf(shot)) {
  first_readings_.push_back(readingAhead(layers_, shot.frames.first));
  if (shot.plate) {
    plates_.emplace(*shot.plate, shot.colour.get());
    first_readings_.push_back(readingAhead(*plates_, shot.frames.first));
  }
  if (shot.matte) {
    mattes_.emplace(*shot.matte, nullptr);
  }
}

std::string Pictures::backdrop(std::int32_t frame, const Region& region) {
  const host::Rect rect = reducedRect(region);
  host::Image picture = cli::valueOrThrow(host::Image::create({rect.width(), rect.height()}, host::Depth::Bits8));
  picture.clear();
  layOverPlate(picture.view(), frame, region, {});
  return pictureMessage(originOf(region), std::as_const(picture).view());
}

std::string Pictures::draft(std::int32_t frame, const host::Corners& corners, const Region& region) {
  const std::stop_token stop = drafts_.begin();
  fulls_.end();
  const std::scoped_lock lock(draft_mutex_);
  const Region drawn = around(corners, 0.0, region);
  if (drawn.rect.empty()) {
    return nothing(region);
  }
  const host::Size layer_size = layers_.at(frame, 1, stop).pixels.size;
  const DisplayPicture layer = layers_.at(frame, layerReduction(corners, region, layer_size), stop);
  const host::Rect canvas = reducedRect(drawn);
  cli::valueOrThrow(draft_pixels_.fit({canvas.width(), canvas.height()}, host::Depth::Bits8));
  cli::valueOrThrow(drafter_.setCorners(scaled(corners, region.n)));
  if (source_) {
    const double reduction = static_cast<double>(layer_size.width) / layer.pixels.size.width;
    cli::valueOrThrow(drafter_.setSource(scaled(source_->at(shot_.options.rate.seconds(frame)), reduction)));
  }
  host::FrameOptions options;
  options.quality = host::Quality::Standard;
  options.threads = shot_.options.threads;
  options.stop = stop;
  cli::valueOrThrow(drafter_.render(layer.pixels, canvas, draft_pixels_.view(), options));
  hold(corners, frame, drawn, stop);
  layOverPlate(draft_pixels_.view(), frame, drawn, stop);
  return pictureMessage(originOf(drawn), std::as_const(draft_pixels_).view());
}

std::string Pictures::full(std::int32_t frame, const tracks::CornerTrack& track, const Region& region) {
  const std::stop_token stop = fulls_.begin();
  const std::scoped_lock lock(full_mutex_);
  if (stop.stop_requested()) {
    throw cli::interrupted();
  }
  tracks::CornerTrack whole_track = track;
  whole_track.source_keys = source_keys_;
  shot_.corners = asCorners(whole_track);
  const Region drawn = reached(frame, region);
  if (drawn.rect.empty()) {
    return nothing(region);
  }
  cli::FrameRenderer renderer(shot_, stop, {});
  const cli::ComposedFrame frame_pixels = renderer.compose(frame, drawn.rect);
  const DisplayPicture picture =
      displayed(nullptr, host::asConst(frame_pixels.pixels), shot_.colour.get(), shot_.layer->path(frame));
  const host::Rect& canvas = frame_pixels.canvas;
  const host::ConstImageView seen =
      part(picture.pixels, {drawn.rect.left - canvas.left, drawn.rect.top - canvas.top, drawn.rect.right - canvas.left,
                            drawn.rect.bottom - canvas.top});
  host::Image shown = cli::reduced(seen, drawn.n);
  makeOpaque(shown.view());
  return pictureMessage(originOf(drawn), std::as_const(shown).view());
}

void Pictures::close() {
  for (std::jthread& reading : first_readings_) {
    reading.request_stop();
  }
  drafts_.close();
  fulls_.close();
}

// Chosen so that the proxy has about as many pixels as are drawn. A power of two, so that few proxies are kept.
int Pictures::layerReduction(const host::Corners& corners, const Region& region, host::Size layer) const {
  const double drawn = std::max(1.0, area(corners) / (region.n * region.n));
  const double ratio = std::sqrt(static_cast<double>(layer.width) * layer.height / drawn);
  constexpr int kMostReduction = 64;
  int n = 1;
  while (2 * n <= ratio && n < kMostReduction) {
    n *= 2;
  }
  return n;
}

// Applies soft edges, opacity and the holdout matte to the draft.
void Pictures::hold(const host::Corners& corners, std::int32_t frame, const Region& drawn,
                    const std::stop_token& stop) {
  const host::ImageView picture = draft_pixels_.view();
  const cli::RenderOptions& options = shot_.options;
  const host::Rect rect = reducedRect(drawn);
  if (options.feather > 0.0) {
    const auto in_draft = [&](const host::Point& p) {
      return host::Point{p.x / drawn.n - rect.left, p.y / drawn.n - rect.top};
    };
    cli::feather(picture,
                 {in_draft(corners.upper_left), in_draft(corners.upper_right), in_draft(corners.lower_right),
                  in_draft(corners.lower_left)},
                 options.feather / drawn.n);
  }
  if (options.opacity < 1.0) {
    cli::fade(picture, options.opacity);
  }
  if (mattes_) {
    const DisplayPicture matte = mattes_->at(frame, drawn.n, stop);
    requireFrameSize(matte, *shot_.matte, frame, drawn.n);
    cli::holdOut(picture, part(matte.pixels, rect),
                 matte.has_alpha ? cli::MatteChannel::Alpha : cli::MatteChannel::Grey);
  }
}

// The part of the region that the layer can reach in that frame; all of it if there is motion blur.
Region Pictures::reached(std::int32_t frame, const Region& region) const {
  // More than soft edges and the pixels next to the outline need.
  constexpr double kMargin = 16.0;
  if (shot_.options.shutter.degrees > 0.0) {
    return region;
  }
  const cli::FrameRate& rate = shot_.options.rate;
  const host::AnimatedCorners corners = cli::toAnimation(shot_.corners, shot_.layer_size, shot_.frame_size, rate);
  return around(corners.at(rate.seconds(frame)), kMargin, region);
}

// A later picture of a sequence may have another size than the first one.
void Pictures::requireFrameSize(const DisplayPicture& picture, const cli::PictureSource& source, std::int32_t frame,
                                int n) const {
  if (picture.pixels.size != host::downsampled(shot_.frame_size, n)) {
    throw cli::fileFailure(source.path(frame), fmt::format("its size is not the shot's, {}; give pictures of one size",
                                                           cli::toText(shot_.frame_size)));
  }
}

void Pictures::layOverPlate(const host::ImageView& picture, std::int32_t frame, const Region& region,
                            const std::stop_token& stop) {
  if (plates_) {
    const DisplayPicture plate = plates_->at(frame, region.n, stop);
    requireFrameSize(plate, *shot_.plate, frame, region.n);
    cli::compositeOver(picture, part(plate.pixels, reducedRect(region)));
  }
  makeOpaque(picture);
}

}  // namespace vantorel::view
