#include "effect/bilinear/PixelHelpers.h"

#include <bit>

#include "effect/bilinear/PixelSampling.h"
#include "effect/bilinear/PixelTraits.h"

namespace {

// Converts a pixel record of four channels to an unpacked pixel, and back.
template <typename Traits, typename Pixel>
typename Traits::Unpacked unpack(const Pixel& pixel) {
  static_assert(sizeof(Pixel) == Traits::kPixelBytes);
  return Traits::load(std::bit_cast<const std::byte*>(&pixel));
}

template <typename Traits, typename Pixel>
Pixel pack(const typename Traits::Unpacked& unpacked) {
  Pixel pixel;
  Traits::store(std::bit_cast<std::byte*>(&pixel), unpacked);
  return pixel;
}

template <typename Traits, typename Pixel>
Pixel mixAs(const Pixel& a, const Pixel& b, int w) {
  return pack<Traits, Pixel>(Traits::mix(unpack<Traits>(a), unpack<Traits>(b), w));
}

template <typename Traits, typename Pixel>
Pixel averageAs(const Pixel& a, const Pixel& b) {
  return pack<Traits, Pixel>(Traits::average(unpack<Traits>(a), unpack<Traits>(b)));
}

template <typename Traits, typename Pixel>
Pixel horizontalSample(const Pixel* p, int u, int du, int width) {
  const std::byte* const row = moveAddress(p, -(fixedFloor(u) * Traits::kPixelBytes));
  return pack<Traits, Pixel>(sampleRow<Traits>(row, u, filterForStep(du), width));
}

template <typename Traits, typename Pixel>
Pixel areaSample(const Pixel* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  const std::ptrdiff_t offset = std::ptrdiff_t{fixedFloor(v)} * row_bytes + fixedFloor(u) * Traits::kPixelBytes;
  const InputView input{moveAddress(p, -offset), row_bytes, width, height};
  return pack<Traits, Pixel>(sampleInput<Traits>(input, u, v, filterForStep(du), filterForStep(dv)));
}

}  // namespace

unsigned int MixPixels(unsigned int a, unsigned int b, int w) {
  return mixAs<PixelTraits8>(a, b, w);
}

PF_Pixel16 MixPixels16(PF_Pixel16 a, PF_Pixel16 b, int w) {
  return mixAs<PixelTraits16>(a, b, w);
}

PF_PixelFloat MixPixelsFloat(PF_PixelFloat a, PF_PixelFloat b, int w) {
  return mixAs<PixelTraitsFloat>(a, b, w);
}

int PixAverage(int a, int b) {
  return averageAs<PixelTraits8>(a, b);
}

PF_Pixel16 PixAverage16(PF_Pixel16 a, PF_Pixel16 b) {
  return averageAs<PixelTraits16>(a, b);
}

PF_PixelFloat PixAverageFloat(PF_PixelFloat a, PF_PixelFloat b) {
  return averageAs<PixelTraitsFloat>(a, b);
}

int GetHSeg(int* p, int u, int du, int width) {
  return horizontalSample<PixelTraits8>(p, u, du, width);
}

PF_Pixel16 GetHSeg16(PF_Pixel16* p, int u, int du, int width) {
  return horizontalSample<PixelTraits16>(p, u, du, width);
}

PF_PixelFloat GetHSegFloat(PF_PixelFloat* p, int u, int du, int width) {
  return horizontalSample<PixelTraitsFloat>(p, u, du, width);
}

int GetAPixel(int* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return areaSample<PixelTraits8>(p, row_bytes, u, v, du, dv, width, height);
}

PF_Pixel16 GetAPixel16(PF_Pixel16* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return areaSample<PixelTraits16>(p, row_bytes, u, v, du, dv, width, height);
}

PF_PixelFloat GetAPixelFloat(PF_PixelFloat* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return areaSample<PixelTraitsFloat>(p, row_bytes, u, v, du, dv, width, height);
}
