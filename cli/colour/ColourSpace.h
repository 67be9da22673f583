// The meaning of a picture's values.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/colour/ColourMatrix.h"
#include "cli/colour/TransferCurve.h"

namespace vantorel::cli {

class IccProfile;
class OcioConfig;

// RGB primaries and one transfer curve for all three channels.
struct RgbModel {
  Primaries primaries;
  Transfer transfer;
};

// Exactly one of `rgb`, `icc` and `config` defines the space.
struct ColourSpace {
  std::string name;  // for messages; with `config`, the name in it
  std::optional<RgbModel> rgb;
  std::shared_ptr<const IccProfile> icc;  // a profile that an RgbModel cannot describe
  std::shared_ptr<const OcioConfig> config;
};

// Whether the two are equal, so that no conversion is needed.
bool isSame(const ColourSpace& a, const ColourSpace& b);

// Whether values in the space are proportional to light.
bool isLinear(const ColourSpace& space);

// The linear space with the same primaries; for a config's space, the config's scene_linear, and for a profile, linear
// Rec.709.
ColourSpace linearOf(const ColourSpace& space);

// A text that differs for spaces that are not the same, whatever their names; for the record of how a picture was made.
std::string definition(const ColourSpace& space);

// A built-in space by name, ignoring case, blanks and punctuation: "sRGB", "lin_rec709", "ACEScg".
std::optional<ColourSpace> namedSpace(const std::string& name);
// The names for a message, one for each space: "sRGB, linear, ...".
std::string namedSpaces();

ColourSpace srgb();
ColourSpace linearRec709();
ColourSpace aces2065();

// The space of the model, with the name of the built-in space that it equals, or else `name`.
ColourSpace spaceOf(const RgbModel& model, const std::string& name);

}  // namespace vantorel::cli
