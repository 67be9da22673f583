// What the tests of the host share: modules, pictures and frames.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <memory>
#include <ostream>
#include <string>

#include "host/Instance.h"
#include "host/geometry/CoverageRegion.h"
#include "tests/Pixels.h"

namespace vantorel::host {

inline void PrintTo(const Point& point, std::ostream* out) {
  *out << '(' << point.x << ", " << point.y << ')';
}
inline void PrintTo(const Rect& rect, std::ostream* out) {
  *out << '[' << rect.left << ' ' << rect.top << ' ' << rect.right << ' ' << rect.bottom << ']';
}

inline namespace testing {

constexpr Depth kDepths[] = {Depth::Bits8, Depth::Bits16, Depth::Float};

// Where the effect's module was built.
inline const std::string kEffectPath = VANTOREL_TEST_MODULE;

// The upright rectangle with these sides.
Corners rectangle(double left, double top, double right, double bottom);

// Corners that move steadily between two moments in seconds.
AnimatedCorners moving(const Corners& from, const Corners& to, double begin = 0.0, double end = 1.0);

// The effect as users load it, and in checking mode; each is loaded once.
const std::shared_ptr<const Module>& effect();
const std::shared_ptr<const Module>& checkedEffect();

// A random picture, the same for the same seed; floats from 0 to 1.
Image noise(Size size, Depth depth, unsigned seed = 1);

// Opaque, smooth waves of that length in pixels; a picture shrunk by less than that still shows them.
Image waves(Size size, Depth depth, double wavelength);

// A picture of which every byte is set, for output that must be overwritten.
Image dirty(Size size, Depth depth);

// A view of a part, which lies inside.
ConstImageView partOf(const ConstImageView& view, const Rect& part);

bool samePixels(const ConstImageView& a, const ConstImageView& b);
bool samePixels(const Image& a, const Image& b);

// Sets a channel to a share of white, 0 to 1.
void setChannel(const ImageView& view, int x, int y, int channel, double value);

// Sets a pixel's channels as they are stored.
template <typename Channel>
void setPixel(const ImageView& view, int x, int y, const std::array<Channel, 4>& channels) {
  std::memcpy(view.pixel(x, y), channels.data(), sizeof(channels));
}

// A channel's number as it is stored.
double channelAt(const ConstImageView& view, int x, int y, int channel);
double channelAt(const Image& image, int x, int y, int channel);

// The peak signal-to-noise ratio in dB of two pictures whose channels go from 0 to 255, of any depth; `margin` pixels
// along each edge do not count.
double psnr(const Image& a, const Image& b, int margin = 0);

// The share of a pixel that a region covers.
double coverageOf(const CoverageRegion& region, int x, int y);

struct Frame {
  Image pixels;
  FrameResult result;
};

// Renders into dirty pixels of the canvas's size; a failure fails the test.
Frame renderFrame(Instance& instance, const Image& layer, const Rect& canvas, const FrameOptions& options = {});
// The same by the checked effect, with these corners.
Frame renderFrame(const Corners& corners, const Image& layer, const Rect& canvas, const FrameOptions& options = {});

// An instance of the module, the checked effect by default, with these corners, which must be in range.
Instance instanceWith(const std::shared_ptr<const Module>& module, const Corners& corners);
Instance instanceWith(const Corners& corners);

// Whether the result is an error of that kind about that input, whose message contains `part`.
template <typename T>
::testing::AssertionResult isError(const Result<T>& result, ErrorKind kind, const std::string& input,
                                   const std::string& part = "") {
  if (result) {
    return ::testing::AssertionFailure() << "no error about " << input;
  }
  const Error& error = result.error();
  const bool is_expected = error.kind == kind && error.input == input && error.message.find(part) != std::string::npos;
  return (is_expected ? ::testing::AssertionSuccess() : ::testing::AssertionFailure())
         << errorText(error) << " (kind " << static_cast<int>(error.kind) << ')';
}

}  // namespace testing
}  // namespace vantorel::host
