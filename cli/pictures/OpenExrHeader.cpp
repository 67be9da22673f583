#include "cli/pictures/OpenExrHeader.h"

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfMultiView.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <strings.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <set>
#include <tuple>

#include "cli/pictures/OpenExrAttributes.h"

namespace vantorel::cli {

namespace {

// What channels are called that come before the others of their layer, in this order.
constexpr std::array kFirstNames{"R",     "Red", "G",  "Green", "B",  "Blue", "X",  "Y", "real",  "imag", "A",
                                 "Alpha", "AR",  "RA", "AG",    "GA", "AB",   "BA", "Z", "Depth", "Zback"};

std::size_t rankOf(const std::string& name) {
  const auto is_it = [&](const char* first) { return strcasecmp(first, name.c_str()) == 0; };
  return static_cast<std::size_t>(std::ranges::find_if(kFirstNames, is_it) - kFirstNames.begin());
}

// A channel of a file, and how its place among the others is found.
struct Place {
  std::string layer;  // with its dot; empty for none
  std::size_t rank = 0;
  std::string name;  // within the layer
  ChannelHeader channel;

  auto key() const { return std::tie(layer, rank, name); }
};

// A Z beside an X is a direction's, and comes after Y; others are depths.
void rankDirections(std::vector<Place>& places) {
  const std::size_t direction = rankOf("X");
  std::set<std::string> layers;
  for (const Place& place : places) {
    if (place.rank == direction) {
      layers.insert(place.layer);
    }
  }
  for (Place& place : places) {
    if (place.rank == rankOf("Z") && layers.contains(place.layer)) {
      place.rank = rankOf("Y");
    }
  }
}

std::vector<ChannelHeader> channelsOf(const Imf::ChannelList& list) {
  std::vector<Place> places;
  for (auto it = list.begin(); it != list.end(); ++it) {
    const std::string full = it.name();
    const std::size_t begin = full.rfind('.') + 1;
    const std::string name = full.substr(begin);
    const Imf::Channel& channel = it.channel();
    places.push_back({full.substr(0, begin),
                      rankOf(name),
                      name,
                      {full, channel.type == Imf::HALF ? SampleType::Half : SampleType::Float,
                       channel.xSampling != 1 || channel.ySampling != 1}});
  }
  rankDirections(places);
  std::ranges::sort(places, {}, &Place::key);
  std::vector<ChannelHeader> channels;
  std::ranges::transform(places, std::back_inserter(channels), &Place::channel);
  return channels;
}

int alphaOf(const std::vector<ChannelHeader>& channels) {
  const auto is_alpha = [](const ChannelHeader& channel) {
    return strcasecmp(channel.name.c_str(), "A") == 0 || strcasecmp(channel.name.c_str(), "Alpha") == 0;
  };
  const auto found = std::ranges::find_if(channels, is_alpha);
  return found == channels.end() ? -1 : static_cast<int>(found - channels.begin());
}

int spanOf(int min, int max) {
  const std::int64_t span = std::int64_t{max} - min + 1;
  return static_cast<int>(std::clamp<std::int64_t>(span, 0, std::numeric_limits<int>::max()));
}

Window windowOf(const Imath::Box2i& box) {
  return {box.min.x, box.min.y, spanOf(box.min.x, box.max.x), spanOf(box.min.y, box.max.y)};
}

host::Size tileOf(const Imf::Header& header) {
  if (header.type() != Imf::TILEDIMAGE || !header.hasTileDescription()) {
    return {0, 0};
  }
  const Imf::TileDescription& tiles = header.tileDescription();
  const auto side = [](unsigned pixels) { return pixels <= unsigned{kWindowLimit} ? static_cast<int>(pixels) : -1; };
  return {side(tiles.xSize), side(tiles.ySize)};
}

std::vector<std::string> viewsOf(const Imf::MultiPartInputFile& file) {
  std::vector<std::string> views;
  for (int part = 0; part < file.parts(); ++part) {
    const Imf::Header& header = file.header(part);
    if (header.hasView() && !header.view().empty()) {
      views.push_back(header.view());
    }
    if (Imf::hasMultiView(header)) {
      views.insert(views.end(), Imf::multiView(header).begin(), Imf::multiView(header).end());
    }
  }
  return views;
}

}  // namespace

PictureHeader pictureHeaderOf(const Imf::MultiPartInputFile& file, int part) {
  const Imf::Header& stated = file.header(part);
  PictureHeader header;
  header.format = "openexr";
  header.data = windowOf(stated.dataWindow());
  header.display = windowOf(stated.displayWindow());
  header.tile = tileOf(stated);
  header.channels = channelsOf(stated.channels());
  header.alpha_channel = alphaOf(header.channels);
  header.is_deep = stated.type() == Imf::DEEPSCANLINE || stated.type() == Imf::DEEPTILE;
  header.part = part;
  header.parts = file.parts() > 1 ? partNames(file) : std::vector<std::string>();
  header.views = viewsOf(file);
  header.metadata = attributesOf(stated);
  const double orientation = header.metadata.number("Orientation").value_or(1.0);
  header.orientation = orientation >= 1.0 && orientation <= 8.0 ? static_cast<int>(orientation) : 1;
  return header;
}

std::vector<std::string> partNames(const Imf::MultiPartInputFile& file) {
  std::vector<std::string> names;
  for (int part = 0; part < file.parts(); ++part) {
    const Imf::Header& header = file.header(part);
    names.push_back(header.hasName() ? header.name() : "");
  }
  return names;
}

}  // namespace vantorel::cli
