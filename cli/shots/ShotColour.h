// The colour spaces of a shot: those of its inputs, the working space for filtering and compositing, and that of the
// output.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "cli/colour/ColourDetection.h"
#include "cli/colour/ColourProcessor.h"
#include "cli/pictures/Picture.h"
#include "cli/shots/RenderOptions.h"
#include "cli/shots/ShotMemory.h"

namespace vantorel::cli {

enum class ColourRole { Layer, Plate };

// Safe to use from several threads.
class ShotColour {
 public:
  // Determines the spaces from the headers of the first frame's files and from the output's format and samples. Without
  // a format the output is for a screen, in sRGB. Throws CommandError.
  ShotColour(const Shot& shot, const FrameHeads& heads);

  // Whether any picture is converted.
  bool converts() const;
  // Whether finished frames are converted.
  bool convertsOutput() const { return !isSame(working_->space(), output_->space()); }

  // Converts an input to the working space, in place, and tags it for the output. `path` is its file.
  void enter(Picture& picture, ColourRole role, const std::string& path);

  // Converts a finished frame to the output's space, in place.
  void leave(const host::ImageView& pixels, const std::string& path);

  // Everything that the spaces depend on, for the record of how a picture was made.
  std::string record() const;

 private:
  ColourSpace spaceOf(ColourRole role, const std::string& path, const PictureInfo& info) const;
  ColourSpace outputSpace(const ColourSpace& reference, bool is_float, const Shot& shot) const;

  std::shared_ptr<const OcioConfig> config_;  // null if none
  std::optional<ColourSpace> given_layer_;
  std::optional<ColourSpace> given_plate_;
  ColourSpace layer_;
  std::optional<ColourSpace> plate_;
  std::optional<ConversionTo> working_;
  std::optional<ConversionTo> output_;
  const ImageFormat* format_;  // null if none
};

// The config named by --ocio or else by $OCIO; null if there is none. Throws CommandError (file failure).
std::shared_ptr<const OcioConfig> colourConfig(const ColourOptions& options);

}  // namespace vantorel::cli
