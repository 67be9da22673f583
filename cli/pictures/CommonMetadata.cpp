#include "cli/pictures/CommonMetadata.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace vantorel::cli {

namespace {

// Texts: OpenEXR's and DPX's names, and the common ones.
constexpr std::array<std::pair<const char*, const char*>, 5> kTexts{{
    {"cameraMake", "Make"},
    {"cameraModel", "Model"},
    {"lensMake", "Exif:LensMake"},
    {"lensModel", "Exif:LensModel"},
    {"dpx:InputDevice", "Model"},
}};

template <typename Number, std::size_t kCount>
Attribute numbersAttribute(const std::string& name, const char* type, const std::array<Number, kCount>& numbers) {
  const auto* const bytes = reinterpret_cast<const std::byte*>(numbers.data());
  return {name, type, {}, {bytes, bytes + sizeof numbers}};
}

void rename(Metadata& metadata, const char* from, Attribute to) {
  metadata.remove(from);
  if (metadata.find(to.name) == nullptr) {
    metadata.set(std::move(to));
  }
}

void nameResolutionUnit(Metadata& metadata) {
  if (const auto code = metadata.number("ResolutionUnit")) {
    constexpr double kInch = 2.0;
    constexpr double kCentimetre = 3.0;
    metadata.set(textAttribute("ResolutionUnit", *code == kInch ? "in" : *code == kCentimetre ? "cm" : "none"));
  } else if (metadata.text("ResolutionUnit") == "inch") {
    metadata.set(textAttribute("ResolutionUnit", "in"));
  }
}

// A fraction of 1001 where the rate is one of video's.
std::array<std::int32_t, 2> rationalRate(double frames_per_second) {
  constexpr double kRounding = 1e-3;
  const double whole = std::round(frames_per_second);
  if (std::abs(frames_per_second - whole) < kRounding / 10.0) {
    return {static_cast<std::int32_t>(whole), 1};
  }
  if (const double video = std::round(frames_per_second * 1.001);
      std::abs(frames_per_second - video / 1.001) < kRounding) {
    return {static_cast<std::int32_t>(video) * 1000, 1001};
  }
  return {static_cast<std::int32_t>(std::lround(frames_per_second * 1000.0)), 1000};
}

void nameRate(Metadata& metadata) {
  if (const Attribute* const rate = metadata.find("framesPerSecond"); rate != nullptr && rate->type == "rational2i") {
    Attribute common = *rate;
    common.name = "FramesPerSecond";
    metadata.remove("framesPerSecond");
    metadata.set(std::move(common));
  }
  for (const char* const name : {"dpx:FrameRate", "dpx:TemporalFrameRate"}) {
    const double rate = metadata.number(name).value_or(0.0);
    constexpr double kMost = 1e5;
    if (rate > 0.0 && rate < kMost && metadata.find("FramesPerSecond") == nullptr) {
      metadata.set(numbersAttribute("FramesPerSecond", "rational2i", rationalRate(rate)));
    }
  }
}

void namePosition(Metadata& metadata, const char* own, const std::string& axis, const char* positive,
                  const char* negative) {
  const auto stated = metadata.number(own);
  constexpr double kMost = 180.0;
  if (!stated || !(std::abs(*stated) <= kMost)) {
    return;
  }
  const double degrees = std::floor(std::abs(*stated));
  const double minutes = (std::abs(*stated) - degrees) * 60.0;
  const double seconds = (minutes - std::floor(minutes)) * 60.0;
  if (metadata.find("GPS:" + axis) == nullptr) {
    metadata.set(textAttribute("GPS:" + axis + "Ref", *stated < 0.0 ? negative : positive));
    metadata.set(numbersAttribute<float, 3>(
        "GPS:" + axis, "float[3]",
        {static_cast<float>(degrees), static_cast<float>(std::floor(minutes)), static_cast<float>(seconds)}));
  }
  metadata.remove(own);
}

void nameAltitude(Metadata& metadata) {
  const auto metres = metadata.number("altitude");
  if (!metres || !std::isfinite(*metres)) {
    return;
  }
  if (metadata.find("GPS:Altitude") == nullptr) {
    metadata.set(numberAttribute("GPS:AltitudeRef", *metres < 0.0 ? 1 : 0));
    metadata.set(numberAttribute("GPS:Altitude", static_cast<float>(std::abs(*metres))));
  }
  metadata.remove("altitude");
}

// Three floats have the type of a vector in OpenEXR.
void namePositionTypes(Metadata& metadata) {
  for (const char* const name :
       {"GPS:Latitude", "GPS:Longitude", "GPS:TimeStamp", "GPS:DestLatitude", "GPS:DestLongitude"}) {
    if (const Attribute* const found = metadata.find(name); found != nullptr && found->type == "vector") {
      Attribute common = *found;
      common.type = "float[3]";
      metadata.set(std::move(common));
    }
  }
}

}  // namespace

void useCommonNames(Metadata& metadata) {
  nameResolutionUnit(metadata);
  for (const auto& [own, common] : kTexts) {
    if (const std::string text = metadata.text(own); !text.empty()) {
      rename(metadata, own, textAttribute(common, text));
    }
  }
  if (const double speed = metadata.number("isoSpeed").value_or(0.0); speed >= 1.0 && speed <= 65535.0) {
    rename(metadata, "isoSpeed", numberAttribute("Exif:PhotographicSensitivity", static_cast<int>(std::lround(speed))));
  }
  nameRate(metadata);
  namePosition(metadata, "latitude", "Latitude", "N", "S");
  namePosition(metadata, "longitude", "Longitude", "E", "W");
  nameAltitude(metadata);
  namePositionTypes(metadata);
}

std::optional<double> positionDegrees(const Metadata& metadata, const std::string& axis) {
  const std::vector<float> parts = metadata.floats("GPS:" + axis);
  const std::string side = metadata.text("GPS:" + axis + "Ref");
  if (parts.size() != 3 || side.empty()) {
    return std::nullopt;
  }
  const double degrees = parts[0] + parts[1] / 60.0 + parts[2] / 3600.0;
  return side[0] == 'S' || side[0] == 'W' ? -degrees : degrees;
}

std::optional<double> framesPerSecond(const Metadata& metadata) {
  const Attribute* const rate = metadata.find("FramesPerSecond");
  std::array<std::int32_t, 2> terms{};
  if (rate == nullptr || rate->bytes.size() != sizeof terms) {
    return std::nullopt;
  }
  std::memcpy(terms.data(), rate->bytes.data(), sizeof terms);
  return terms[1] != 0 ? std::optional(static_cast<double>(terms[0]) / terms[1]) : std::nullopt;
}

}  // namespace vantorel::cli
