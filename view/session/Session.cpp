#include "view/session/Session.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "cli/base/CommandError.h"
#include "cli/shots/ShotPlan.h"
#include "view/session/CommandText.h"
#include "view/session/CornersFile.h"

namespace vantorel::view {

namespace {

using nlohmann::json;

bool hasCorners(const cli::ViewOptions& options) {
  std::error_code fault;
  if (!options.track.files.empty()) {
    return options.track.files == "-" || cli::trackFiles(options.track.files).size() > 1 ||
           std::filesystem::exists(options.track.files, fault);
  }
  return std::ranges::any_of(options.corners, [](const auto& corner) { return corner.has_value(); });
}

// The layer's own corners, as placeholders until the page sends others.
cli::CornersTrack anyCorners() {
  cli::CornersTrack corners;
  corners.still = cli::orLayersOwn({});
  return corners;
}

// Showing pictures writes no files, so the shot is planned without an output.
cli::Shot planned(const cli::ViewOptions& options) {
  cli::RenderOptions looking = options;
  looking.output.clear();
  cli::Shot shot = hasCorners(options) ? cli::planShot(looking) : cli::planShot(looking, anyCorners());
  for (cli::PictureSource* source : {shot.layer.get(), shot.plate.get(), shot.matte.get()}) {
    if (source != nullptr) {
      source->keepLatest();
    }
  }
  return shot;
}

tracks::CornerTrack trackOfShot(const cli::Shot& shot, const cli::CornersTrack& corners, host::Size layer) {
  if (corners.read) {
    return cli::resolveCorners(corners, layer, shot.frame_size).track;
  }
  const host::Corners still = cli::toPixels(corners.still, layer, "--");
  tracks::CornerTrack track;
  tracks::CornerKey key;
  key.frame = shot.frames.first;
  key.points = {still.upper_left, still.upper_right, still.lower_left, still.lower_right};
  key.present = tracks::kAllCorners;
  track.keys.push_back(key);
  return track;
}

}  // namespace

Session::Session(const cli::ViewOptions& options)
    : options_(options), file_(options_.track), shot_(planned(options)), pictures_(shot_) {
  if (!options_.output.empty()) {
    // Reports now what rendering would refuse later.
    cli::planShot(options_, anyCorners());
  }
  layer_size_ = shot_.layer_size;
  if (hasCorners(options)) {
    track_ = trackOfShot(shot_, shot_.corners, layer_size_);
  }
}

json Session::description() {
  const std::scoped_lock lock(file_mutex_);
  const auto name_or_null = [](const std::string& name) { return name.empty() ? json() : json(name); };
  return {{"size", {shot_.frame_size.width, shot_.frame_size.height}},
          {"layer", options_.layer_label.empty() ? options_.layer : options_.layer_label},
          {"layerSize", {layer_size_.width, layer_size_.height}},
          {"plate", name_or_null(options_.plate)},
          {"plateMoves", shot_.plate != nullptr && !shot_.plate->isStill()},
          {"frames", options_.frames ? json{shot_.frames.first, shot_.frames.last, shot_.frames.step} : json()},
          {"fps", static_cast<double>(options_.rate.scale) / options_.rate.step},
          {"track", track_.keys.empty() ? json() : toJson(track_)},
          {"corners", name_or_null(options_.track.files)},
          {"cannotSave", name_or_null(file_.reasonNotToSave())},
          {"interpolates", options_.track.files.empty() || file_.holdsInterpolation()},
          {"output", name_or_null(options_.output)}};
}

json Session::save(const json& body) {
  const tracks::CornerTrack track = trackOf(body);
  const std::scoped_lock lock(file_mutex_);
  if (file_.isChanged() && body.value("anyway", json()) != true) {
    return {{"changed",
             fmt::format("{} has been changed by another program since it was read here", options_.track.files)}};
  }
  file_.save(track, layer_size_);
  track_ = track;
  return {{"file", options_.track.files},
          {"keys", track.keys.size()},
          {"note", isReadAsWritten(track)
                       ? ""
                       : "render it with --corners-order as-written, since these corners are rotated or mirrored"}};
}

json Session::reload() {
  const std::scoped_lock lock(file_mutex_);
  if (const std::string reason = file_.reasonNotToSave(); !reason.empty()) {
    throw cli::badArgument("--corners", reason);
  }
  track_ = trackOfShot(shot_, file_.read(shot_.options.rate), layer_size_);
  return {{"track", toJson(track_)}};
}

json Session::render(const json& body) {
  if (options_.output.empty()) {
    throw cli::badArgument("--output", "was not given; start with -o OUT, or copy the command and run it");
  }
  tracks::CornerTrack track = trackOf(body);
  track.source_keys = track_.source_keys;
  cli::RenderOptions options = options_;
  if (body.contains("frame")) {
    const std::int32_t frame = frameOf(body);
    if (options.frames && !isFrame(frame)) {
      throw cli::badArgument("frame", "is outside the given range; choose another");
    }
    if (options.frames) {
      options.frames = cli::FrameRange{frame, frame, 1};
    } else {
      options.at = frame;
    }
  }
  if (!job_.start(options, track)) {
    throw cli::badArgument("render", "a rendering is already running; wait for it or cancel it");
  }
  return job_.state();
}

json Session::command(const json& body) const {
  return {{"command", commandText(options_, trackOf(body), frameOf(body))}};
}

bool Session::isFrame(std::int32_t frame) const {
  const cli::FrameRange& frames = shot_.frames;
  return frame >= frames.first && frame <= frames.last && (frame - frames.first) % frames.step == 0;
}

}  // namespace vantorel::view
