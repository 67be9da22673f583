#include "cli/pictures/ColourTags.h"

#include <fmt/format.h>

#include <array>
#include <cstring>
#include <string_view>

#include "cli/colour/ColourProcessor.h"
#include "cli/colour/IccProfile.h"

namespace vantorel::cli {

namespace {

Attribute floatsAttribute(const char* name, const std::array<float, 8>& values) {
  Attribute attribute{name, fmt::format("float[{}]", values.size()), "", std::vector<std::byte>(sizeof values)};
  std::memcpy(attribute.bytes.data(), values.data(), sizeof values);
  return attribute;
}

void tagOpenExr(Metadata& metadata, const ColourSpace& space) {
  metadata.set(textAttribute("oiio:ColorSpace", isLinear(space) ? "Linear" : space.name));
  if (const auto model = modelOf(space)) {
    const Primaries& p = model->primaries;
    const auto single = [](double value) { return static_cast<float>(value); };
    metadata.set(
        floatsAttribute("chromaticities", {single(p.red.x), single(p.red.y), single(p.green.x), single(p.green.y),
                                           single(p.blue.x), single(p.blue.y), single(p.white.x), single(p.white.y)}));
  }
}

void tagDpx(Metadata& metadata, const ColourSpace& space) {
  for (const auto& [name, stated] : {std::pair{"linear", "Linear"}, {"Cineon", "KodakLog"}, {"Rec.709", "Rec709"}}) {
    if (isSame(space, *namedSpace(name))) {
      metadata.set(textAttribute("oiio:ColorSpace", stated));
    }
  }
}

void tagByProfile(Metadata& metadata, const ColourSpace& space) {
  if (isSame(space, srgb())) {
    metadata.set(textAttribute("oiio:ColorSpace", "sRGB"));
    return;
  }
  const auto model = modelOf(space);
  std::vector<std::byte> profile = iccProfileOf(model ? ColourSpace{space.name, model, nullptr, nullptr} : space);
  if (!profile.empty()) {
    const std::string type = fmt::format("uint8[{}]", profile.size());
    metadata.set({"ICCProfile", type, "", std::move(profile)});
  }
}

}  // namespace

ColourFacts colourFactsOf(const PictureHeader& header, SampleType samples) {
  const Metadata& metadata = header.metadata;
  ColourFacts facts;
  facts.format = header.format;
  facts.has_float_samples = samples == SampleType::Half || samples == SampleType::Float;
  if (const Attribute* const profile = metadata.find("ICCProfile")) {
    facts.icc_profile = profile->bytes;
  }
  facts.stated_space = metadata.text("oiio:ColorSpace");
  if (const auto exif = metadata.number("Exif:ColorSpace")) {
    facts.exif_colour_space = static_cast<int>(*exif);
  }
  facts.exif_interoperability = metadata.text("Exif:InteroperabilityIndex");
  facts.chromaticities = metadata.floats("chromaticities");
  return facts;
}

std::shared_ptr<const Metadata> retagged(const std::shared_ptr<const Metadata>& metadata, const ColourSpace& space,
                                         const ImageFormat& format) {
  auto tagged = metadata ? std::make_shared<Metadata>(*metadata) : std::make_shared<Metadata>();
  for (const char* name : {"oiio:ColorSpace", "oiio:Gamma", "ICCProfile", "chromaticities", "Exif:ColorSpace",
                           "Exif:InteroperabilityIndex", "acesImageContainerFlag"}) {
    tagged->remove(name);
  }
  if (format.linear_light) {
    tagOpenExr(*tagged, space);
  } else if (format.name == std::string_view("DPX")) {
    tagDpx(*tagged, space);
  } else {
    tagByProfile(*tagged, space);
  }
  return tagged;
}

}  // namespace vantorel::cli
