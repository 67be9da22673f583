#include "cli/pictures/OpenExrAttributes.h"

#include <OpenEXR/ImfFloatAttribute.h>
#include <OpenEXR/ImfIntAttribute.h>
#include <OpenEXR/ImfMatrixAttribute.h>
#include <OpenEXR/ImfRationalAttribute.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <OpenEXR/ImfVecAttribute.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <map>
#include <string_view>

namespace vantorel::cli {

namespace {

template <typename T>
T valueOf(const Attribute& attribute) {
  T value{};
  std::memcpy(static_cast<void*>(&value), attribute.bytes.data(), std::min(sizeof value, attribute.bytes.size()));
  return value;
}

template <typename T>
void insertAs(Imf::Header& header, const std::string& name, const Attribute& attribute) {
  header.insert(name, Imf::TypedAttribute<T>(valueOf<T>(attribute)));
}

// OpenEXR's own names for what the other formats have as well.
std::string exrName(const std::string& name) {
  static const std::map<std::string_view, const char*> kNames{
      {"Copyright", "owner"},
      {"DateTime", "capDate"},
      {"ImageDescription", "comments"},
      {"ExposureTime", "expTime"},
      {"FNumber", "aperture"},
      {"Exif:PhotographicSensitivity", "isoSpeed"},
      {"FramesPerSecond", "framesPerSecond"},
      {"smpte:TimeCode", "timeCode"},
      {"smpte:KeyCode", "keyCode"},
      {"Make", "cameraMake"},
      {"Model", "cameraModel"},
  };
  const auto found = kNames.find(name);
  return found == kNames.end() ? name : found->second;
}

Imf::Rational rationalOf(const Attribute& attribute) {
  const auto terms = valueOf<std::array<std::int32_t, 2>>(attribute);
  return {terms[0], std::max(1, terms[1])};
}

void addTimeCode(Imf::Header& header, const Attribute& attribute) {
  const auto words = valueOf<std::array<std::uint32_t, 2>>(attribute);
  Imf::TimeCode code;
  code.setTimeAndFlags(words[0]);
  code.setUserData(words[1]);
  Imf::addTimeCode(header, code);
}

void addKeyCode(Imf::Header& header, const Attribute& attribute) {
  const auto n = valueOf<std::array<std::int32_t, 7>>(attribute);
  Imf::addKeyCode(header, Imf::KeyCode(n[0], n[1], n[2], n[3], n[4], n[5], n[6]));
}

// Pixels to the inch, which is what OpenEXR's density is.
void addDensity(Imf::Header& header, const Metadata& metadata) {
  const auto resolution = metadata.number("XResolution");
  const std::string unit = metadata.text("ResolutionUnit");
  if (resolution && *resolution > 0.0 && (unit == "in" || unit == "inch" || unit == "cm")) {
    constexpr double kCentimetresPerInch = 2.54;
    Imf::addXDensity(header, static_cast<float>(unit == "cm" ? *resolution * kCentimetresPerInch : *resolution));
  }
}

void addAttribute(Imf::Header& header, const std::string& name, const Attribute& attribute) {
  const std::string& type = attribute.type;
  if (attribute.isText()) {
    header.insert(name, Imf::StringAttribute(attribute.text));
  } else if (name == "chromaticities" && type == "float[8]") {
    Imf::addChromaticities(header, valueOf<Imf::Chromaticities>(attribute));
  } else if (type == "timecode") {
    addTimeCode(header, attribute);
  } else if (type == "keycode") {
    addKeyCode(header, attribute);
  } else if (type == "rational") {
    header.insert(name, Imf::RationalAttribute(rationalOf(attribute)));
  } else if (type == "float") {
    insertAs<float>(header, name, attribute);
  } else if (type == "int") {
    insertAs<int>(header, name, attribute);
  } else if (type == "float[2]") {
    insertAs<Imath::V2f>(header, name, attribute);
  } else if (type == "float[3]") {
    insertAs<Imath::V3f>(header, name, attribute);
  } else if (type == "matrix") {
    insertAs<Imath::M44f>(header, name, attribute);
  }
}

// What means the pixels as another file held them, or has a place of its own in the header.
bool belongsToTheFile(const std::string& name) {
  return name.rfind("oiio:", 0) == 0 || name == "ICCProfile" || name == "PixelAspectRatio" || name == "XResolution" ||
         name == "YResolution" || name == "ResolutionUnit";
}

}  // namespace

void addAttributes(Imf::Header& header, const Metadata& metadata) {
  for (const Attribute& attribute : metadata.attributes()) {
    const std::string name = exrName(attribute.name);
    if (!belongsToTheFile(attribute.name) && header.find(name) == header.end()) {
      addAttribute(header, name, attribute);
    }
  }
  if (const auto aspect = metadata.number("PixelAspectRatio"); aspect && *aspect > 0.0 && std::isfinite(*aspect)) {
    header.pixelAspectRatio() = static_cast<float>(*aspect);
  }
  addDensity(header, metadata);
}

Imf::Header without(const Imf::Header& header, std::span<const char* const> names) {
  Imf::Header kept;
  for (auto attribute = header.begin(); attribute != header.end(); ++attribute) {
    const auto is_it = [&](const char* name) { return std::string_view(name) == attribute.name(); };
    if (std::ranges::none_of(names, is_it)) {
      kept.insert(attribute.name(), attribute.attribute());
    }
  }
  kept.zipCompressionLevel() = header.zipCompressionLevel();
  kept.dwaCompressionLevel() = header.dwaCompressionLevel();
  return kept;
}

}  // namespace vantorel::cli
