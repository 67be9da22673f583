// The clips of an instance, and the images that the host delivers for them.
#pragma once

#include <cstddef>
#include <optional>

#include "bridges/ofx/Properties.h"

namespace vantorel::ofx {

enum class PixelDepth { Byte, Short, Half, Float };
enum class Components { Rgba, Rgb, Alpha };

// A clip as it currently is. `handle` is null if the context has no such clip.
struct Clip {
  ClipHandle handle = nullptr;
  PropertySet properties = nullptr;

  // A null clip if the instance has none of that name.
  static Clip find(EffectHandle effect, const char* name);

  bool isConnected() const;
  bool isUnpremultiplied() const;
  // In canonical coordinates, possibly endless. Nothing if the clip is not connected, or the region is empty or
  // unknown.
  std::optional<RectD> regionOfDefinition(Time time) const;
};

// The pixel aspect ratio of a clip or an image; 1 if the host gives none or an unusable one.
double pixelAspectOf(const Properties& properties);

// An image, which is released to the host when this is destroyed.
class ClipImage {
 public:
  // Nothing if the host has no image at that time. A Fault if it fails in another way or its image cannot be read.
  static std::optional<ClipImage> fetch(const Clip& clip, const char* name, Time time);
  ~ClipImage();
  ClipImage(ClipImage&& other) noexcept;
  ClipImage& operator=(ClipImage&&) = delete;

  PixelDepth depth() const { return depth_; }
  Components components() const { return components_; }
  bool isUnpremultiplied() const { return is_unpremultiplied_; }
  bool isField() const { return is_field_; }
  double pixelAspect() const { return pixel_aspect_; }

  // In pixels, y up: the part in memory, and the full frame, which is nothing if it is unknown or endless.
  const RectI& bounds() const { return bounds_; }
  const std::optional<RectI>& fullFrame() const { return full_frame_; }

  std::ptrdiff_t rowBytes() const { return row_bytes_; }
  std::size_t pixelBytes() const;
  // Pixel (x, y), which must lie within the bounds.
  std::byte* pixel(int x, int y) const;

 private:
  explicit ClipImage(PropertySet image) : image_(image) {}
  void describe(const Clip& clip, const char* name);

  PropertySet image_;
  std::byte* data_ = nullptr;
  RectI bounds_;
  std::optional<RectI> full_frame_;
  std::ptrdiff_t row_bytes_ = 0;
  PixelDepth depth_ = PixelDepth::Byte;
  Components components_ = Components::Rgba;
  bool is_unpremultiplied_ = false;
  bool is_field_ = false;
  double pixel_aspect_ = 1.0;
};

}  // namespace vantorel::ofx
