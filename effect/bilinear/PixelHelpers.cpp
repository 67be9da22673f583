#include "effect/bilinear/PixelHelpers.h"

#include <bit>

#include "effect/bilinear/PixelSampling.h"
#include "effect/bilinear/PixelTraits.h"

namespace {

// A record of four channels as a family's wide pixel, and back.
template <typename Family, typename Pixel>
typename Family::Wide toWide(const Pixel& pixel) {
  static_assert(sizeof(Pixel) == Family::kPixelBytes);
  return Family::load(std::bit_cast<const std::byte*>(&pixel));
}

template <typename Family, typename Pixel>
Pixel fromWide(const typename Family::Wide& wide) {
  Pixel pixel;
  Family::store(std::bit_cast<std::byte*>(&pixel), wide);
  return pixel;
}

template <typename Family, typename Pixel>
Pixel mixAs(const Pixel& a, const Pixel& b, int w) {
  return fromWide<Family, Pixel>(Family::mix(toWide<Family>(a), toWide<Family>(b), w));
}

template <typename Family, typename Pixel>
Pixel averageAs(const Pixel& a, const Pixel& b) {
  return fromWide<Family, Pixel>(Family::average(toWide<Family>(a), toWide<Family>(b)));
}

template <typename Family, typename Pixel>
Pixel horizontalSample(const Pixel* p, int u, int du, int width) {
  const std::byte* const row = moveAddress(p, -(fixedFloor(u) * Family::kPixelBytes));
  return fromWide<Family, Pixel>(sampleRow<Family>(row, u, filterForStep(du), width));
}

template <typename Family, typename Pixel>
Pixel areaSample(const Pixel* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  const std::ptrdiff_t offset = std::ptrdiff_t{fixedFloor(v)} * row_bytes + fixedFloor(u) * Family::kPixelBytes;
  const InputView input{moveAddress(p, -offset), row_bytes, width, height};
  return fromWide<Family, Pixel>(sampleInput<Family>(input, u, v, filterForStep(du), filterForStep(dv)));
}

}  // namespace

unsigned int MixPixels(unsigned int a, unsigned int b, int w) {
  return mixAs<PixelFamily8>(a, b, w);
}

PF_Pixel16 MixPixels16(PF_Pixel16 a, PF_Pixel16 b, int w) {
  return mixAs<PixelFamily16>(a, b, w);
}

PF_PixelFloat MixPixelsFloat(PF_PixelFloat a, PF_PixelFloat b, int w) {
  return mixAs<PixelFamilyFloat>(a, b, w);
}

int PixAverage(int a, int b) {
  return averageAs<PixelFamily8>(a, b);
}

PF_Pixel16 PixAverage16(PF_Pixel16 a, PF_Pixel16 b) {
  return averageAs<PixelFamily16>(a, b);
}

PF_PixelFloat PixAverageFloat(PF_PixelFloat a, PF_PixelFloat b) {
  return averageAs<PixelFamilyFloat>(a, b);
}

int GetHSeg(int* p, int u, int du, int width) {
  return horizontalSample<PixelFamily8>(p, u, du, width);
}

PF_Pixel16 GetHSeg16(PF_Pixel16* p, int u, int du, int width) {
  return horizontalSample<PixelFamily16>(p, u, du, width);
}

PF_PixelFloat GetHSegFloat(PF_PixelFloat* p, int u, int du, int width) {
  return horizontalSample<PixelFamilyFloat>(p, u, du, width);
}

int GetAPixel(int* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return areaSample<PixelFamily8>(p, row_bytes, u, v, du, dv, width, height);
}

PF_Pixel16 GetAPixel16(PF_Pixel16* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return areaSample<PixelFamily16>(p, row_bytes, u, v, du, dv, width, height);
}

PF_PixelFloat GetAPixelFloat(PF_PixelFloat* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return areaSample<PixelFamilyFloat>(p, row_bytes, u, v, du, dv, width, height);
}
