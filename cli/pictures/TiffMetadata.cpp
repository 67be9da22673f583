#include "cli/pictures/TiffMetadata.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "cli/pictures/PngText.h"

namespace vantorel::cli {

namespace {

struct Close {
  void operator()(TIFF* tiff) const { TIFFClose(tiff); }
};
using TiffFile = std::unique_ptr<TIFF, Close>;

enum class Kind { Text, Byte, Short, Number, Triple };

struct GpsTag {
  std::uint32_t tag;
  const char* name;
  Kind kind;
};

// Those that describe a place, a time and a direction, under OpenImageIO's names for them.
constexpr std::array kGpsTags{
    GpsTag{GPSTAG_LATITUDEREF, "GPS:LatitudeRef", Kind::Text},
    GpsTag{GPSTAG_LATITUDE, "GPS:Latitude", Kind::Triple},
    GpsTag{GPSTAG_LONGITUDEREF, "GPS:LongitudeRef", Kind::Text},
    GpsTag{GPSTAG_LONGITUDE, "GPS:Longitude", Kind::Triple},
    GpsTag{GPSTAG_ALTITUDEREF, "GPS:AltitudeRef", Kind::Byte},
    GpsTag{GPSTAG_ALTITUDE, "GPS:Altitude", Kind::Number},
    GpsTag{GPSTAG_TIMESTAMP, "GPS:TimeStamp", Kind::Triple},
    GpsTag{GPSTAG_SATELLITES, "GPS:Satellites", Kind::Text},
    GpsTag{GPSTAG_STATUS, "GPS:Status", Kind::Text},
    GpsTag{GPSTAG_MEASUREMODE, "GPS:MeasureMode", Kind::Text},
    GpsTag{GPSTAG_DOP, "GPS:DOP", Kind::Number},
    GpsTag{GPSTAG_SPEEDREF, "GPS:SpeedRef", Kind::Text},
    GpsTag{GPSTAG_SPEED, "GPS:Speed", Kind::Number},
    GpsTag{GPSTAG_TRACKREF, "GPS:TrackRef", Kind::Text},
    GpsTag{GPSTAG_TRACK, "GPS:Track", Kind::Number},
    GpsTag{GPSTAG_IMGDIRECTIONREF, "GPS:ImgDirectionRef", Kind::Text},
    GpsTag{GPSTAG_IMGDIRECTION, "GPS:ImgDirection", Kind::Number},
    GpsTag{GPSTAG_MAPDATUM, "GPS:MapDatum", Kind::Text},
    GpsTag{GPSTAG_DATESTAMP, "GPS:DateStamp", Kind::Text},
    GpsTag{GPSTAG_DIFFERENTIAL, "GPS:Differential", Kind::Short},
};

constexpr const char* kFilmSpeed = "Exif:PhotographicSensitivity";

bool isGps(const Attribute& attribute) {
  return std::ranges::any_of(kGpsTags, [&](const GpsTag& tag) { return attribute.name == tag.name; });
}

std::optional<Attribute> readTag(TIFF* tiff, const GpsTag& tag) {
  switch (tag.kind) {
    case Kind::Text: {
      const char* text = nullptr;
      return TIFFGetField(tiff, tag.tag, &text) == 1 && text != nullptr && *text != '\0'
                 ? std::optional(textAttribute(tag.name, text))
                 : std::nullopt;
    }
    case Kind::Byte: {
      std::uint8_t value = 0;
      return TIFFGetField(tiff, tag.tag, &value) == 1 ? std::optional(numberAttribute(tag.name, int{value}))
                                                      : std::nullopt;
    }
    case Kind::Short: {
      std::uint16_t value = 0;
      return TIFFGetField(tiff, tag.tag, &value) == 1 ? std::optional(numberAttribute(tag.name, int{value}))
                                                      : std::nullopt;
    }
    case Kind::Number: {
      double value = 0.0;
      return TIFFGetField(tiff, tag.tag, &value) == 1
                 ? std::optional(numberAttribute(tag.name, static_cast<float>(value)))
                 : std::nullopt;
    }
    case Kind::Triple: {
      const double* values = nullptr;
      if (TIFFGetField(tiff, tag.tag, &values) != 1 || values == nullptr) {
        return std::nullopt;
      }
      Attribute attribute{tag.name, "float[3]", {}, std::vector<std::byte>(3 * sizeof(float))};
      std::array<float, 3> numbers{};
      std::transform(values, values + 3, numbers.begin(), [](double value) { return static_cast<float>(value); });
      std::memcpy(attribute.bytes.data(), numbers.data(), sizeof numbers);
      return attribute;
    }
  }
  return std::nullopt;
}

void writeTag(TIFF* tiff, const GpsTag& tag, const Metadata& metadata) {
  // Whether the value can be stored as the format's unsigned fraction.
  const auto fits = [](double value) { return std::isfinite(value) && value >= 0.0 && value < 4294967295.0; };
  const double number = metadata.number(tag.name).value_or(-1.0);
  switch (tag.kind) {
    case Kind::Text:
      if (const std::string text = metadata.text(tag.name); !text.empty()) {
        TIFFSetField(tiff, tag.tag, text.c_str());
      }
      return;
    case Kind::Byte:
    case Kind::Short:
      if (number >= 0.0 && number <= 255.0) {
        TIFFSetField(tiff, tag.tag, static_cast<int>(number));
      }
      return;
    case Kind::Number:
      if (fits(number)) {
        TIFFSetField(tiff, tag.tag, number);
      }
      return;
    case Kind::Triple:
      if (const std::vector<float> floats = metadata.floats(tag.name);
          floats.size() == 3 && std::ranges::all_of(floats, fits)) {
        const std::array<double, 3> numbers{floats[0], floats[1], floats[2]};
        TIFFSetField(tiff, tag.tag, numbers.data());
      }
  }
}

// Frees what the current directory holds, its codec's state too. libtiff does neither when another directory is
// created, and frees that state only when the compression changes.
void freeDirectory(TIFF* tiff) {
  TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
  TIFFFreeDirectory(tiff);
}

// Writes a GPS directory. Returns its offset in the file; 0 if it could not be written.
std::uint64_t writeGps(TIFF* tiff, const Metadata& metadata) {
  std::uint64_t place = 0;
  freeDirectory(tiff);
  TIFFCreateGPSDirectory(tiff);
  constexpr std::array<std::uint8_t, 4> kVersion{2, 3, 0, 0};
  TIFFSetField(tiff, GPSTAG_VERSIONID, kVersion.data());
  for (const GpsTag& tag : kGpsTags) {
    writeTag(tiff, tag, metadata);
  }
  return TIFFWriteCustomDirectory(tiff, &place) == 1 ? place : 0;
}

// Writes EXIF's directory again, with the film speed in it. Returns its offset.
std::uint64_t writeFilmSpeed(TIFF* tiff, double speed) {
  std::uint64_t place = 0;
  const bool has_exif = TIFFGetField(tiff, TIFFTAG_EXIFIFD, &place) == 1;
  if (!has_exif) {
    freeDirectory(tiff);
  }
  if (has_exif ? TIFFReadEXIFDirectory(tiff, place) != 1 : TIFFCreateEXIFDirectory(tiff) != 0) {
    return 0;
  }
  const auto value = static_cast<std::uint16_t>(speed);
  TIFFSetField(tiff, EXIFTAG_ISOSPEEDRATINGS, 1, &value);
  return TIFFWriteCustomDirectory(tiff, &place) == 1 ? place : 0;
}

}  // namespace

void addTiffMetadata(const std::string& path, int part, Metadata& metadata) {
  const TiffFile tiff(TIFFOpen(path.c_str(), "r"));
  if (!tiff || TIFFSetDirectory(tiff.get(), static_cast<std::uint16_t>(part)) != 1) {
    return;
  }
  std::uint32_t size = 0;
  const char* packet = nullptr;
  if (TIFFGetField(tiff.get(), TIFFTAG_XMLPACKET, &size, &packet) == 1 && size > 0) {
    metadata.set(textAttribute(std::string(kXmpKey), uprightXmp(std::string(packet, size))));
  }
  std::uint64_t exif = 0;
  std::uint64_t gps = 0;
  const bool has_exif = TIFFGetField(tiff.get(), TIFFTAG_EXIFIFD, &exif) == 1;
  const bool has_gps = TIFFGetField(tiff.get(), TIFFTAG_GPSIFD, &gps) == 1;
  if (has_exif && TIFFReadEXIFDirectory(tiff.get(), exif) == 1) {
    std::uint16_t count = 0;
    const std::uint16_t* speeds = nullptr;
    if (TIFFGetField(tiff.get(), EXIFTAG_ISOSPEEDRATINGS, &count, &speeds) == 1 && count > 0) {
      metadata.set(numberAttribute(kFilmSpeed, int{speeds[0]}));
    }
  }
  if (has_gps && TIFFReadGPSDirectory(tiff.get(), gps) == 1) {
    for (const GpsTag& tag : kGpsTags) {
      if (const auto attribute = readTag(tiff.get(), tag)) {
        metadata.set(*attribute);
      }
    }
  }
}

bool writeTiffMetadata(const std::string& path, const Metadata& metadata) {
  const std::string xmp = metadata.text(kXmpKey);
  const double speed = metadata.number(kFilmSpeed).value_or(0.0);
  const bool has_speed = speed >= 1.0 && speed <= 65535.0;
  const bool has_gps = std::ranges::any_of(metadata.attributes(), isGps);
  if (xmp.empty() && !has_speed && !has_gps) {
    return true;
  }
  const TiffFile tiff(TIFFOpen(path.c_str(), "r+"));
  if (!tiff) {
    return false;
  }
  const std::uint64_t exif = has_speed ? writeFilmSpeed(tiff.get(), speed) : 0;
  const std::uint64_t gps = has_gps ? writeGps(tiff.get(), metadata) : 0;
  if ((has_speed && exif == 0) || (has_gps && gps == 0) || TIFFSetDirectory(tiff.get(), 0) != 1) {
    return false;
  }
  if (has_speed) {
    TIFFSetField(tiff.get(), TIFFTAG_EXIFIFD, exif);
  }
  if (has_gps) {
    TIFFSetField(tiff.get(), TIFFTAG_GPSIFD, gps);
  }
  if (!xmp.empty()) {
    TIFFSetField(tiff.get(), TIFFTAG_XMLPACKET, static_cast<std::uint32_t>(xmp.size()), xmp.data());
  }
  return TIFFRewriteDirectory(tiff.get()) == 1;
}

}  // namespace vantorel::cli
