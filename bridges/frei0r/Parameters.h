// The parameters of the frei0r filter: their names and explanations, and their values.
#pragma once

#include <frei0r.h>
#include <array>
#include <cstddef>

#include "host/Animation.h"
#include "host/Frame.h"
#include "host/Image.h"

namespace vantorel::frei0r {

// A corner's number 0 lies one picture size before the picture, 1/3 on its left or upper border, 2/3 on its right or
// lower border, and 1 one picture size beyond that: 3 v - 1 picture sizes from the left or from the top. Corners are
// numbers rather than positions, which MLT 7 cannot set.
inline constexpr double kNear = 1.0 / 3.0;
inline constexpr double kFar = 2.0 / 3.0;

// What an instance's parameters hold. Values are kept as they were given, for the host may ask for them; what is out of
// range is dealt with where a frame is drawn.
struct Parameters {
  // x and y of each corner, in the order of host::kCornerNames.
  std::array<double, 2 * host::kCornerCount> coordinates{kNear, kNear, kFar, kNear, kNear, kFar, kFar, kFar};
  host::Quality quality = host::Quality::High;
  double opacity = 1.0;
  bool is_opaque_outside = false;

  // The corners in pixels of a picture of that size. A corner within 1/64 pixel of a whole pixel lies on it, so that
  // the six digits with which programs write 1/3 and 2/3 leave the picture as it is.
  host::Corners cornersIn(host::Size picture) const;
};

inline constexpr int kParameterCount = 11;

// What the host learns of a parameter; its index is 0 to kParameterCount - 1.
f0r_param_info_t parameterInfo(int index);

// Takes the value that `value` points to, of the type that parameterInfo names. An unknown quality, a null pointer and
// an unknown index change nothing.
void setParameter(Parameters* parameters, int index, const void* value);

// Writes the value to where `value` points to; a text stays valid for ever.
void getParameter(const Parameters& parameters, int index, void* value);

}  // namespace vantorel::frei0r
