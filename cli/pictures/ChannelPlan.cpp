#include "cli/pictures/ChannelPlan.h"

#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>

#include <initializer_list>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

int channelNamed(const OIIO::ImageSpec& spec, std::initializer_list<const char*> names) {
  for (const char* name : names) {
    for (int c = 0; c < spec.nchannels; ++c) {
      if (OIIO::Strutil::iequals(spec.channelnames[static_cast<std::size_t>(c)], name)) {
        return c;
      }
    }
  }
  return -1;
}

SampleType sampleType(const OIIO::TypeDesc& type) {
  switch (type.basetype) {
    case OIIO::TypeDesc::UINT8:
    case OIIO::TypeDesc::INT8:
      return SampleType::Bits8;
    case OIIO::TypeDesc::UINT16:
    case OIIO::TypeDesc::INT16:
      return SampleType::Bits16;
    case OIIO::TypeDesc::HALF:
      return SampleType::Half;
    default:
      return SampleType::Float;
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

ChannelPlan planChannels(const OIIO::ImageSpec& spec, const std::string& path) {
  if (spec.deep) {
    throw fileFailure(path, "holds deep samples, not a flat picture; flatten it first");
  }
  if (spec.depth > 1) {
    throw fileFailure(path, "holds a volume, not a flat picture; give a picture with one slice");
  }
  if (channelNamed(spec, {"RY"}) >= 0 || channelNamed(spec, {"BY"}) >= 0) {
    throw fileFailure(path, "holds luminance and chroma channels; convert it to RGB first");
  }

  // A reader may name a channel beyond the last, as that of GIF files does.
  const bool states_alpha = spec.alpha_channel >= 0 && spec.alpha_channel < spec.nchannels;
  const int alpha = states_alpha ? spec.alpha_channel : channelNamed(spec, {"A", "Alpha"});
  const int red = channelNamed(spec, {"R", "Red"});
  const int green = channelNamed(spec, {"G", "Green"});
  const int blue = channelNamed(spec, {"B", "Blue"});
  if (red >= 0 && green >= 0 && blue >= 0) {
    return {{red, green, blue, alpha}};
  }
  if (const int grey = channelNamed(spec, {"Y", "I", "L"}); grey >= 0) {
    return {{grey, grey, grey, alpha}};
  }
  switch (spec.nchannels) {
    case 1:
    case 2:
      // A lone alpha channel shows as grey.
      return {{0, 0, 0, spec.nchannels == 2 ? 1 : -1}};
    case 3:
      return {{0, 1, 2, -1}};
    case 4:
      return {{0, 1, 2, 3}};
    default:
      throw fileFailure(path, fmt::format("holds {} channels and none of them is named R, G, B or Y; keep those that "
                                          "make the picture",
                                          spec.nchannels));
  }
}

SampleType samplesOf(const OIIO::ImageSpec& spec, const ChannelPlan& plan) {
  SampleType finest = SampleType::Bits8;
  for (const int channel : plan.source) {
    if (channel >= 0) {
      finest = std::max(finest, sampleType(spec.channelformat(channel)));
    }
  }
  return finest;
}

}  // namespace vantorel::cli
