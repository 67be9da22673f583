// Which colour space a file is in, and how that is known.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cli/colour/ColourSpace.h"

namespace vantorel::cli {

// What a file says of its colours, before it is understood.
struct ColourFacts {
  std::string format;                    // OpenImageIO's name for it: "png", "openexr"
  bool has_float_samples = false;        // half too
  std::vector<std::byte> icc_profile;    // empty without one
  std::string stated_space;              // OpenImageIO's "oiio:ColorSpace"; empty without one
  std::optional<int> exif_colour_space;  // 1 is sRGB
  std::string exif_interoperability;     // "R03" is Adobe RGB
  std::vector<float> chromaticities;     // x and y of red, green, blue and white, or empty
};

struct FileColour {
  ColourSpace space;
  std::string reason;  // "its ICC profile", as the end of a sentence
};

// By what the file states, else by its name and the rules of the config, else by the usage of its kind: OpenEXR and
// float samples are scene-linear (in the config's role of that name; linear Rec.709 without), the rest sRGB. Throws
// CommandError naming the path for a profile that is broken and for curves that are not known.
FileColour detectColour(const std::string& path, const ColourFacts& facts,
                        const std::shared_ptr<const OcioConfig>& config);

// The space of that name in the config, or else among those that are known anyway. Throws CommandError (bad argument)
// naming `option`.
ColourSpace colourSpaceNamed(const std::string& option, const std::string& name,
                             const std::shared_ptr<const OcioConfig>& config);

}  // namespace vantorel::cli
