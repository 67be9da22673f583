// Detects which colour space a file is in, and why.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/colour/ColourSpace.h"

namespace vantorel::cli {

// What a file says about its colours, before interpretation.
struct ColourFacts {
  std::string format;                    // OpenImageIO's name for it: "png", "openexr"
  bool has_float_samples = false;        // including half
  std::vector<std::byte> icc_profile;    // empty if none
  std::string stated_space;              // OpenImageIO's "oiio:ColorSpace"; empty if none
  std::optional<int> exif_colour_space;  // 1 is sRGB
  std::string exif_interoperability;     // "R03" is Adobe RGB
  std::vector<float> chromaticities;     // x and y of red, green, blue and white, or empty
};

struct FileColour {
  ColourSpace space;
  std::string reason;  // "its ICC profile", as the end of a sentence
};

// Uses what the file states, else its name and the config's file rules, else what is usual for its format: OpenEXR and
// float samples are scene-linear (the config's role of that name, or linear Rec.709 without a config), everything else
// is sRGB. Throws CommandError naming the path for a broken profile or an unknown curve.
FileColour detectColour(const std::string& path, const ColourFacts& facts,
                        const std::shared_ptr<const OcioConfig>& config);

// The space of that name in the config, or else among the built-in ones. Throws CommandError (bad argument) naming
// `option`.
ColourSpace colourSpaceNamed(const std::string& option, const std::string& name,
                             const std::shared_ptr<const OcioConfig>& config);

}  // namespace vantorel::cli
