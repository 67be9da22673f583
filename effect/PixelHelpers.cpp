#include "effect/PixelHelpers.h"

#include <bit>

#include "effect/PixelFamily.h"
#include "effect/PixelSampling.h"

namespace {

// A record of four channels as a family's wide pixel, and back.
template <typename Family, typename Pixel>
typename Family::Wide ToWide(const Pixel& pixel) {
  static_assert(sizeof(Pixel) == Family::kPixelBytes);
  return Family::Load(std::bit_cast<const std::byte*>(&pixel));
}

template <typename Family, typename Pixel>
Pixel FromWide(const typename Family::Wide& wide) {
  Pixel pixel;
  Family::Store(std::bit_cast<std::byte*>(&pixel), wide);
  return pixel;
}

template <typename Family, typename Pixel>
Pixel MixAs(const Pixel& a, const Pixel& b, int w) {
  return FromWide<Family, Pixel>(Family::Mix(ToWide<Family>(a), ToWide<Family>(b), w));
}

template <typename Family, typename Pixel>
Pixel AverageAs(const Pixel& a, const Pixel& b) {
  return FromWide<Family, Pixel>(Family::Average(ToWide<Family>(a), ToWide<Family>(b)));
}

template <typename Family, typename Pixel>
Pixel HorizontalSample(const Pixel* p, int u, int du, int width) {
  const std::byte* const row = MoveAddress(p, -(FixedFloor(u) * Family::kPixelBytes));
  return FromWide<Family, Pixel>(SampleRow<Family>(row, u, FilterForStep(du), width));
}

template <typename Family, typename Pixel>
Pixel AreaSample(const Pixel* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  const std::ptrdiff_t offset = std::ptrdiff_t{FixedFloor(v)} * row_bytes + FixedFloor(u) * Family::kPixelBytes;
  const InputView input{MoveAddress(p, -offset), row_bytes, width, height};
  return FromWide<Family, Pixel>(SampleInput<Family>(input, u, v, FilterForStep(du), FilterForStep(dv)));
}

}  // namespace

unsigned int MixPixels(unsigned int a, unsigned int b, int w) {
  return MixAs<PixelFamily8>(a, b, w);
}

PF_Pixel16 MixPixels16(PF_Pixel16 a, PF_Pixel16 b, int w) {
  return MixAs<PixelFamily16>(a, b, w);
}

PF_PixelFloat MixPixelsFloat(PF_PixelFloat a, PF_PixelFloat b, int w) {
  return MixAs<PixelFamilyFloat>(a, b, w);
}

int PixAverage(int a, int b) {
  return AverageAs<PixelFamily8>(a, b);
}

PF_Pixel16 PixAverage16(PF_Pixel16 a, PF_Pixel16 b) {
  return AverageAs<PixelFamily16>(a, b);
}

PF_PixelFloat PixAverageFloat(PF_PixelFloat a, PF_PixelFloat b) {
  return AverageAs<PixelFamilyFloat>(a, b);
}

int GetHSeg(int* p, int u, int du, int width) {
  return HorizontalSample<PixelFamily8>(p, u, du, width);
}

PF_Pixel16 GetHSeg16(PF_Pixel16* p, int u, int du, int width) {
  return HorizontalSample<PixelFamily16>(p, u, du, width);
}

PF_PixelFloat GetHSegFloat(PF_PixelFloat* p, int u, int du, int width) {
  return HorizontalSample<PixelFamilyFloat>(p, u, du, width);
}

int GetAPixel(int* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return AreaSample<PixelFamily8>(p, row_bytes, u, v, du, dv, width, height);
}

PF_Pixel16 GetAPixel16(PF_Pixel16* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return AreaSample<PixelFamily16>(p, row_bytes, u, v, du, dv, width, height);
}

PF_PixelFloat GetAPixelFloat(PF_PixelFloat* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return AreaSample<PixelFamilyFloat>(p, row_bytes, u, v, du, dv, width, height);
}
