#include "cli/pictures/ChannelPlan.h"

#include <fmt/format.h>
#include <fmt/ranges.h>
#include <strings.h>

#include <algorithm>
#include <initializer_list>
#include <set>
#include <vector>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

// A channel by its name within its layer.
struct LayerChannel {
  std::string name;
  int number = 0;
};

std::vector<LayerChannel> channelsOf(const PictureHeader& header, const std::string& layer) {
  const std::string prefix = layer.empty() ? "" : layer + '.';
  std::vector<LayerChannel> channels;
  for (std::size_t c = 0; c < header.channels.size(); ++c) {
    const std::string& name = header.channels[c].name;
    if (name.rfind(prefix, 0) == 0) {
      channels.push_back({name.substr(prefix.size()), static_cast<int>(c)});
    }
  }
  return channels;
}

int channelNamed(const std::vector<LayerChannel>& channels, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    for (const LayerChannel& channel : channels) {
      if (strcasecmp(channel.name.c_str(), name) == 0) {
        return channel.number;
      }
    }
  }
  return -1;
}

// What channels' names begin with, before their last dot.
std::string layersOf(const PictureHeader& header) {
  std::set<std::string> layers;
  for (const ChannelHeader& channel : header.channels) {
    if (const std::size_t dot = channel.name.rfind('.'); dot != std::string::npos && dot > 0) {
      layers.insert(channel.name.substr(0, dot));
    }
  }
  return fmt::format("{}", fmt::join(layers, ", "));
}

CommandError unknownLayer(const PictureHeader& header, const std::string& layer, const std::string& path) {
  const std::string layers = layersOf(header);
  return fileFailure(path, fmt::format("has no layer '{}'; {}", layer,
                                       layers.empty() ? "omit --layer-name" : "give --layer-name as " + layers));
}

CommandError noPicture(const PictureHeader& header, std::size_t count, const std::string& path) {
  const std::string layers = layersOf(header);
  return fileFailure(path, fmt::format("holds {} channels and none of them is named R, G, B or Y; {}", count,
                                       layers.empty() ? "keep those that make the picture"
                                                      : "choose a layer with --layer-name: " + layers));
}

// Throws for an unknown layer, and for channels that do not make a picture.
ChannelPlan planByNames(const PictureHeader& header, const std::string& layer, const std::string& path) {
  const std::vector<LayerChannel> channels = channelsOf(header, layer);
  if (channels.empty() && !layer.empty()) {
    throw unknownLayer(header, layer, path);
  }
  if (channelNamed(channels, {"RY"}) >= 0 || channelNamed(channels, {"BY"}) >= 0) {
    throw fileFailure(path, "holds luminance and chroma channels; convert it to RGB first");
  }

  // A reader may name a channel beyond the last, as that of GIF files does.
  const bool states_alpha =
      layer.empty() && header.alpha_channel >= 0 && header.alpha_channel < static_cast<int>(header.channels.size());
  const int alpha = states_alpha ? header.alpha_channel : channelNamed(channels, {"A", "Alpha"});
  const int red = channelNamed(channels, {"R", "Red"});
  const int green = channelNamed(channels, {"G", "Green"});
  const int blue = channelNamed(channels, {"B", "Blue"});
  if (red >= 0 && green >= 0 && blue >= 0) {
    return {{red, green, blue, alpha}};
  }
  if (const int grey = channelNamed(channels, {"Y", "I", "L"}); grey >= 0) {
    return {{grey, grey, grey, alpha}};
  }
  const auto number = [&](std::size_t index) { return channels[index].number; };
  switch (channels.size()) {
    case 1:
    case 2:
      // A lone alpha channel shows as grey.
      return {{number(0), number(0), number(0), channels.size() == 2 ? number(1) : -1}};
    case 3:
      return {{number(0), number(1), number(2), -1}};
    case 4:
      return {{number(0), number(1), number(2), number(3)}};
    default:
      throw noPicture(header, channels.size(), path);
  }
}

}  // namespace

int ChannelPlan::first() const {
  int lowest = std::min({source[0], source[1], source[2]});
  return hasAlpha() ? std::min(lowest, source[3]) : lowest;
}

int ChannelPlan::end() const {
  return std::max({source[0], source[1], source[2], source[3]}) + 1;
}

ChannelPlan planChannels(const PictureHeader& header, const std::string& layer, const std::string& path) {
  if (header.is_deep) {
    throw fileFailure(path, "holds deep samples, not a flat picture; flatten it first");
  }
  if (header.is_volume) {
    throw fileFailure(path, "holds a volume, not a flat picture; give a picture with one slice");
  }
  const ChannelPlan plan = planByNames(header, layer, path);
  for (const int number : plan.source) {
    if (number >= 0 && header.channels[static_cast<std::size_t>(number)].is_subsampled) {
      throw fileFailure(path, fmt::format("its channel '{}' does not have a sample for every pixel; resample it first",
                                          header.channels[static_cast<std::size_t>(number)].name));
    }
  }
  return plan;
}

SampleType samplesOf(const PictureHeader& header, const ChannelPlan& plan) {
  SampleType finest = SampleType::Bits8;
  for (const int channel : plan.source) {
    if (channel >= 0) {
      finest = std::max(finest, header.channels[static_cast<std::size_t>(channel)].samples);
    }
  }
  return finest;
}

}  // namespace vantorel::cli
