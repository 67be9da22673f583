#include "bridges/ofx/ClipImage.h"

#include <array>
#include <cstdint>
#include <cstdlib>
#include <utility>

#include "bridges/ofx/Geometry.h"
#include "bridges/ofx/Names.h"

namespace vantorel::ofx {
namespace {

[[noreturn]] void refuse(const char* clip, const std::string& fault) {
  throw Fault{Status::ImageFormat, std::string(clip) + ": " + fault};
}

template <typename Kind, std::size_t kCount>
Kind kindOf(const std::string& text, const std::array<std::pair<const char*, Kind>, kCount>& kinds, const char* clip) {
  for (const auto& [name, kind] : kinds) {
    if (text == name) {
      return kind;
    }
  }
  refuse(clip, "images with " + text + " are not supported; convert them to RGBA with 8, 16 or 32 bits per channel");
}

constexpr std::array<std::pair<const char*, PixelDepth>, 4> kDepths{{{kDepthByte, PixelDepth::Byte},
                                                                     {kDepthShort, PixelDepth::Short},
                                                                     {kDepthHalf, PixelDepth::Half},
                                                                     {kDepthFloat, PixelDepth::Float}}};
constexpr std::array<std::pair<const char*, Components>, 3> kComponents{
    {{kComponentsRgba, Components::Rgba}, {kComponentsRgb, Components::Rgb}, {kComponentsAlpha, Components::Alpha}}};

constexpr std::size_t channelBytes(PixelDepth depth) {
  return depth == PixelDepth::Byte ? 1 : depth == PixelDepth::Float ? 4 : 2;
}

}  // namespace

Clip Clip::find(EffectHandle effect, const char* name) {
  Clip clip;
  if (suites().effect->clip(effect, name, &clip.handle, &clip.properties) != Status::Ok || clip.handle == nullptr) {
    return {};
  }
  return clip;
}

bool Clip::isConnected() const {
  return handle != nullptr && Properties(properties).integer("OfxImageClipPropConnected").value_or(1) != 0;
}

bool Clip::isUnpremultiplied() const {
  return Properties(properties).text(kPropPremultiplication) == kUnpremultiplied;
}

std::optional<RectD> Clip::regionOfDefinition(Time time) const {
  RectD region;
  if (!isConnected() || suites().effect->clip_region_of_definition(handle, time, &region) != Status::Ok ||
      !(region.x1 < region.x2 && region.y1 < region.y2)) {
    return std::nullopt;
  }
  return region;
}

double pixelAspectOf(const Properties& properties) {
  const double aspect = properties.number(kPropPixelAspect).value_or(1.0);
  return isScale(aspect) ? aspect : 1.0;
}

std::optional<ClipImage> ClipImage::fetch(const Clip& clip, const char* name, Time time) {
  if (!clip.isConnected()) {
    return std::nullopt;
  }
  PropertySet set = nullptr;
  const Status status = suites().effect->clip_image(clip.handle, time, nullptr, &set);
  if (status == Status::Failed || (status == Status::Ok && set == nullptr)) {
    return std::nullopt;
  }
  if (status != Status::Ok) {
    throw Fault{status, std::string(name) + ": the host does not deliver its image (status " +
                            std::to_string(static_cast<int>(status)) + ")"};
  }
  ClipImage image(set);
  image.describe(clip, name);
  return image;
}

ClipImage::ClipImage(ClipImage&& other) noexcept
    : image_(std::exchange(other.image_, nullptr)),
      data_(other.data_),
      bounds_(other.bounds_),
      full_frame_(other.full_frame_),
      row_bytes_(other.row_bytes_),
      depth_(other.depth_),
      components_(other.components_),
      is_unpremultiplied_(other.is_unpremultiplied_),
      is_field_(other.is_field_),
      pixel_aspect_(other.pixel_aspect_) {}

ClipImage::~ClipImage() {
  if (image_ != nullptr) {
    suites().effect->release_image(image_);
  }
}

void ClipImage::describe(const Clip& clip, const char* name) {
  const Properties properties(image_);
  depth_ = kindOf(required(properties.text(kPropPixelDepth), kPropPixelDepth), kDepths, name);
  components_ = kindOf(required(properties.text(kPropComponents), kPropComponents), kComponents, name);
  bounds_ = required(properties.rectangle("OfxImagePropBounds"), "OfxImagePropBounds");
  full_frame_ = properties.rectangle("OfxImagePropRegionOfDefinition");
  if (full_frame_ && (full_frame_->empty() || !isBounded(*full_frame_))) {
    full_frame_.reset();
  }
  row_bytes_ = required(properties.integer("OfxImagePropRowBytes"), "OfxImagePropRowBytes");
  data_ = static_cast<std::byte*>(properties.pointer("OfxImagePropData"));
  if (data_ == nullptr || bounds_.empty()) {
    refuse(name, "the host's image has no pixels");
  }
  if (!isBounded(bounds_)) {
    refuse(name, "the host's image extends too far to be drawn; use a smaller one");
  }
  const auto channel_bytes = static_cast<std::ptrdiff_t>(channelBytes(depth_));
  if (row_bytes_ % channel_bytes != 0 || reinterpret_cast<std::intptr_t>(data_) % channel_bytes != 0) {
    refuse(name, "the host's image is not aligned to the size of its channels");
  }
  if (static_cast<std::size_t>(std::llabs(row_bytes_)) < static_cast<std::size_t>(bounds_.width()) * pixelBytes() &&
      bounds_.height() > 1) {
    refuse(name, "the host's image has rows of " + std::to_string(row_bytes_) + " bytes, too short for its pixels");
  }
  const std::optional<std::string> state = properties.text(kPropPremultiplication);
  is_unpremultiplied_ = state ? *state == kUnpremultiplied : clip.isUnpremultiplied();
  const std::optional<std::string> field = properties.text("OfxImagePropField");
  is_field_ = field == "OfxFieldLower" || field == "OfxFieldUpper";
  pixel_aspect_ = pixelAspectOf(properties);
}

std::size_t ClipImage::pixelBytes() const {
  const std::size_t channels = components_ == Components::Rgba ? 4 : components_ == Components::Rgb ? 3 : 1;
  return channels * channelBytes(depth_);
}

std::byte* ClipImage::pixel(int x, int y) const {
  return data_ + row_bytes_ * (y - bounds_.y1) +
         static_cast<std::ptrdiff_t>(pixelBytes()) * (static_cast<std::ptrdiff_t>(x) - bounds_.x1);
}

}  // namespace vantorel::ofx
