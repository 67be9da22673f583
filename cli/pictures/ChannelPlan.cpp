#include "cli/pictures/ChannelPlan.h"

#include <fmt/format.h>
#include <strings.h>

#include <algorithm>
#include <initializer_list>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

int channelNamed(const PictureHeader& header, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    for (std::size_t c = 0; c < header.channels.size(); ++c) {
      if (strcasecmp(header.channels[c].name.c_str(), name) == 0) {
        return static_cast<int>(c);
      }
    }
  }
  return -1;
}

}  // namespace

int ChannelPlan::first() const {
  int lowest = std::min({source[0], source[1], source[2]});
  return hasAlpha() ? std::min(lowest, source[3]) : lowest;
}

int ChannelPlan::end() const {
  return std::max({source[0], source[1], source[2], source[3]}) + 1;
}

ChannelPlan planChannels(const PictureHeader& header, const std::string& path) {
  if (header.is_deep) {
    throw fileFailure(path, "holds deep samples, not a flat picture; flatten it first");
  }
  if (header.is_volume) {
    throw fileFailure(path, "holds a volume, not a flat picture; give a picture with one slice");
  }
  if (channelNamed(header, {"RY"}) >= 0 || channelNamed(header, {"BY"}) >= 0) {
    throw fileFailure(path, "holds luminance and chroma channels; convert it to RGB first");
  }

  const int count = static_cast<int>(header.channels.size());
  // A reader may name a channel beyond the last, as that of GIF files does.
  const bool states_alpha = header.alpha_channel >= 0 && header.alpha_channel < count;
  const int alpha = states_alpha ? header.alpha_channel : channelNamed(header, {"A", "Alpha"});
  const int red = channelNamed(header, {"R", "Red"});
  const int green = channelNamed(header, {"G", "Green"});
  const int blue = channelNamed(header, {"B", "Blue"});
  if (red >= 0 && green >= 0 && blue >= 0) {
    return {{red, green, blue, alpha}};
  }
  if (const int grey = channelNamed(header, {"Y", "I", "L"}); grey >= 0) {
    return {{grey, grey, grey, alpha}};
  }
  switch (count) {
    case 1:
    case 2:
      // A lone alpha channel shows as grey.
      return {{0, 0, 0, count == 2 ? 1 : -1}};
    case 3:
      return {{0, 1, 2, -1}};
    case 4:
      return {{0, 1, 2, 3}};
    default:
      throw fileFailure(path, fmt::format("holds {} channels and none of them is named R, G, B or Y; keep those that "
                                          "make the picture",
                                          count));
  }
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
