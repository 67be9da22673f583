// Mixing, averaging and sampling pixels for the bilinear renderer: the same functions for each depth.
//
// Positions (u, v) and steps (du, dv) are 16.16 in input pixels. Only the high byte of a weight's fraction is used: the
// mix factor f = 0..255. To interpolate at a coordinate, pass the coordinate itself as the weight. An 8-bit pixel is
// handled as one 32-bit word, whose four bytes are treated alike.
#pragma once

#include <cstdint>

#include "support/PF_HostRecords.h"

// a moved towards b by the mix factor f of w: f = 0 gives a, f = 255 gives b. The integer versions divide by 256,
// rounding toward minus infinity; the float version divides by 255.
unsigned int MixPixels(unsigned int a, unsigned int b, int w);
PF_Pixel16 MixPixels16(PF_Pixel16 a, PF_Pixel16 b, int w);
PF_PixelFloat MixPixelsFloat(PF_PixelFloat a, PF_PixelFloat b, int w);

// The average of each channel; the integer versions truncate each half before adding them.
int PixAverage(int a, int b);
PF_Pixel16 PixAverage16(PF_Pixel16 a, PF_Pixel16 b);
PF_PixelFloat PixAverageFloat(PF_PixelFloat a, PF_PixelFloat b);

// The sample of an input row at column position u for a step du: the pixel itself at a whole column and at the last
// one; else, for steps below 2.0, the linear interpolation with the right neighbour; else the average with the pixel
// half a step further right. `p` is the address of column floor(u), which may lie outside the row of `width` pixels:
// columns are clamped to the row, so nothing outside it is read.
int GetHSeg(int* p, int u, int du, int width);
PF_Pixel16 GetHSeg16(PF_Pixel16* p, int u, int du, int width);
PF_PixelFloat GetHSegFloat(PF_PixelFloat* p, int u, int du, int width);

// The sample of the input at (u, v) for steps (du, dv), with the rules of GetHSeg along each axis. `p` is the address
// of the pixel at row floor(v), column floor(u), which may lie outside the input of `width` by `height` pixels with
// rows `row_bytes` apart.
int GetAPixel(int* p, int row_bytes, int u, int v, int du, int dv, int width, int height);
PF_Pixel16 GetAPixel16(PF_Pixel16* p, int row_bytes, int u, int v, int du, int dv, int width, int height);
PF_PixelFloat GetAPixelFloat(PF_PixelFloat* p, int row_bytes, int u, int v, int du, int dv, int width, int height);
