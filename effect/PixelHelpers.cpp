#include "effect/PixelHelpers.h"

#include <bit>

#include "effect/PixelFamily.h"
#include "effect/PixelSampling.h"

namespace {

// `p` moved by a number of bytes. It may start outside the input, so the sum is done on the address.
const std::byte* MoveAddress(const void* p, std::ptrdiff_t bytes) {
  return std::bit_cast<const std::byte*>(std::bit_cast<std::uintptr_t>(p) + static_cast<std::uintptr_t>(bytes));
}

template <typename Family>
typename Family::Pixel HorizontalSample(const void* p, int u, int du, int width) {
  constexpr auto kPixelBytes = static_cast<std::ptrdiff_t>(sizeof(typename Family::Pixel));
  const std::byte* const row = MoveAddress(p, -std::ptrdiff_t{FixedFloor(u)} * kPixelBytes);
  return SampleRow<Family>(row, SelectAlongAxis(u, du, width), u);
}

template <typename Family>
typename Family::Pixel AreaSample(const void* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  constexpr auto kPixelBytes = static_cast<std::ptrdiff_t>(sizeof(typename Family::Pixel));
  const std::ptrdiff_t offset = std::ptrdiff_t{FixedFloor(v)} * row_bytes + std::ptrdiff_t{FixedFloor(u)} * kPixelBytes;
  return SampleInput<Family>({MoveAddress(p, -offset), row_bytes, width, height}, u, v, du, dv);
}

}  // namespace

unsigned int MixPixels(unsigned int a, unsigned int b, int w) {
  return PixelFamily8::Mix(a, b, w);
}

PF_Pixel16 MixPixels16(PF_Pixel16 a, PF_Pixel16 b, int w) {
  return PixelFamily16::Mix(a, b, w);
}

PF_PixelFloat MixPixelsFloat(PF_PixelFloat a, PF_PixelFloat b, int w) {
  return PixelFamilyFloat::Mix(a, b, w);
}

int PixAverage(int a, int b) {
  return static_cast<int>(PixelFamily8::Average(static_cast<unsigned int>(a), static_cast<unsigned int>(b)));
}

PF_Pixel16 PixAverage16(PF_Pixel16 a, PF_Pixel16 b) {
  return PixelFamily16::Average(a, b);
}

PF_PixelFloat PixAverageFloat(PF_PixelFloat a, PF_PixelFloat b) {
  return PixelFamilyFloat::Average(a, b);
}

int GetHSeg(int* p, int u, int du, int width) {
  return static_cast<int>(HorizontalSample<PixelFamily8>(p, u, du, width));
}

PF_Pixel16 GetHSeg16(PF_Pixel16* p, int u, int du, int width) {
  return HorizontalSample<PixelFamily16>(p, u, du, width);
}

PF_PixelFloat GetHSegFloat(PF_PixelFloat* p, int u, int du, int width) {
  return HorizontalSample<PixelFamilyFloat>(p, u, du, width);
}

int GetAPixel(int* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return static_cast<int>(AreaSample<PixelFamily8>(p, row_bytes, u, v, du, dv, width, height));
}

PF_Pixel16 GetAPixel16(PF_Pixel16* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return AreaSample<PixelFamily16>(p, row_bytes, u, v, du, dv, width, height);
}

PF_PixelFloat GetAPixelFloat(PF_PixelFloat* p, int row_bytes, int u, int v, int du, int dv, int width, int height) {
  return AreaSample<PixelFamilyFloat>(p, row_bytes, u, v, du, dv, width, height);
}
