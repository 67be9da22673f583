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

// Of the channels of that layer ("beauty" for beauty.R and so on; all where it is empty) those named R, G, B (or Y) and
// A wherever they are; one to four channels of other names by their position. Throws CommandError naming the path for
// others, for luminance/chroma, deep and volume pictures, and for a layer that there is not.
ChannelPlan planChannels(const PictureHeader& header, const std::string& layer, const std::string& path);

// The finest type among the planned channels.
SampleType samplesOf(const PictureHeader& header, const ChannelPlan& plan);

}  // namespace vantorel::cli
