#include "bridges/ofx/Regions.h"

#include "bridges/ofx/Geometry.h"
#include "bridges/ofx/Names.h"
#include "bridges/ofx/Placement.h"

namespace vantorel::ofx {
namespace {

// Soft edges reach up to 5 pixels beyond the corners; one more is for rounding.
constexpr double kMargin = 6.0;

PixelScale scaleOf(const Clip& clip, const Properties& in, bool is_field = false) {
  return PixelScale::of(renderScaleOf(in), pixelAspectOf(Properties(clip.properties)), is_field);
}

Time timeOf(const Properties& in) {
  return required(in.number(kPropTime), kPropTime);
}

// The plane of the output's pixels, given the source's frame.
Plane planeOf(const Effect& effect, const RectD& frame, const Properties& in) {
  const PixelScale scale = scaleOf(effect.output(), in);
  return {scale, frame.x1 * scale.x, frame.y2 * scale.y};
}

// Nothing if a corner is not a number.
std::optional<ParameterValues> valuesAt(const Effect& effect, Time time) {
  const Project project = effect.project(time);
  try {
    return effect.parameters().at(time, project);
  } catch (const Fault&) {
    return std::nullopt;
  }
}

// The part of the source's region that a region of the output needs.
RectD neededOf(Effect& effect, const Properties& in, const RectD& asked, const RectD& region) {
  const Time time = timeOf(in);
  const ParameterValues values = effect.parameters().at(time, effect.project(time));
  // The host does not tell here which field it will render; fields of half the height need more of the source.
  const auto order = Properties(effect.source().properties).text("OfxImageClipPropFieldOrder");
  const bool has_fields = order && *order != "OfxFieldNone";
  const PixelScale source_scale = scaleOf(effect.source(), in, has_fields);
  const PixelScale output_scale = scaleOf(effect.output(), in, has_fields);
  const std::optional<RectI> frame = pixelsRound(pixelsOf(region, source_scale));
  const std::optional<RectI> window = pixelsRound(pixelsOf(asked, output_scale));
  if (!frame || !window) {
    return region;
  }
  BorrowedRenderer renderer(effect);
  const Placement placement{*frame, output_scale, source_scale};
  placement.apply(values, &renderer->instance);
  const RectI part = placement.neededFor(*window, optionsOf(values), &renderer->instance);
  // The host may round the frame differently. Some hosts need at least one pixel.
  constexpr double kRounding = 2.0;
  const RectD grown{(part.x1 - kRounding) / source_scale.x, (part.y1 - kRounding) / source_scale.y,
                    (part.x2 + kRounding) / source_scale.x, (part.y2 + kRounding) / source_scale.y};
  return common(grown, region);
}

}  // namespace

// If the corners cannot be drawn, the host's default region leads to a render, which shows what is wrong.
Status regionOfDefinition(const Effect& effect, const Properties& in, const Properties& out) {
  const Time time = timeOf(in);
  const Plane plane = planeOf(effect, effect.sourceFrame(time).value_or(RectD{}), in);
  const std::optional<ParameterValues> values = valuesAt(effect, time);
  if (!values || unreachable(plane.at(values->corners))) {
    return Status::ReplyDefault;
  }
  RectD region = boundsOf(values->corners, plane.scale, kMargin);
  if (const auto background = effect.background().regionOfDefinition(time)) {
    region = united(region, *background);
  }
  out.set("OfxImageEffectPropRegionOfDefinition", {region.x1, region.y1, region.x2, region.y2});
  return Status::Ok;
}

// Of the other clips the window itself is needed, which is the host's default.
Status regionsOfInterest(Effect& effect, const Properties& in, const Properties& out) {
  const auto region = effect.sourceFrame(timeOf(in));
  if (!region) {
    return Status::ReplyDefault;
  }
  RectD needed = *region;
  if (const auto asked = in.region("OfxImageEffectPropRegionOfInterest")) {
    try {
      needed = neededOf(effect, in, *asked, *region);
    } catch (const Fault&) {
      needed = *region;
    }
  }
  out.set("OfxImageClipPropRoI_Source", {needed.x1, needed.y1, needed.x2, needed.y2});
  return Status::Ok;
}

Status identity(const Effect& effect, const Properties& in, const Properties& out) {
  const Time time = timeOf(in);
  const std::optional<ParameterValues> values = valuesAt(effect, time);
  if (!values) {
    return Status::ReplyDefault;
  }
  const Clip& background = effect.background();
  if (background.isConnected()) {
    // The output is declared to be premultiplied as the source is.
    if (values->opacity > 0.0 || background.isUnpremultiplied() != effect.source().isUnpremultiplied()) {
      return Status::ReplyDefault;
    }
    out.set(kPropName, kBackgroundClip);
    return Status::Ok;
  }
  const auto frame = effect.source().regionOfDefinition(time);
  if (!frame || values->from || values->opacity < 1.0 || effect.matte().isConnected()) {
    return Status::ReplyDefault;
  }
  const Plane plane = planeOf(effect, *frame, in);
  if (!areOutline(plane.at(values->corners), (frame->x2 - frame->x1) * plane.scale.x,
                  (frame->y2 - frame->y1) * plane.scale.y)) {
    return Status::ReplyDefault;
  }
  out.set(kPropName, kSourceClip);
  return Status::Ok;
}

// The output's alpha is straight if the source's is, and otherwise premultiplied, even for an opaque source.
Status clipPreferences(const Effect& effect, const Properties& out) {
  out.set(kPropPremultiplication, effect.source().isUnpremultiplied() ? kUnpremultiplied : kPremultiplied);
  if (effect.isGeneral()) {
    out.offer("OfxImageClipPropComponents_Output", kComponentsRgba);
  }
  out.offer("OfxImageEffectFrameVarying", 0);
  return Status::Ok;
}

void resetCorners(const Effect& effect, bool from, Time time) {
  const RectD frame = effect.sourceFrame(time).value_or(effect.project(time).frame());
  const Parameters& parameters = effect.parameters();
  parameters.beginEdit(from ? "Reset from corners" : "Reset corners");
  try {
    parameters.setCorner(from, 0, {frame.x1, frame.y2});
    parameters.setCorner(from, 1, {frame.x2, frame.y2});
    parameters.setCorner(from, 2, {frame.x1, frame.y1});
    parameters.setCorner(from, 3, {frame.x2, frame.y1});
  } catch (const Fault&) {
    parameters.endEdit();
    throw;
  }
  parameters.endEdit();
}

}  // namespace vantorel::ofx
