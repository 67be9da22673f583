#include "bridges/ofx/Describe.h"

#include <utility>

#include "bridges/ofx/Effect.h"
#include "bridges/ofx/Interact.h"
#include "bridges/ofx/Names.h"
#include "bridges/ofx/Parameters.h"

namespace vantorel::ofx {
namespace {

void describeTexts(const Properties& effect) {
  effect.set(kPropLabel, "Vantorel");
  effect.offer("OfxPropShortLabel", "Vantorel");
  effect.offer("OfxPropLongLabel", "Vantorel Four-Point Warp");
  effect.offer("OfxImageEffectPluginPropGrouping", "Transform");
  effect.offer("OfxPropPluginDescription",
               "Moves the four corners of a picture to any four points, in true perspective: for screen replacement, "
               "sign and billboard inserts, and planar tracks.");
  effect.offer("OfxPropVersionLabel", VANTOREL_VERSION);
}

// The overlay draws with the draw suite if the host has it, otherwise with OpenGL.
void describeOverlay(const Properties& effect) {
  if (Properties(hostProperties()).integer("OfxImageEffectPropSupportsOverlays").value_or(0) == 0 ||
      suites().interact == nullptr) {
    return;
  }
  auto* const entry = reinterpret_cast<void*>(&interactEntry);
  if (suites().draw == nullptr || !effect.offer("OfxImageEffectPluginPropOverlayInteractV2", entry)) {
    effect.offer("OfxImageEffectPluginPropOverlayInteractV1", entry);
  }
}

Properties defineClip(EffectHandle descriptor, const char* name) {
  PropertySet clip = nullptr;
  check(suites().effect->define_clip(descriptor, name, &clip), name);
  const Properties properties(clip);
  properties.offer(kPropSupportsTiles, 1);
  properties.offer("OfxImageEffectPropTemporalClipAccess", 0);
  return properties;
}

void defineOptionalClip(EffectHandle descriptor, const char* name, bool is_mask) {
  const Properties clip = defineClip(descriptor, name);
  if (is_mask) {
    clip.set("OfxImageEffectPropSupportedComponents", {kComponentsAlpha, kComponentsRgba});
  } else {
    clip.set("OfxImageEffectPropSupportedComponents", {kComponentsRgba, kComponentsRgb});
  }
  clip.set("OfxImageClipPropOptional", 1);
  clip.offer("OfxImageClipPropIsMask", is_mask ? 1 : 0);
}

}  // namespace

void describe(EffectHandle descriptor) {
  const Properties effect = propertiesOf(descriptor);
  describeTexts(effect);
  effect.set("OfxImageEffectPropSupportedContexts", {kContextGeneral, kContextFilter});
  effect.set("OfxImageEffectPropSupportedPixelDepths", {kDepthFloat, kDepthShort, kDepthByte});
  effect.offerAt("OfxImageEffectPropSupportedPixelDepths", 3, kDepthHalf);
  effect.set("OfxImageEffectPluginRenderThreadSafety", "OfxImageEffectRenderFullySafe");
  for (const auto& [name, value] : {std::pair{"OfxImageEffectPluginPropSingleInstance", 0},
                                    {"OfxImageEffectPluginPropHostFrameThreading", 1},
                                    {"OfxImageEffectPropSupportsMultiResolution", 1},
                                    {kPropSupportsTiles, 1},
                                    {"OfxImageEffectPropTemporalClipAccess", 0},
                                    {"OfxImageEffectPluginPropFieldRenderTwiceAlways", 1},
                                    {"OfxImageEffectPropMultipleClipDepths", 0},
                                    {"OfxImageEffectPropSupportsMultipleClipPARs", 0},
                                    {"OfxImageEffectInstancePropSequentialRender", 0}}) {
    effect.offer(name, value);
  }
  describeOverlay(effect);
}

void describeInContext(EffectHandle descriptor, const Properties& in) {
  const std::optional<std::string> context = in.text(kPropContext);
  const bool is_general = context == kContextGeneral;
  if (!is_general && context != kContextFilter) {
    throw Fault{Status::Unsupported, {}};
  }
  const Properties source = defineClip(descriptor, kSourceClip);
  const Properties output = defineClip(descriptor, kOutputClip);
  output.set("OfxImageEffectPropSupportedComponents", {kComponentsRgba});
  if (is_general) {
    source.set("OfxImageEffectPropSupportedComponents", {kComponentsRgba, kComponentsRgb});
  } else {
    // In a filter the output has the source's components, and transparency around the picture takes alpha. The host
    // converts RGB sources.
    source.set("OfxImageEffectPropSupportedComponents", {kComponentsRgba});
  }
  defineOptionalClip(descriptor, kBackgroundClip, false);
  defineOptionalClip(descriptor, kMatteClip, true);
  defineParameters(paramSetOf(descriptor));
}

}  // namespace vantorel::ofx
