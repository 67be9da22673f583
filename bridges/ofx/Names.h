// The interface's strings that several files use, and the plug-in's own names for clips and parameters.
#pragma once

#include <array>

namespace vantorel::ofx {

inline constexpr const char* kSourceClip = "Source";
inline constexpr const char* kBackgroundClip = "Background";
inline constexpr const char* kMatteClip = "Matte";
inline constexpr const char* kOutputClip = "Output";

// Saved projects contain these names, so they must never change.
inline constexpr std::array kCornerParams{"upperLeft", "upperRight", "lowerLeft", "lowerRight"};
inline constexpr std::array kFromParams{"fromUpperLeft", "fromUpperRight", "fromLowerLeft", "fromLowerRight"};
inline constexpr const char* kUseFromParam = "useFrom";
inline constexpr const char* kFromGroup = "from";
inline constexpr const char* kQualityParam = "quality";
inline constexpr const char* kEdgesParam = "edges";
inline constexpr const char* kSamplesParam = "samples";
inline constexpr const char* kOpacityParam = "opacity";
inline constexpr const char* kResetParam = "reset";
inline constexpr const char* kResetFromParam = "resetFrom";
inline constexpr const char* kPage = "page";

inline constexpr const char* kContextFilter = "OfxImageEffectContextFilter";
inline constexpr const char* kContextGeneral = "OfxImageEffectContextGeneral";

inline constexpr const char* kDepthByte = "OfxBitDepthByte";
inline constexpr const char* kDepthShort = "OfxBitDepthShort";
inline constexpr const char* kDepthHalf = "OfxBitDepthHalf";
inline constexpr const char* kDepthFloat = "OfxBitDepthFloat";
inline constexpr const char* kComponentsRgba = "OfxImageComponentRGBA";
inline constexpr const char* kComponentsRgb = "OfxImageComponentRGB";
inline constexpr const char* kComponentsAlpha = "OfxImageComponentAlpha";
inline constexpr const char* kPremultiplied = "OfxImageAlphaPremultiplied";
inline constexpr const char* kUnpremultiplied = "OfxImageAlphaUnPremultiplied";

inline constexpr const char* kPropName = "OfxPropName";
inline constexpr const char* kPropTime = "OfxPropTime";
inline constexpr const char* kPropLabel = "OfxPropLabel";
inline constexpr const char* kPropInstanceData = "OfxPropInstanceData";
inline constexpr const char* kPropContext = "OfxImageEffectPropContext";
inline constexpr const char* kPropRenderScale = "OfxImageEffectPropRenderScale";
inline constexpr const char* kPropRenderWindow = "OfxImageEffectPropRenderWindow";
inline constexpr const char* kPropComponents = "OfxImageEffectPropComponents";
inline constexpr const char* kPropPixelDepth = "OfxImageEffectPropPixelDepth";
inline constexpr const char* kPropPremultiplication = "OfxImageEffectPropPreMultiplication";
inline constexpr const char* kPropSupportsTiles = "OfxImageEffectPropSupportsTiles";
inline constexpr const char* kPropPixelAspect = "OfxImagePropPixelAspectRatio";

}  // namespace vantorel::ofx
