#include "cli/commands/TrackOptionTable.h"

#include <fmt/format.h>

#include "cli/base/NumberParsing.h"
#include "cli/base/SizeParsing.h"
#include "cli/commands/OptionValues.h"

namespace vantorel::cli {

namespace {

using tracks::Basis;
using tracks::Origin;
using tracks::Units;

constexpr int kLongestGap = 1000000;

void setOrder(TrackOptions& options, const std::string& name, const std::string& value) {
  options.resolve.order = tracks::parseCornerOrder(value);
  if (!options.resolve.order) {
    throw badArgument(name,
                      fmt::format("'{}' is not an order; name the file's points in order, such as ul,ur,ll,lr, or "
                                  "as-written",
                                  value));
  }
}

}  // namespace

const TrackOptionRow kTrackOptions[kTrackOptionCount]{
    {"--corners-origin", "upper-left|lower-left", "The origin of the file's positions",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.given.origin =
           parseChoice<Origin>(name, value, {{"upper-left", Origin::UpperLeft}, {"lower-left", Origin::LowerLeft}});
     }},
    {"--corners-units", "pixels|percent|fraction", "Their units; fraction is 0 to 1",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.given.units = parseChoice<Units>(
           name, value, {{"pixels", Units::Pixels}, {"percent", Units::Percent}, {"fraction", Units::Fraction}});
     }},
    {"--corners-of", "output|layer", "The picture that percentages and fractions refer to",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.given.of = parseChoice<Basis>(name, value, {{"output", Basis::Output}, {"layer", Basis::Layer}});
     }},
    {"--corners-size", "WxH", "The tracked picture's size, from which positions are scaled to the output's",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.given.size = parseSize(name, value);
     }},
    {"--corners-pixel-centres", "0|0.5", "The position of the first pixel's centre",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.given.pixel_centres = parseChoice<double>(name, value, {{"0", 0.0}, {"0.5", 0.5}});
     }},
    {"--corners-first,--corners-start", "N",
     "The frame of the track's first key (default: the file's own frame numbers, from 1)",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.first_frame = parseIntInRange(name, value, -kLongestGap, kLongestGap);
     }},
    {"--corners-order", "ORDER",
     "The corners of the file's points, such as ul,ur,ll,lr, or as-written (default: found by position)", setOrder},
    {"--corners-gap", "N", "Interpolate over at most N frames without a corner (default: 25)",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.longest_gap = parseIntInRange(name, value, 0, kLongestGap);
     }},
    {"--smooth", "SIGMA", "Smooth the track with a Gaussian of this many frames",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.sigma = parseNumberInRange(name, value, 0.0, 100.0);
     }},
    {"--jump", "SHARE",
     "Warn if a corner moves by more than this fraction of the quadrilateral's size in a frame (default: 0.25)",
     [](TrackOptions& o, const std::string& name, const std::string& value) {
       o.resolve.jump = parseNumberInRange(name, value, 1e-6, 1e6);
     },
     PictureUse::LeavesPicture},
};

}  // namespace vantorel::cli
