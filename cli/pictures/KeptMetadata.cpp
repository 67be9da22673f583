#include "cli/pictures/KeptMetadata.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <string_view>

#include "cli/base/CommandError.h"
#include "cli/pictures/CommonMetadata.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/MetadataBlocks.h"
#include "cli/pictures/PngText.h"

namespace vantorel::cli {

namespace {

bool startsWith(const std::string& name, std::string_view prefix) {
  return strncasecmp(name.c_str(), prefix.data(), prefix.size()) == 0;
}

// What a format, a library or a camera's maker keeps for itself.
constexpr std::array<std::string_view, 14> kOwnPrefixes{
    "oiio:", "tiff:", "png:", "jpeg:", "openexr:",  "gif:",      "heif:",
    "webp:", "bmp:",  "ico:", "raw:",  "thumbnail", "MakerNote", "ICCProfile:"};

// What is true of the pixels as they were stored, or is written anew.
constexpr std::array<std::string_view, 21> kOwnNames{"Orientation",
                                                     "Software",
                                                     "compression",
                                                     "CompressionQuality",
                                                     "planarconfig",
                                                     "rowsperstrip",
                                                     "textureformat",
                                                     "wrapmodes",
                                                     "fovcot",
                                                     "name",
                                                     "view",
                                                     "multiView",
                                                     "Exif:PixelXDimension",
                                                     "Exif:PixelYDimension",
                                                     "Exif:MakerNote",
                                                     "Exif:ImageUniqueID",
                                                     "preview",
                                                     "version",
                                                     "IPTC:ImageOrientation",
                                                     "IPTC:OriginatingProgram",
                                                     "screenWindowCenter"};

// OpenImageIO's own attributes that describe the picture rather than the file.
constexpr std::array<std::string_view, 3> kKeptOfLibrary{"oiio:ColorSpace", "oiio:Gamma", "oiio:BitsPerSample"};

bool isKept(const std::string& name) {
  const auto equals = [&](std::string_view other) { return name.size() == other.size() && startsWith(name, other); };
  if (std::ranges::any_of(kKeptOfLibrary, equals)) {
    return true;
  }
  return std::ranges::none_of(kOwnNames, equals) &&
         std::ranges::none_of(kOwnPrefixes, [&](std::string_view prefix) { return startsWith(name, prefix); });
}

// Profiles are divided among as many segments as they need, and a packet of XMP has one of its own.
std::size_t sizeInSegment(const Attribute& attribute) {
  return attribute.name == "ICCProfile" || attribute.name == kXmpKey ? 0
                                                                     : attribute.text.size() + attribute.bytes.size();
}

}  // namespace

Metadata keptMetadata(const Metadata& all) {
  Metadata kept;
  for (const Attribute& attribute : all.attributes()) {
    // The record of how the file was made does not describe another file.
    if (isKept(attribute.name) && !holdsRecord(attribute.text)) {
      kept.set(attribute);
    }
  }
  useCommonNames(kept);
  return kept;
}

void requireMetadataHeld(const ImageFormat& format, const Metadata& metadata, const std::string& source) {
  if (const std::size_t size = metadata.text(kXmpKey).size(); format.most_metadata > 0 && size > kLongestXmpOfJpeg) {
    throw fileFailure(source, fmt::format("its XMP has {} bytes, and {} holds {}; shorten it, or write another format",
                                          size, format.name, kLongestXmpOfJpeg));
  }
  std::size_t all = 0;
  const Attribute* longest = nullptr;
  for (const Attribute& attribute : metadata.attributes()) {
    all += sizeInSegment(attribute);
    longest = longest == nullptr || sizeInSegment(attribute) > sizeInSegment(*longest) ? &attribute : longest;
  }
  if (format.most_metadata > 0 && all > format.most_metadata) {
    throw fileFailure(source,
                      fmt::format("its attribute '{}' has {} bytes, and {} holds {} of all attributes together; "
                                  "shorten it, or write another format",
                                  longest->name, sizeInSegment(*longest), format.name, format.most_metadata));
  }
}

}  // namespace vantorel::cli
