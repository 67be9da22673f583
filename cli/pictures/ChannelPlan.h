// Which of a file's channels become red, green, blue and alpha.
#pragma once

#include <string>

#include "cli/pictures/PictureHeader.h"
#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

struct ChannelPlan {
  ChannelMap source{};  // channel numbers of the file; -1 for an alpha that it does not have
  bool hasAlpha() const { return source[3] >= 0; }
  int first() const;  // the lowest and the number after the highest channel needed
  int end() const;
};

// Chooses among the channels of that layer ("beauty" for beauty.R and so on; all channels if it is empty): R, G, B (or
// Y) and A by name, or one to four channels with other names by position. Throws CommandError naming the path for any
// other channels, for luminance/chroma, deep and volume pictures, and for an unknown layer.
ChannelPlan planChannels(const PictureHeader& header, const std::string& layer, const std::string& path);

// The finest type among the planned channels.
SampleType samplesOf(const PictureHeader& header, const ChannelPlan& plan);

}  // namespace vantorel::cli
