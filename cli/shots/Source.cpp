#include "cli/shots/Source.h"

#include <fmt/format.h>

#include <utility>

#include "tracks/Quadrilaterals.h"

namespace vantorel::cli {

namespace {

bool hasSourceKeys(const CornersTrack& corners) {
  return corners.read && !corners.read->track.source_keys.empty();
}

host::AnimatedCorners fromOptions(const RenderOptions& options, host::Size layer) {
  const host::Corners corners = toPixels(orLayersOwn(options.source), layer, "--from-");
  if (!tracks::isConvex({corners.upper_left, corners.upper_right, corners.lower_left, corners.lower_right})) {
    throw badArgument("--from-ul",
                      "with the layer's other corners it does not form a convex quadrilateral; give all four, each "
                      "in its place");
  }
  host::AnimatedCorners constant;
  constant.setConstant(corners);
  return constant;
}

host::AnimatedPoint scaled(const host::AnimatedPoint& point, const Enlargement& by, host::Interpolation interpolation) {
  std::vector<host::AnimatedPoint::Key> keys = point.keys();
  for (host::AnimatedPoint::Key& key : keys) {
    key.value = {key.value.x * by.x, key.value.y * by.y};
  }
  return {std::move(keys), interpolation};
}

}  // namespace

void refuseSourceContradictions(const RenderOptions& options, const CornersTrack& corners) {
  if (!options.hasSource() && !hasSourceKeys(corners)) {
    return;
  }
  if (options.hasSource() && hasSourceKeys(corners)) {
    throw badArgument("--from-ul", fmt::format("cannot be given together with \"from\" in '{}'; omit one of them",
                                               corners.read->track.source));
  }
  const std::string source =
      options.hasSource() ? "--from-ul and the like" : fmt::format("\"from\" in '{}'", corners.read->track.source);
  if (options.placement == host::Placement::Centres) {
    throw badArgument("--placement", fmt::format("cannot be centres with {}; omit it", source));
  }
  if (options.edges == host::Edges::Soft) {
    throw badArgument("--edges", fmt::format("cannot be soft with {}; omit it", source));
  }
}

std::optional<host::AnimatedCorners> sourceOf(const Shot& shot, host::Size layer) {
  if (shot.options.hasSource()) {
    return fromOptions(shot.options, layer);
  }
  return hasSourceKeys(shot.corners)
             ? std::optional(toSourceAnimation(shot.corners, layer, shot.frame_size, shot.options.rate))
             : std::nullopt;
}

std::optional<host::AnimatedCorners> enlargedSourceOf(const Shot& shot, host::Size layer) {
  std::optional<host::AnimatedCorners> source = sourceOf(shot, layer);
  if (source && shot.enlargement != Enlargement{}) {
    const host::Interpolation way =
        shot.corners.read ? shot.corners.read->track.interpolation : host::Interpolation::Linear;
    for (host::AnimatedPoint* point :
         {&source->upper_left, &source->upper_right, &source->lower_left, &source->lower_right}) {
      *point = scaled(*point, shot.enlargement, way);
    }
  }
  return source;
}

CommandError sourceFault(const Shot& shot, std::int32_t frame, const host::Error& error) {
  return hasSourceKeys(shot.corners)
             ? fileFailure(fmt::format("{}: from: frame {}", shot.corners.read->track.source, frame), error.message)
             : fromHost(error);
}

}  // namespace vantorel::cli
