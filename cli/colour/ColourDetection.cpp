#include "cli/colour/ColourDetection.h"

#include <fmt/format.h>

#include <cmath>

#include "cli/base/CommandError.h"
#include "cli/colour/IccProfile.h"
#include "cli/colour/OcioConfig.h"
#include "cli/colour/PngColour.h"

namespace vantorel::cli {

namespace {

using Found = std::optional<FileColour>;

constexpr const char* kSayWhat = "say what the colours are with --colorspace-layer or --colorspace-over, or give --raw";

std::optional<Primaries> codedPrimaries(int code) {
  switch (code) {
    case 1:
      return srgb().rgb->primaries;
    case 9:
      return namedSpace("Rec.2020")->rgb->primaries;
    case 12:
      return namedSpace("Display P3")->rgb->primaries;
    default:
      return std::nullopt;
  }
}

std::optional<Transfer> codedTransfer(int code) {
  switch (code) {
    case 1:
    case 6:
    case 14:
    case 15:
      return Transfer{TransferKind::Rec709, 1.0};
    case 4:
      return Transfer{TransferKind::Gamma, 2.2};
    case 5:
      return Transfer{TransferKind::Gamma, 2.8};
    case 8:
      return Transfer{TransferKind::Linear, 1.0};
    case 13:
      return Transfer{TransferKind::Srgb, 1.0};
    default:
      return std::nullopt;
  }
}

FileColour byCodingPoints(const std::string& path, const CodingPoints& points) {
  const auto primaries = codedPrimaries(points.primaries);
  const auto transfer = codedTransfer(points.transfer);
  if (!primaries || !transfer) {
    throw fileFailure(path, fmt::format("its cICP chunk states primaries {} and curve {}, which are not known; {}",
                                        points.primaries, points.transfer, kSayWhat));
  }
  return {spaceOf({*primaries, *transfer}, "primaries and curve of its cICP chunk"), "its cICP chunk"};
}

// 1/2.2 is what programs write beside sRGB for readers that only support gamma.
Transfer ofGamma(double exponent) {
  constexpr double kRounding = 0.002;
  if (std::abs(exponent - 1.0 / 2.2) < kRounding) {
    return {TransferKind::Srgb, 1.0};
  }
  return std::abs(exponent - 1.0) < kRounding ? Transfer{TransferKind::Linear, 1.0}
                                              : Transfer{TransferKind::Gamma, 1.0 / exponent};
}

Found byPngChunks(const PngColour& png) {
  if (png.has_srgb) {
    return FileColour{srgb(), "its sRGB chunk"};
  }
  constexpr double kLeastGamma = 0.1;
  constexpr double kMostGamma = 10.0;
  const bool has_gamma = png.gamma && *png.gamma > kLeastGamma && *png.gamma < kMostGamma;
  const bool has_primaries = png.primaries && isUsable(*png.primaries);
  if (!has_gamma && !has_primaries) {
    return std::nullopt;
  }
  const RgbModel model{has_primaries ? *png.primaries : srgb().rgb->primaries,
                       has_gamma ? ofGamma(*png.gamma) : srgb().rgb->transfer};
  const char* const reason = !has_primaries ? "its gAMA chunk"
                             : has_gamma    ? "its gAMA and cHRM chunks"
                                            : "its cHRM chunk";
  return FileColour{spaceOf(model, fmt::format("as {} have it", reason)), reason};
}

Found byProfile(const std::string& path, const ColourFacts& facts) {
  if (facts.icc_profile.empty()) {
    return std::nullopt;
  }
  if (const auto space = spaceOfIccProfile(facts.icc_profile, path)) {
    return FileColour{*space, "its ICC profile"};
  }
  return FileColour{srgb(), "its reader's conversion, since its ICC profile is not for RGB"};
}

Found byExif(const ColourFacts& facts) {
  if (facts.exif_interoperability.starts_with("R03")) {
    return FileColour{*namedSpace("Adobe RGB"), "its EXIF"};
  }
  return facts.exif_colour_space == 1 ? Found(FileColour{srgb(), "its EXIF"}) : std::nullopt;
}

Found byChromaticities(const ColourFacts& facts) {
  const std::vector<float>& c = facts.chromaticities;
  if (c.size() != 8) {
    return std::nullopt;
  }
  const Primaries primaries{{c[0], c[1]}, {c[2], c[3]}, {c[4], c[5]}, {c[6], c[7]}};
  if (!isUsable(primaries)) {
    return std::nullopt;
  }
  return FileColour{spaceOf({primaries, Transfer{}}, "linear, primaries of its chromaticities"), "its chromaticities"};
}

// OpenImageIO states a space for every file, even if it only derives it from the format. Only statements that come from
// the file count.
Found byStatement(const ColourFacts& facts) {
  const auto space = namedSpace(facts.stated_space);
  if (!space || (facts.format != "openexr" && facts.format != "dpx")) {
    return std::nullopt;
  }
  if (facts.format == "openexr" && isLinear(*space)) {
    return std::nullopt;
  }
  return FileColour{*space, facts.format == "dpx" ? "its transfer characteristic" : "its attribute oiio:ColorSpace"};
}

Found byFileStatements(const std::string& path, const ColourFacts& facts) {
  const auto png = facts.format == "png" ? readPngColour(path) : std::nullopt;
  if (png && png->cicp) {
    return byCodingPoints(path, *png->cicp);
  }
  if (Found found = byProfile(path, facts)) {
    return found;
  }
  if (png) {
    if (Found found = byPngChunks(*png)) {
      return found;
    }
  }
  if (Found found = byExif(facts)) {
    return found;
  }
  if (Found found = byStatement(facts)) {
    return found;
  }
  return byChromaticities(facts);
}

FileColour byUsage(const ColourFacts& facts, const std::shared_ptr<const OcioConfig>& config) {
  const bool is_linear = facts.format == "openexr" || facts.has_float_samples;
  if (!is_linear) {
    return {srgb(), "convention, since the file does not say"};
  }
  if (const auto scene_linear = config ? config->sceneLinear(config) : std::nullopt) {
    return {*scene_linear, "the config's role scene_linear, since the file does not say"};
  }
  return {linearRec709(), fmt::format("the convention of {}, since the file does not say",
                                      facts.format == "openexr" ? "OpenEXR" : "float samples")};
}

}  // namespace

FileColour detectColour(const std::string& path, const ColourFacts& facts,
                        const std::shared_ptr<const OcioConfig>& config) {
  if (const Found stated = byFileStatements(path, facts)) {
    return *stated;
  }
  if (const auto name = config ? config->spaceOfFile(path) : std::nullopt) {
    return {{*name, std::nullopt, nullptr, config}, "its name, by the config's file rules"};
  }
  return byUsage(facts, config);
}

ColourSpace colourSpaceNamed(const std::string& option, const std::string& name,
                             const std::shared_ptr<const OcioConfig>& config) {
  if (const auto found = config ? config->find(name) : std::nullopt) {
    return {*found, std::nullopt, nullptr, config};
  }
  if (const auto known = namedSpace(name)) {
    return *known;
  }
  throw badArgument(option, config ? fmt::format("'{}' is neither a colour space of {} nor one of {}; give one of them",
                                                 name, config->path(), namedSpaces())
                                   : fmt::format("'{}' is not a known colour space; give one of {}, or a config that "
                                                 "has it with --ocio",
                                                 name, namedSpaces()));
}

}  // namespace vantorel::cli
