#include "cli/pictures/OpenExrAttributes.h"

#include <OpenEXR/ImfBoxAttribute.h>
#include <OpenEXR/ImfDoubleAttribute.h>
#include <OpenEXR/ImfFloatAttribute.h>
#include <OpenEXR/ImfFloatVectorAttribute.h>
#include <OpenEXR/ImfIntAttribute.h>
#include <OpenEXR/ImfKeyCodeAttribute.h>
#include <OpenEXR/ImfMatrixAttribute.h>
#include <OpenEXR/ImfRationalAttribute.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <OpenEXR/ImfTimeCodeAttribute.h>
#include <OpenEXR/ImfVecAttribute.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <string_view>
#include <vector>

#include "cli/pictures/CommonMetadata.h"
#include "cli/pictures/PngText.h"

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
struct NamePair {
  std::string_view common;
  std::string_view exr;
  bool is_read = true;  // a file's attribute of OpenEXR's name takes the common one
};

constexpr std::array kNames{
    NamePair{"Copyright", "owner"},
    NamePair{"DateTime", "capDate"},
    NamePair{"ImageDescription", "comments"},
    NamePair{"ExposureTime", "expTime"},
    NamePair{"FNumber", "aperture"},
    NamePair{"XResolution", "xDensity"},
    NamePair{"PixelAspectRatio", "pixelAspectRatio"},
    NamePair{"smpte:TimeCode", "timeCode"},
    NamePair{"smpte:KeyCode", "keyCode"},
    NamePair{"Exif:PhotographicSensitivity", "isoSpeed", false},
    NamePair{"FramesPerSecond", "framesPerSecond", false},
    NamePair{"Make", "cameraMake", false},
    NamePair{"Model", "cameraModel", false},
    NamePair{"Exif:LensMake", "lensMake", false},
    NamePair{"Exif:LensModel", "lensModel", false},
    NamePair{kXmpKey, "xmp"},
    NamePair{"openexr:chunkCount", "chunkCount"},
    NamePair{"openexr:dwaCompressionLevel", "dwaCompressionLevel"},
};

std::string exrName(const std::string& name) {
  const auto found = std::ranges::find(kNames, std::string_view(name), &NamePair::common);
  return found == kNames.end() ? name : std::string(found->exr);
}

std::string commonName(const std::string& name) {
  const auto found = std::ranges::find(kNames, std::string_view(name), &NamePair::exr);
  return found == kNames.end() || !found->is_read ? name : std::string(found->common);
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

// A number of any type as a float, where OpenEXR's own attribute is one.
bool addOwnFloat(Imf::Header& header, const std::string& name, const Metadata& metadata, const Attribute& attribute) {
  constexpr std::array<std::string_view, 3> kFloats{"isoSpeed", "expTime", "aperture"};
  const auto number = metadata.number(attribute.name);
  if (!number || std::ranges::find(kFloats, name) == kFloats.end()) {
    return false;
  }
  header.insert(name, Imf::FloatAttribute(static_cast<float>(*number)));
  return true;
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
  } else if (type == "rational" || type == "rational2i") {
    header.insert(name, Imf::RationalAttribute(rationalOf(attribute)));
  } else if (type == "float") {
    insertAs<float>(header, name, attribute);
  } else if (type == "int") {
    insertAs<int>(header, name, attribute);
  } else if (type == "int16" || type == "uint16") {
    header.insert(name, Imf::IntAttribute(type == "int16" ? valueOf<std::int16_t>(attribute)
                                                          : valueOf<std::uint16_t>(attribute)));
  } else if (type == "float[2]" || type == "float2") {
    insertAs<Imath::V2f>(header, name, attribute);
  } else if (type == "float[3]" || type == "vector") {
    insertAs<Imath::V3f>(header, name, attribute);
  } else if (type == "matrix") {
    insertAs<Imath::M44f>(header, name, attribute);
  }
}

// Degrees and metres, beside the parts that EXIF has.
void addPosition(Imf::Header& header, const Metadata& metadata) {
  const auto latitude = positionDegrees(metadata, "Latitude");
  const auto longitude = positionDegrees(metadata, "Longitude");
  if (latitude && longitude) {
    Imf::addLatitude(header, static_cast<float>(*latitude));
    Imf::addLongitude(header, static_cast<float>(*longitude));
  }
  if (const auto altitude = metadata.number("GPS:Altitude")) {
    const bool is_below = metadata.number("GPS:AltitudeRef").value_or(0.0) == 1.0;
    Imf::addAltitude(header, static_cast<float>(is_below ? -*altitude : *altitude));
  }
}

// Whether the attribute describes the pixels as the other file stored them, or has its own place in the header.
bool belongsToTheFile(const std::string& name) {
  return name.rfind("oiio:", 0) == 0 || name == "ICCProfile" || name == "PixelAspectRatio" || name == "XResolution" ||
         name == "YResolution" || name == "ResolutionUnit";
}

// Sets the attribute where OpenEXR has it as that type, which is a plain sequence of numbers.
template <typename T>
bool takeNumbers(const Imf::Attribute& stated, const std::string& name, const char* type, Metadata& metadata) {
  const auto* const typed = dynamic_cast<const Imf::TypedAttribute<T>*>(&stated);
  if (typed != nullptr) {
    const auto* const bytes = reinterpret_cast<const std::byte*>(&typed->value());
    metadata.set({name, type, {}, {bytes, bytes + sizeof(T)}});
  }
  return typed != nullptr;
}

template <typename Number, std::size_t kCount>
void setNumbers(Metadata& metadata, const std::string& name, const std::string& type,
                const std::array<Number, kCount>& numbers) {
  const auto* const bytes = reinterpret_cast<const std::byte*>(numbers.data());
  metadata.set({name, type, {}, {bytes, bytes + sizeof numbers}});
}

// Terms beyond 31 bits are reduced, and left out where they stay beyond.
void takeRational(const Imf::Rational& stated, const std::string& name, Metadata& metadata) {
  std::int64_t numerator = stated.n;
  std::int64_t denominator = stated.d;
  constexpr std::int64_t kMost = std::numeric_limits<std::int32_t>::max();
  if (denominator > kMost) {
    const std::int64_t divisor = std::gcd(numerator, denominator);
    numerator /= divisor;
    denominator /= divisor;
  }
  if (denominator <= kMost) {
    setNumbers<std::int32_t, 2>(metadata, name, "rational2i",
                                {static_cast<std::int32_t>(numerator), static_cast<std::int32_t>(denominator)});
  }
}

void takeFloats(const std::vector<float>& floats, const std::string& name, Metadata& metadata) {
  const auto* const bytes = reinterpret_cast<const std::byte*>(floats.data());
  if (!floats.empty()) {
    metadata.set(
        {name, "float[" + std::to_string(floats.size()) + ']', {}, {bytes, bytes + floats.size() * sizeof(float)}});
  }
}

void takeText(const std::string& text, const std::string& name, Metadata& metadata) {
  if (!text.empty()) {
    metadata.set(textAttribute(name, text));
  }
}

void takeAttribute(const Imf::Attribute& stated, const std::string& name, Metadata& metadata) {
  struct PlainType {
    bool (*take)(const Imf::Attribute&, const std::string&, const char*, Metadata&);
    const char* name;
  };
  static constexpr std::array kPlainTypes{
      PlainType{takeNumbers<int>, "int"},
      PlainType{takeNumbers<float>, "float"},
      PlainType{takeNumbers<double>, "double"},
      PlainType{takeNumbers<Imath::V2i>, "float2i"},
      PlainType{takeNumbers<Imath::V2f>, "float2"},
      PlainType{takeNumbers<Imath::V2d>, "float2d"},
      PlainType{takeNumbers<Imath::V3i>, "vectori"},
      PlainType{takeNumbers<Imath::V3f>, "vector"},
      PlainType{takeNumbers<Imath::V3d>, "vectord"},
      PlainType{takeNumbers<Imath::M33f>, "matrix33"},
      PlainType{takeNumbers<Imath::M33d>, "matrix33d"},
      PlainType{takeNumbers<Imath::M44f>, "matrix"},
      PlainType{takeNumbers<Imath::M44d>, "matrixd"},
      PlainType{takeNumbers<Imath::Box2i>, "float2i[2]"},
      PlainType{takeNumbers<Imath::Box2f>, "float2[2]"},
      PlainType{takeNumbers<Imf::Chromaticities>, "float[8]"},
  };
  if (const auto* const text = dynamic_cast<const Imf::StringAttribute*>(&stated)) {
    takeText(text->value(), name, metadata);
  } else if (const auto* const rational = dynamic_cast<const Imf::RationalAttribute*>(&stated)) {
    takeRational(rational->value(), name, metadata);
  } else if (const auto* const floats = dynamic_cast<const Imf::FloatVectorAttribute*>(&stated)) {
    takeFloats(floats->value(), name, metadata);
  } else if (const auto* const time = dynamic_cast<const Imf::TimeCodeAttribute*>(&stated)) {
    setNumbers<std::uint32_t, 2>(metadata, name, "timecode", {time->value().timeAndFlags(), time->value().userData()});
  } else if (const auto* const key = dynamic_cast<const Imf::KeyCodeAttribute*>(&stated)) {
    const Imf::KeyCode& code = key->value();
    setNumbers<std::int32_t, 7>(metadata, name, "keycode",
                                {code.filmMfcCode(), code.filmType(), code.prefix(), code.count(), code.perfOffset(),
                                 code.perfsPerFrame(), code.perfsPerCount()});
  } else {
    std::ranges::any_of(kPlainTypes,
                        [&](const PlainType& type) { return type.take(stated, name, type.name, metadata); });
  }
}

// What tells how the pixels are kept, and has a place of its own in a picture's header.
bool isOfPixels(std::string_view name) {
  constexpr std::array<std::string_view, 3> kOfPixels{"dataWindow", "displayWindow", "type"};
  return std::ranges::find(kOfPixels, name) != kOfPixels.end();
}

}  // namespace

Metadata attributesOf(const Imf::Header& header) {
  Metadata metadata;
  metadata.set(textAttribute("oiio:ColorSpace", "Linear"));
  for (auto it = header.begin(); it != header.end(); ++it) {
    if (!isOfPixels(it.name())) {
      takeAttribute(it.attribute(), commonName(it.name()), metadata);
    }
  }
  if (const double density = metadata.number("XResolution").value_or(0.0); density != 0.0) {
    const auto aspect = static_cast<float>(metadata.number("PixelAspectRatio").value_or(0.0));
    metadata.set(numberAttribute("YResolution", static_cast<float>(density) * (aspect != 0.0f ? aspect : 1.0f)));
    metadata.set(textAttribute("ResolutionUnit", "in"));
  }
  return metadata;
}

void addAttributes(Imf::Header& header, const Metadata& metadata) {
  for (const Attribute& attribute : metadata.attributes()) {
    const std::string name = exrName(attribute.name);
    if (!belongsToTheFile(attribute.name) && header.find(name) == header.end() &&
        !addOwnFloat(header, name, metadata, attribute)) {
      addAttribute(header, name, attribute);
    }
  }
  if (const auto aspect = metadata.number("PixelAspectRatio"); aspect && *aspect > 0.0 && std::isfinite(*aspect)) {
    header.pixelAspectRatio() = static_cast<float>(*aspect);
  }
  addDensity(header, metadata);
  addPosition(header, metadata);
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
