#include "bridges/frei0r/Parameters.h"

#include <cmath>
#include <string_view>

namespace vantorel::frei0r {
namespace {

enum Index { kQuality = 2 * host::kCornerCount, kOpacity, kOpaqueOutside };

#define X_RANGE "; 1/3 and 2/3 are the left and right border, 0 and 1 a picture width beyond them"
#define Y_RANGE "; 1/3 and 2/3 are the upper and lower border, 0 and 1 a picture height beyond them"
constexpr std::array<f0r_param_info_t, kParameterCount> kInfos{{
    {"Upper left X", F0R_PARAM_DOUBLE, "Where the upper left corner goes" X_RANGE},
    {"Upper left Y", F0R_PARAM_DOUBLE, "Where the upper left corner goes" Y_RANGE},
    {"Upper right X", F0R_PARAM_DOUBLE, "Where the upper right corner goes" X_RANGE},
    {"Upper right Y", F0R_PARAM_DOUBLE, "Where the upper right corner goes" Y_RANGE},
    {"Lower left X", F0R_PARAM_DOUBLE, "Where the lower left corner goes" X_RANGE},
    {"Lower left Y", F0R_PARAM_DOUBLE, "Where the lower left corner goes" Y_RANGE},
    {"Lower right X", F0R_PARAM_DOUBLE, "Where the lower right corner goes" X_RANGE},
    {"Lower right Y", F0R_PARAM_DOUBLE, "Where the lower right corner goes" Y_RANGE},
    {"Quality", F0R_PARAM_STRING, "standard, high, or best (supersampled, with crisp edges)"},
    {"Opacity", F0R_PARAM_DOUBLE, "0 is invisible, 1 is unchanged"},
    {"Opaque outside", F0R_PARAM_BOOL, "Black around the picture instead of transparent"},
}};
#undef X_RANGE
#undef Y_RANGE

constexpr std::array<std::string_view, 3> kQualityNames{"standard", "high", "best"};

double snapped(double pixels) {
  constexpr double kReach = 1.0 / 64.0;
  const double whole = std::round(pixels);
  return std::abs(pixels - whole) <= kReach ? whole : pixels;
}

void setQuality(Parameters* parameters, std::string_view name) {
  for (std::size_t i = 0; i < kQualityNames.size(); ++i) {
    if (name == kQualityNames[i]) {
      parameters->quality = static_cast<host::Quality>(i);
    }
  }
}

}  // namespace

host::Corners Parameters::cornersIn(host::Size picture) const {
  const auto corner = [&](std::size_t i) {
    return host::Point{snapped((3.0 * coordinates[2 * i] - 1.0) * picture.width),
                       snapped((3.0 * coordinates[2 * i + 1] - 1.0) * picture.height)};
  };
  return {corner(0), corner(1), corner(2), corner(3)};
}

f0r_param_info_t parameterInfo(int index) {
  return kInfos[static_cast<std::size_t>(index)];
}

void setParameter(Parameters* parameters, int index, const void* value) {
  if (value == nullptr || index < 0) {
    return;
  }
  switch (index) {
    case kQuality:
      if (const char* const name = *static_cast<const char* const*>(value)) {
        setQuality(parameters, name);
      }
      return;
    case kOpacity:
      parameters->opacity = *static_cast<const f0r_param_double*>(value);
      return;
    case kOpaqueOutside:
      parameters->is_opaque_outside = *static_cast<const f0r_param_bool*>(value) >= 0.5;
      return;
    default:
      if (index < kQuality) {
        parameters->coordinates[static_cast<std::size_t>(index)] = *static_cast<const f0r_param_double*>(value);
      }
  }
}

void getParameter(const Parameters& parameters, int index, void* value) {
  if (value == nullptr || index < 0) {
    return;
  }
  switch (index) {
    case kQuality:
      // The interface's type is not const, but hosts do not change the text.
      *static_cast<char**>(value) =
          const_cast<char*>(kQualityNames[static_cast<std::size_t>(parameters.quality)].data());
      return;
    case kOpacity:
      *static_cast<f0r_param_double*>(value) = parameters.opacity;
      return;
    case kOpaqueOutside:
      *static_cast<f0r_param_bool*>(value) = parameters.is_opaque_outside ? 1.0 : 0.0;
      return;
    default:
      if (index < kQuality) {
        *static_cast<f0r_param_double*>(value) = parameters.coordinates[static_cast<std::size_t>(index)];
      }
  }
}

}  // namespace vantorel::frei0r
