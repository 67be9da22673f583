// Conversions between what files state about their colours and colour spaces.
#pragma once

#include <memory>

#include "cli/colour/ColourDetection.h"
#include "cli/colour/ColourSpace.h"
#include "cli/pictures/PictureHeader.h"

namespace vantorel::cli {

// What a file says about its colours.
ColourFacts colourFactsOf(const PictureHeader& header, SampleType samples);

// The same attributes for a picture in that space: what they said of colours is replaced altogether, by OpenEXR's
// chromaticities, a profile, or the formats' own words. `metadata` may be null.
std::shared_ptr<const Metadata> retagged(const std::shared_ptr<const Metadata>& metadata, const ColourSpace& space,
                                         const ImageFormat& format);

}  // namespace vantorel::cli
