// Clips of an instance, and the images that the host hands out.
#pragma once

#include <cstddef>
#include <optional>

#include "bridges/ofx/Properties.h"

namespace vantorel::ofx {

enum class PixelDepth { Byte, Short, Half, Float };
enum class Components { Rgba, Rgb, Alpha };

// A clip's state as of now. `handle` is null where the context has no such clip.
struct Clip {
  ClipHandle handle = nullptr;
  PropertySet properties = nullptr;

  // Of an instance; a null clip where the host has none of the name.
  static Clip find(EffectHandle effect, const char* name);

  bool isConnected() const;
  bool isUnpremultiplied() const;
  // Canonical, perhaps endless; nothing where the host cannot tell, or where it is empty.
  std::optional<RectD> regionOfDefinition(Time time) const;
};

// A clip's or an image's pixel aspect ratio; 1 where the host gives none that can be computed with.
double pixelAspectOf(const Properties& properties);

// An image, given back to the host at the end of its life.
class ClipImage {
 public:
  // Nothing where the host has no image there. A Fault where it fails otherwise, or describes an image that cannot be
  // read.
  static std::optional<ClipImage> fetch(const Clip& clip, const char* name, Time time);
  ~ClipImage();
  ClipImage(ClipImage&& other) noexcept;
  ClipImage& operator=(ClipImage&&) = delete;

  PixelDepth depth() const { return depth_; }
  Components components() const { return components_; }
  bool isUnpremultiplied() const { return is_unpremultiplied_; }
  bool isField() const { return is_field_; }
  double pixelAspect() const { return pixel_aspect_; }

  // Pixels, y up: those in memory, and those of the full frame; of that, nothing where the host does not tell it, or
  // where it is endless.
  const RectI& bounds() const { return bounds_; }
  const std::optional<RectI>& fullFrame() const { return full_frame_; }

  std::ptrdiff_t rowBytes() const { return row_bytes_; }
  std::size_t pixelBytes() const;
  // Pixel (x, y), which must be in the bounds.
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
