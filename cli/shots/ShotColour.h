// The colour spaces of a shot: those of its inputs, that in which it is filtered and composited, and the output's.
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
  // By the heads of the first frame's files and what the output is: its format and the samples written. Without a
  // format the output is for a screen, in sRGB. Throws CommandError.
  ShotColour(const Shot& shot, const FrameHeads& heads);

  // Whether any picture is converted.
  bool converts() const;
  // Whether finished frames are.
  bool convertsOutput() const { return !isSame(working_->space(), output_->space()); }

  // Converts an input to the space of the shot, in place, and tags it for the output. `path` is its file.
  void enter(Picture& picture, ColourRole role, const std::string& path);

  // Converts a finished frame to the output's space, in place.
  void leave(const host::ImageView& pixels, const std::string& path);

  // All that the spaces depend on, for the record of how a picture was made.
  std::string record() const;

 private:
  ColourSpace spaceOf(ColourRole role, const std::string& path, const PictureInfo& info) const;
  ColourSpace outputSpace(const ColourSpace& reference, bool is_float, const Shot& shot) const;

  std::shared_ptr<const OcioConfig> config_;  // null without one
  std::optional<ColourSpace> given_layer_;
  std::optional<ColourSpace> given_plate_;
  ColourSpace layer_;
  std::optional<ColourSpace> plate_;
  std::optional<ConversionTo> working_;
  std::optional<ConversionTo> output_;
  const ImageFormat* format_;  // null without one
};

// The config that --ocio or else $OCIO names; null where neither does. Throws CommandError (file failure).
std::shared_ptr<const OcioConfig> colourConfig(const ColourOptions& options);

}  // namespace vantorel::cli
