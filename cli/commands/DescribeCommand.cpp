#include <fmt/format.h>
#include <fmt/ranges.h>

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "cli/base/Console.h"
#include "cli/base/Text.h"
#include "cli/commands/Commands.h"
#include "cli/commands/Listing.h"
#include "cli/pictures/ColourTags.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/PictureInput.h"
#include "cli/shots/ShotColour.h"

namespace vantorel::cli {

namespace {

const char* sampleName(SampleType samples) {
  switch (samples) {
    case SampleType::Bits8:
      return "8 bit";
    case SampleType::Bits16:
      return "16 bit";
    case SampleType::Half:
      return "half";
    case SampleType::Float:
      return "float";
  }
  return "";
}

const char* alphaName(const PictureInfo& info) {
  return !info.has_alpha ? "none" : info.is_unassociated ? "straight" : "premultiplied";
}

const char* orientationName(int orientation) {
  constexpr const char* kNames[] = {"upright",
                                    "mirrored left to right",
                                    "upside down",
                                    "mirrored top to bottom",
                                    "mirrored, and turned counterclockwise",
                                    "turned clockwise to be upright",
                                    "mirrored, and turned clockwise",
                                    "turned counterclockwise to be upright"};
  return kNames[orientation - 1];
}

// Everything that is reported about a file.
struct Description {
  PictureHeader header;
  PictureInfo info;
  FileColour colour;
};

Description describe(const InfoOptions& options) {
  const LibraryMessagesDropped dropped;
  Description description;
  description.info = probePicture(options.file);
  description.header = openPictureInput({options.file, options.file})->header();
  description.colour = detectColour(options.file, *description.info.colour, colourConfig(options.colour));
  return description;
}

std::string colourText(const FileColour& colour) {
  return fmt::format("{}, by {}", colour.space.name, colour.reason);
}

std::string windowText(const Window& window) {
  return fmt::format("{}x{} at {},{}", window.width, window.height, window.x, window.y);
}

std::string asText(const std::string& file, const Description& described) {
  const PictureHeader& header = described.header;
  Listing listing;
  listing.add("file", escaped(file));
  listing.add("format", header.format);
  listing.add("size", toText(described.info.size));
  if (header.data != header.display) {
    listing.add("data window", windowText(header.data));
    listing.add("display window", windowText(header.display));
  }
  for (const std::string& part : header.parts) {
    listing.add("parts", escaped(part));
  }
  for (const std::string& view : header.views) {
    listing.add("views", escaped(view));
  }
  for (const ChannelHeader& channel : header.channels) {
    listing.add("channels", fmt::format("{} ({})", escaped(channel.name), sampleName(channel.samples)));
  }
  listing.add("alpha", alphaName(described.info));
  listing.add("orientation", orientationName(header.orientation));
  listing.add("colour space", escaped(colourText(described.colour)));
  return listing.text();
}

std::string asJson(const std::string& file, const Description& described) {
  using Json = nlohmann::ordered_json;
  const PictureHeader& header = described.header;
  const auto window = [](const Window& w) {
    return Json{{"x", w.x}, {"y", w.y}, {"width", w.width}, {"height", w.height}};
  };
  Json object{{"file", file},
              {"format", header.format},
              {"size", {described.info.size.width, described.info.size.height}},
              {"data_window", window(header.data)},
              {"display_window", window(header.display)},
              {"parts", header.parts},
              {"views", header.views},
              {"channels", Json::array()},
              {"alpha", alphaName(described.info)},
              {"orientation", header.orientation},
              {"colour_space", described.colour.space.name},
              {"colour_space_by", described.colour.reason}};
  for (const ChannelHeader& channel : header.channels) {
    object["channels"].push_back({{"name", channel.name}, {"samples", sampleName(channel.samples)}});
  }
  return object.dump(2, ' ', false, Json::error_handler_t::replace) + '\n';
}

}  // namespace

ExitCode runDescribe(const InfoOptions& options) {
  const Description description = describe(options);
  printOut(options.json ? asJson(options.file, description) : asText(options.file, description));
  return ExitCode::Done;
}

}  // namespace vantorel::cli
