#include "cli/pictures/ImageFormats.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>

#include "cli/base/CommandError.h"
#include "cli/base/StandardStreams.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

// A format to write is added here.
constexpr std::array kFormats{
    ImageFormat{.name = "PNG",
                .writer = "png",
                .extensions = ".png",
                .holds_alpha = true,
                .unassociated_alpha = true,
                .longest_side = 1000000,
                .holds8 = true,
                .holds16 = true},
    ImageFormat{.name = "JPEG",
                .writer = "jpeg",
                .extensions = ".jpg .jpeg",
                .longest_side = 65500,
                .most_metadata = 60000,
                .holds8 = true},
    ImageFormat{.name = "TIFF",
                .writer = "tiff",
                .extensions = ".tif .tiff",
                .compressions = "none lzw zip packbits",
                .holds_alpha = true,
                .needs_path = true,
                .holds8 = true,
                .holds16 = true,
                .holds_float = true},
    ImageFormat{.name = "OpenEXR",
                .writer = "openexr",
                .extensions = ".exr",
                .compressions = "none rle zips zip piz pxr24 b44 b44a dwaa dwab",
                .holds_alpha = true,
                .holds_data_window = true,
                .linear_light = true,
                .passes_parts = true,
                .holds_half = true,
                .holds_float = true},
    ImageFormat{.name = "DPX", .writer = "dpx", .extensions = ".dpx", .holds8 = true, .holds16 = true},
};

bool lists(const ImageFormat& format, const std::string& extension) {
  return (std::string(format.extensions) + ' ').find(extension + ' ') != std::string::npos;
}

// Null for an extension (with its dot) that no format has.
const ImageFormat* formatOf(const std::string& extension) {
  const auto found =
      std::ranges::find_if(kFormats, [&](const ImageFormat& format) { return lists(format, extension); });
  return extension.empty() || found == kFormats.end() ? nullptr : &*found;
}

bool holds(const ImageFormat& format, SampleType type) {
  switch (type) {
    case SampleType::Bits8:
      return format.holds8;
    case SampleType::Bits16:
      return format.holds16;
    case SampleType::Half:
      return format.holds_half;
    case SampleType::Float:
      return format.holds_float;
  }
  return false;
}

SampleType wantedSamples(DepthChoice choice, SampleType source) {
  switch (choice) {
    case DepthChoice::Auto:
      return source;
    case DepthChoice::Bits8:
      return SampleType::Bits8;
    case DepthChoice::Bits16:
      return SampleType::Bits16;
    case DepthChoice::Half:
      return SampleType::Half;
    case DepthChoice::Float:
      // A half file loses nothing as half again.
      return source == SampleType::Half ? SampleType::Half : SampleType::Float;
  }
  return source;
}

}  // namespace

std::string outputExtensions() {
  std::string list;
  for (std::size_t i = 0; i < kFormats.size(); ++i) {
    const std::string extensions = kFormats[i].extensions;
    list += (i == 0 ? "" : (i + 1 < kFormats.size() ? ", " : " or ")) + extensions.substr(0, extensions.find(' '));
  }
  return list;
}

const ImageFormat& formatForOutput(const std::string& option, const std::string& path) {
  const std::string extension = lowerCaseExtension(path);
  if (const ImageFormat* format = formatOf(extension)) {
    return *format;
  }
  const std::string fault = extension.empty() ? "has no extension that tells the format"
                                              : fmt::format("has the unknown format '{}'", extension);
  throw badArgument(option, fmt::format("'{}' {}; end the name in {}", path, fault, outputExtensions()));
}

const ImageFormat& chosenFormat(const std::string& path, const std::string& name) {
  constexpr const char* kNames = "png, jpg, tif, exr or dpx";
  if (name.empty() && !isStandardStream(path)) {
    return formatForOutput("--output", path);
  }
  if (name.empty()) {
    throw badArgument("--format", fmt::format("is missing for standard output; give {}", kNames));
  }
  if (const ImageFormat* format = formatOf('.' + name)) {
    return *format;
  }
  throw badArgument("--format", fmt::format("'{}' is not known; give {}", name, kNames));
}

void requireSizeHeld(const ImageFormat& format, const std::string& path, host::Size size) {
  if (format.longest_side > 0 && std::max(size.width, size.height) > format.longest_side) {
    throw badArgument("--output", fmt::format("'{}' would have {} pixels and {} holds {} in a side; write another "
                                              "format or a smaller picture",
                                              path, toText(size), format.name, format.longest_side));
  }
}

host::Depth renderDepth(DepthChoice choice, SampleType source) {
  switch (wantedSamples(choice, source)) {
    case SampleType::Bits8:
      return host::Depth::Bits8;
    case SampleType::Bits16:
      return host::Depth::Bits16;
    default:
      return host::Depth::Float;
  }
}

SampleType outputSamples(const ImageFormat& format, DepthChoice choice, SampleType source) {
  const SampleType wanted = wantedSamples(choice, source);
  // Half cannot hold every 16-bit value, so it is no finer form of it.
  for (const SampleType type : {SampleType::Bits8, SampleType::Bits16, SampleType::Half, SampleType::Float}) {
    if (type >= wanted && holds(format, type) && !(wanted == SampleType::Bits16 && type == SampleType::Half)) {
      return type;
    }
  }
  for (const SampleType type : {SampleType::Float, SampleType::Half, SampleType::Bits16}) {
    if (holds(format, type)) {
      return type;
    }
  }
  return SampleType::Bits8;
}

}  // namespace vantorel::cli
