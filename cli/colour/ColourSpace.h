// What a picture's numbers stand for.
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

// Three numbers of light in primaries, each behind one curve.
struct RgbModel {
  Primaries primaries;
  Transfer transfer;
};

// Exactly one of `rgb`, `icc` and `config` says what the space is.
struct ColourSpace {
  std::string name;  // for people; with `config`, the name there
  std::optional<RgbModel> rgb;
  std::shared_ptr<const IccProfile> icc;  // a profile that is more than an RgbModel
  std::shared_ptr<const OcioConfig> config;
};

// Whether pictures in one are in the other as they are.
bool isSame(const ColourSpace& a, const ColourSpace& b);

// Whether numbers in the space are proportional to light.
bool isLinear(const ColourSpace& space);

// The space of the same primaries whose numbers are light: for a config's, its scene_linear; for a profile's, linear
// Rec.709.
ColourSpace linearOf(const ColourSpace& space);

// Tells spaces apart that are not the same, whatever they are called: for a record of how a picture was made.
std::string definition(const ColourSpace& space);

// A space that is known by name, without regard to case, blanks and punctuation: "sRGB", "lin_rec709", "ACEScg".
std::optional<ColourSpace> namedSpace(const std::string& name);
// The names, one for each space, for a message: "sRGB, linear, ...".
std::string namedSpaces();

ColourSpace srgb();
ColourSpace linearRec709();
ColourSpace aces2065();

// The space of the model, by the name of that which it is in effect, or else by `name`.
ColourSpace spaceOf(const RgbModel& model, const std::string& name);

}  // namespace vantorel::cli
