// Mixing, averaging and sampling pixels for the bilinear renderer: the same functions for each depth.
//
// Positions (u, v) and steps (du, dv) are 16.16 in input pixels. Of a weight only the high byte of its fraction counts,
// the mix factor f = 0..255; a coordinate serves as the weight for interpolating at it. 8-bit pixels are handled as one
// 32-bit word each, whose four bytes are treated alike.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// a moved towards b by the factor f of w: f = 0 gives a, f = 255 gives b. The integer members divide by 256, rounding
// toward minus infinity; the float member divides by 255.
unsigned int MixPixels(unsigned int a, unsigned int b, int w);
PF_Pixel16 MixPixels16(PF_Pixel16 a, PF_Pixel16 b, int w);
PF_PixelFloat MixPixelsFloat(PF_PixelFloat a, PF_PixelFloat b, int w);

// The average, a channel at a time; the integer members truncate each half before the sum.
int PixAverage(int a, int b);
PF_Pixel16 PixAverage16(PF_Pixel16 a, PF_Pixel16 b);
PF_PixelFloat PixAverageFloat(PF_PixelFloat a, PF_PixelFloat b);

// The sample of an input row at column position u for a step du: the pixel itself at a whole column and at the last
// one, else the linear interpolation with the right neighbour where the step is below 2.0, else the average with the
// pixel half a step on. `p` is the address of column floor(u), which may lie outside the row of `width` pixels: columns
// are clamped to it, and nothing outside it is read.
int GetHSeg(int* p, int u, int du, int width);
PF_Pixel16 GetHSeg16(PF_Pixel16* p, int u, int du, int width);
PF_PixelFloat GetHSegFloat(PF_PixelFloat* p, int u, int du, int width);

// The sample of the input at (u, v) for steps (du, dv): in each direction as GetHSeg. `p` is the address of the pixel
// at row floor(v), column floor(u), which may lie outside the input of `width` by `height` pixels with rows `row_bytes`
// apart.
int GetAPixel(int* p, int row_bytes, int u, int v, int du, int dv, int width, int height);
PF_Pixel16 GetAPixel16(PF_Pixel16* p, int row_bytes, int u, int v, int du, int dv, int width, int height);
PF_PixelFloat GetAPixelFloat(PF_PixelFloat* p, int row_bytes, int u, int v, int du, int dv, int width, int height);
