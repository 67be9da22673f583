#include "tracks/Resolve.h"

#include <fmt/format.h>

#include <utility>

#include "tracks/Faults.h"
#include "tracks/FrameList.h"
#include "tracks/Gaps.h"
#include "tracks/Quadrilaterals.h"
#include "tracks/Smoothing.h"
#include "tracks/SourcePoints.h"

namespace vantorel::tracks {

namespace {

// 16.16 holds -32768 up to, but not including, 32768.
constexpr double kLowest = -32768.0;
constexpr double kBeyond = 32768.0;

class Resolver {
 public:
  Resolver(ReadTrack read, const ResolveOptions& options) : format_(*read.format), options_(options) {
    result_.track = std::move(read.track);
    result_.notes = std::move(read.notes);
  }

  ResolvedTrack resolve() {
    requireOptions();
    placeInPixels();
    placeFrames();
    requireSource();
    repairOrder();
    add(fillGaps(track(), options_.longest_gap, format_.sparse));
    applySourceCorners(track(), options_.sizes.layer);
    tellShapes();
    if (options_.sigma > 0.0) {
      smooth(track().keys, options_.sigma);
    }
    requireRange();
    track().conventions = {Origin::UpperLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}};
    return std::move(result_);
  }

 private:
  CornerTrack& track() { return result_.track; }
  void note(const std::string& text) { result_.notes.push_back(fmt::format("{}: {}", track().source, text)); }
  void add(const std::vector<std::string>& notes) {
    for (const std::string& text : notes) {
      note(text);
    }
  }

  void requireOptions() {
    if (!(options_.sigma >= 0.0 && options_.sigma <= kLargestSigma)) {
      fail(track().source, 0, "",
           fmt::format("cannot be smoothed with a sigma of {}; give 0 to {} frames", printed(options_.sigma, 3),
                       kLargestSigma));
    }
    if (!(options_.jump > 0.0)) {
      fail(track().source, 0, "", "cannot be searched for jumps of size 0; give a share above 0");
    }
  }

  void placeInPixels() {
    const Conventions& said = track().conventions;
    const Conventions conventions = overridden(said, options_.given);
    if (const char* picture = missingSize(conventions, options_.sizes); *picture != '\0') {
      fail(track().source, 0, "", fmt::format("has positions that need the {}'s size; give it", picture));
    }
    tellAssumptions(conventions);
    Conventions in_percent = conventions;
    in_percent.units = Units::Percent;
    bool any_percent = false;
    for (const CornerKey& key : track().keys) {
      any_percent = any_percent || key.percent != 0;
    }
    if (const char* picture = missingSize(in_percent, options_.sizes); any_percent && *picture != '\0') {
      fail(track().source, 0, "", fmt::format("has positions in percent that need the {}'s size; give it", picture));
    }
    const FrameMap map = frameMap(conventions, options_.sizes);
    const FrameMap percent_map = any_percent ? frameMap(in_percent, options_.sizes) : map;
    for (CornerKey& key : track().keys) {
      for (std::size_t c = 0; c < kCornerCount; ++c) {
        const AxisMap& x = (key.percent >> 2 * c & 1) != 0 ? percent_map.x : map.x;
        const AxisMap& y = (key.percent >> 2 * c & 2) != 0 ? percent_map.y : map.y;
        key.points[c] = {x.toPixels(key.points[c].x), y.toPixels(key.points[c].y)};
      }
      key.percent = 0;
    }
    placeSource(conventions);
    track().conventions = conventions;
  }

  // Source positions are always relative to the layer, whichever picture the corners refer to.
  void placeSource(Conventions conventions) {
    if (track().source_keys.empty()) {
      return;
    }
    conventions.of = Basis::Layer;
    conventions.size.reset();
    const PictureSizes layer_alone{options_.sizes.layer, options_.sizes.layer};
    if (*missingSize(conventions, layer_alone) != '\0') {
      fail(track().source, 0, "from", "has positions that need the layer's size; give it");
    }
    const FrameMap map = frameMap(conventions, layer_alone);
    for (CornerKey& key : track().source_keys) {
      for (Point& point : key.points) {
        point = {map.x.toPixels(point.x), map.y.toPixels(point.y)};
      }
    }
  }

  void requireSource() const {
    const CornerTrack& track = result_.track;
    for (const CornerKey& key : track.source_keys) {
      const bool is_animated = track.source_keys.size() > 1;
      const std::string place = is_animated ? fmt::format("from: frame {}", printed(key.frame, 3)) : "from";
      requireInRange(key, place);
      if (!isConvex(key.points)) {
        fail(track.source, key.line, place,
             "does not form a convex quadrilateral; give its four corners, each in its place");
      }
    }
  }

  void tellAssumptions(const Conventions& conventions) {
    std::string assumed;
    const auto say = [&](bool is_assumed, const char* text) {
      if (is_assumed) {
        assumed += assumed.empty() ? "" : ", ";
        assumed += text;
      }
    };
    say(!conventions.units, "positions in pixels");
    say(!conventions.of && (conventions.units == Units::Percent || conventions.units == Units::Fraction),
        "positions relative to the output");
    say(!conventions.origin, "y downwards from the upper left");
    say(!conventions.pixel_centres && conventions.units.value_or(Units::Pixels) == Units::Pixels,
        "pixel centres at 0.5");
    if (!assumed.empty()) {
      note(fmt::format("assumed {}, since the file does not say", assumed));
    }
    const Size output = options_.sizes.output;
    if (conventions.size && output.width > 0 && *conventions.size != output && conventions.of != Basis::Layer) {
      note(fmt::format("positions scaled from {}x{} to {}x{}", conventions.size->width, conventions.size->height,
                       output.width, output.height));
    }
  }

  void placeFrames() {
    const int counts_from = track().conventions.counts_from.value_or(1);
    double shift = 1.0 - counts_from;
    if (options_.first_frame) {
      shift = *options_.first_frame - track().keys.front().frame;
    } else if (shift != 0.0 && track().keys.size() > 1) {
      note(fmt::format("counts frames from {}; its frame {} becomes frame 1", counts_from, counts_from));
    }
    for (std::vector<CornerKey>* keys : {&track().keys, &track().source_keys}) {
      for (CornerKey& key : *keys) {
        key.frame += shift;
      }
    }
  }

  void repairOrder() {
    // The source corners say which point is which, so the order must not be guessed from the positions.
    const bool is_known = !track().source_keys.empty() ||
                          (track().from.has_value() && (track().inverted || !isWholeLayer(*track().from)));
    result_.order = options_.order ? *options_.order : (is_known ? kAsWritten : bestOrder(track().keys));
    reorder(track().keys, result_.order);
    if (!options_.order && result_.order != kAsWritten) {
      note(fmt::format("corners are in the order {} and were rearranged", orderText(result_.order)));
    }
  }

  void tellShapes() {
    std::vector<double> crossing;
    for (const CornerKey& key : track().keys) {
      if (isCrossing(key.points)) {
        crossing.push_back(key.frame);
      }
    }
    if (!crossing.empty()) {
      note(fmt::format("{}: edges of the quadrilateral cross", frameList(crossing)));
    }
    if (const std::vector<double> frames = jumps(track().keys, options_.jump); !frames.empty()) {
      note(fmt::format("{}: a corner jumps by more than {} of the quadrilateral's size", frameList(frames),
                       printed(options_.jump, 3)));
    }
  }

  void requireRange() {
    for (const CornerKey& key : track().keys) {
      requireInRange(key, fmt::format("frame {}", printed(key.frame, 3)));
    }
  }

  void requireInRange(const CornerKey& key, const std::string& place) const {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      for (const double value : {key.points[c].x, key.points[c].y}) {
        // Negated so that NaN fails too.
        if (!(value >= kLowest && value < kBeyond)) {
          fail(result_.track.source, key.line, fmt::format("{}: {}", place, kCornerNames[c]),
               fmt::format("{} pixels is outside -32768 to 32767.99; move the corner nearer to the layer",
                           printed(value, 2)));
        }
      }
    }
  }

  const Format& format_;
  const ResolveOptions& options_;
  ResolvedTrack result_;
};

}  // namespace

host::Result<ResolvedTrack> resolveTrack(ReadTrack read, const ResolveOptions& options) {
  return resultOf([&] { return Resolver(std::move(read), options).resolve(); });
}

}  // namespace vantorel::tracks
