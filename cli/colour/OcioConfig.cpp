#include "cli/colour/OcioConfig.h"

#include <OpenColorIO/OpenColorIO.h>
#include <fmt/format.h>

#include <array>
#include <cmath>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace OCIO = OCIO_NAMESPACE;

struct OcioConfig::Library {
  OCIO::ConstConfigRcPtr config;
};

namespace {

class OcioConversion : public RowConversion {
 public:
  explicit OcioConversion(OCIO::ConstCPUProcessorRcPtr processor) : processor_(std::move(processor)) {}
  void apply(float* row, int width) const override {
    OCIO::PackedImageDesc pixels(row, width, 1, OCIO::CHANNEL_ORDERING_RGBA);
    processor_->apply(pixels);
  }

 private:
  OCIO::ConstCPUProcessorRcPtr processor_;
};

CommandError unusable(const std::string& path, const std::string& given_by, const char* reason) {
  return fileFailure(path, fmt::format("given by {}, cannot be used as an OpenColorIO config ({}); give another, or "
                                       "omit it",
                                       given_by, oneLine(reason)));
}

// Common names of linear Rec.709 in configs.
constexpr const char* kLinearNames[] = {"lin_rec709", "Linear Rec.709 (sRGB)", "Utility - Linear - sRGB",
                                        "lin_srgb",   "Linear sRGB",           "Linear Rec.709"};

}  // namespace

OcioConfig::OcioConfig(std::string path, std::unique_ptr<const Library> library)
    : path_(std::move(path)), library_(std::move(library)) {}
OcioConfig::~OcioConfig() = default;

std::shared_ptr<const OcioConfig> OcioConfig::load(const std::string& path, const std::string& given_by) try {
  // The library would write its advice on configs to standard error.
  OCIO::SetLoggingLevel(OCIO::LOGGING_LEVEL_NONE);
  const OCIO::ConstConfigRcPtr config = OCIO::Config::CreateFromFile(path.c_str());
  config->validate();
  return std::shared_ptr<const OcioConfig>(new OcioConfig(path, std::make_unique<const Library>(Library{config})));
} catch (const OCIO::Exception& error) {
  throw unusable(path, given_by, error.what());
}

std::optional<std::string> OcioConfig::find(const std::string& name) const {
  const OCIO::ConstColorSpaceRcPtr space = library_->config->getColorSpace(name.c_str());
  return space ? std::optional<std::string>(space->getName()) : std::nullopt;
}

std::optional<std::string> OcioConfig::spaceOfFile(const std::string& path) const {
  if (library_->config->filepathOnlyMatchesDefaultRule(path.c_str())) {
    return std::nullopt;
  }
  return find(library_->config->getColorSpaceFromFilepath(path.c_str()));
}

std::optional<ColourSpace> OcioConfig::sceneLinear(const std::shared_ptr<const OcioConfig>& self) const {
  const auto name = find(OCIO::ROLE_SCENE_LINEAR);
  return name ? std::optional(ColourSpace{*name, std::nullopt, nullptr, self}) : std::nullopt;
}

bool OcioConfig::isLinear(const std::string& name) const {
  const OCIO::ConstColorSpaceRcPtr space = library_->config->getColorSpace(name.c_str());
  const auto scene_linear = find(OCIO::ROLE_SCENE_LINEAR);
  if (!space || !scene_linear || name == *scene_linear || std::string(space->getEncoding()) == "scene-linear") {
    return space && scene_linear;
  }
  // A space is linear if twice the value is twice the light.
  constexpr float kGrey = 0.18f;
  std::array<float, 8> pixels{kGrey, kGrey, kGrey, 1.0f, 2 * kGrey, 2 * kGrey, 2 * kGrey, 1.0f};
  conversion(name, *scene_linear)->apply(pixels.data(), 2);
  return std::abs(pixels[4] - 2.0f * pixels[0]) <= 1e-4f * std::abs(pixels[4]);
}

std::string OcioConfig::identity() const {
  return fmt::format("{} {}", path_, library_->config->getCacheID());
}

std::unique_ptr<const RowConversion> OcioConfig::conversion(const std::string& from, const std::string& to) const try {
  return std::make_unique<OcioConversion>(
      library_->config->getProcessor(from.c_str(), to.c_str())->getDefaultCPUProcessor());
} catch (const OCIO::Exception& error) {
  throw fileFailure(path_, fmt::format("cannot convert from '{}' to '{}' ({}); fix the config, or name other spaces",
                                       from, to, oneLine(error.what())));
}

OcioConfig::Hub OcioConfig::hub() const {
  if (const auto aces = find("aces_interchange")) {
    return {*aces, *aces2065().rgb};
  }
  for (const char* name : kLinearNames) {
    if (const auto linear = find(name)) {
      return {*linear, *linearRec709().rgb};
    }
  }
  throw fileFailure(path_,
                    "the config has no role aces_interchange, so its spaces cannot be converted to others; name "
                    "spaces of the config with --colorspace-layer, --colorspace-over and --colorspace-out");
}

}  // namespace vantorel::cli
