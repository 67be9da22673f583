#include "cli/shots/ShotColour.h"

#include <fmt/format.h>

#include <cstdlib>

#include "cli/colour/OcioConfig.h"
#include "cli/pictures/ColourTags.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

namespace {

bool isFloat(SampleType samples) {
  return samples == SampleType::Half || samples == SampleType::Float;
}

std::optional<ColourSpace> givenSpace(const char* option, const std::string& name,
                                      const std::shared_ptr<const OcioConfig>& config) {
  return name.empty() ? std::nullopt : std::optional(colourSpaceNamed(option, name, config));
}

}  // namespace

std::shared_ptr<const OcioConfig> colourConfig(const ColourOptions& options) {
  if (!options.config.empty()) {
    return OcioConfig::load(options.config, "--ocio");
  }
  const char* const variable = std::getenv("OCIO");
  return variable != nullptr && *variable != '\0' ? OcioConfig::load(variable, "$OCIO") : nullptr;
}

ShotColour::ShotColour(const Shot& shot, const FrameHeads& heads)
    : config_(colourConfig(shot.options.colour)), format_(shot.format) {
  const ColourOptions& options = shot.options.colour;
  const std::int32_t frame = shot.frames.first;
  given_layer_ = givenSpace("--colorspace-layer", options.layer, config_);
  given_plate_ = givenSpace("--colorspace-over", options.plate, config_);
  layer_ = spaceOf(ColourRole::Layer, shot.layer_files.path(frame), heads.layer);
  if (heads.plate) {
    plate_ = spaceOf(ColourRole::Plate, shot.plate_files->path(frame), *heads.plate);
  }
  const ColourSpace& reference = plate_ ? *plate_ : layer_;
  working_.emplace(shot.options.linear ? linearOf(reference) : reference);
  const auto given_output = givenSpace("--colorspace-out", options.output, config_);
  const bool is_float = isFloat(heads.plate ? heads.plate->samples : heads.layer.samples);
  output_.emplace(given_output && format_ != nullptr ? *given_output : outputSpace(reference, is_float, shot));
  // Fails before the first frame if a conversion is not possible.
  makeProcessor(layer_, working_->space(), shot.layer_files.path(frame));
  makeProcessor(working_->space(), output_->space(), "--colorspace-out");
}

ColourSpace ShotColour::spaceOf(ColourRole role, const std::string& path, const PictureInfo& info) const {
  const std::optional<ColourSpace>& given = role == ColourRole::Layer ? given_layer_ : given_plate_;
  return given ? *given : detectColour(path, *info.colour, config_).space;
}

// Linear values are only written to formats meant for them and to float samples. Elsewhere they would be too coarse in
// the dark parts, and viewers would show them wrongly.
ColourSpace ShotColour::outputSpace(const ColourSpace& reference, bool is_float, const Shot& shot) const {
  if (shot.format == nullptr) {
    return srgb();
  }
  if (shot.format->linear_light) {
    return linearOf(reference);
  }
  return is_float && !isFloat(shot.samples) && isLinear(reference) ? srgb() : reference;
}

bool ShotColour::converts() const {
  const auto is_working = [&](const ColourSpace& space) { return isSame(space, working_->space()); };
  return !is_working(layer_) || (plate_ && !is_working(*plate_)) || convertsOutput();
}

void ShotColour::enter(Picture& picture, ColourRole role, const std::string& path) {
  const ColourSpace space = spaceOf(role, path, picture.info);
  (*working_)(picture.pixels.view(), space, path);
  const bool is_given = (role == ColourRole::Layer ? given_layer_ : given_plate_).has_value();
  if (format_ != nullptr && (is_given || !isSame(space, output_->space()))) {
    picture.metadata = retagged(picture.metadata, output_->space(), *format_);
  }
}

void ShotColour::leave(const host::ImageView& pixels, const std::string& path) {
  (*output_)(pixels, working_->space(), path);
}

std::string ShotColour::record() const {
  return fmt::format("layer {}\nplate {}\nworking {}\noutput {}\nconfig {}", definition(layer_),
                     plate_ ? definition(*plate_) : "", definition(working_->space()), definition(output_->space()),
                     config_ ? config_->identity() : "");
}

}  // namespace vantorel::cli
