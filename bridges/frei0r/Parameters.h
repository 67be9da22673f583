// The parameters of the frei0r filter: their descriptions and values.
#pragma once

#include <frei0r.h>
#include <array>
#include <cstddef>

#include "host/Animation.h"
#include "host/Frame.h"
#include "host/Image.h"

namespace vantorel::frei0r {

// A corner's coordinate v, from 0 to 1, is 3 v - 1 picture sizes from the left or the top: 1/3 is the left or upper
// border, 2/3 the right or lower one. Corners are pairs of numbers because MLT 7 cannot set frei0r's positions.
inline constexpr double kNear = 1.0 / 3.0;
inline constexpr double kFar = 2.0 / 3.0;

// The values of an instance's parameters, as they were given, because the host may read them back. Values out of range
// are handled when a frame is drawn.
struct Parameters {
  // x and y of each corner, in the order of host::kCornerNames.
  std::array<double, 2 * host::kCornerCount> coordinates{kNear, kNear, kFar, kNear, kNear, kFar, kFar, kFar};
  host::Quality quality = host::Quality::High;
  double opacity = 1.0;
  bool is_opaque_outside = false;

  // The corners in pixels of a picture of that size. Coordinates within 1/64 pixel of a whole number are rounded to it,
  // so that 1/3 and 2/3, written with six digits, leave the picture unchanged.
  host::Corners cornersIn(host::Size picture) const;
};

inline constexpr int kParameterCount = 11;

// Describes a parameter to the host. The index is 0 to kParameterCount - 1.
f0r_param_info_t parameterInfo(int index);

// Sets a parameter. `value` points to a value of the type that parameterInfo gives. An unknown quality, a null pointer
// and an unknown index change nothing.
void setParameter(Parameters* parameters, int index, const void* value);

// Writes a parameter's value to `value`. Texts are static.
void getParameter(const Parameters& parameters, int index, void* value);

}  // namespace vantorel::frei0r
