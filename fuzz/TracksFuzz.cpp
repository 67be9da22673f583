// Fuzzes the readers of tracks: every format's reader gets the input as a file, and what one understands goes through
// resolving, summary, plot and every format's writer, whose text must be readable again.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

#include "tracks/Plot.h"
#include "tracks/Resolve.h"
#include "tracks/Summary.h"

namespace {

using namespace vantorel::tracks;

constexpr Size kFrame{1920, 1080};
// Longer tracks would be written with a key on each of their frames.
constexpr double kMaxFrames = 1000.0;
// Frame numbers are printed with six digits after the point.
constexpr double kNearestFrames = 1e-5;

[[noreturn]] void stop(const char* what, const Format& format, const std::string& detail) {
  std::fprintf(stderr, "%s: %s: %s\n", std::string(format.name).c_str(), what, detail.c_str());
  std::abort();
}

bool isWritable(const CornerTrack& track) {
  for (std::size_t k = 1; k < track.keys.size(); ++k) {
    if (track.keys[k].frame - track.keys[k - 1].frame < kNearestFrames) {
      return false;
    }
  }
  return track.keys.back().frame - track.keys.front().frame <= kMaxFrames;
}

void checkTrack(const CornerTrack& track, const Format& format) {
  if (track.keys.empty()) {
    stop("no keys", format, "");
  }
  double before = -HUGE_VAL;
  for (const CornerKey& key : track.keys) {
    if (!key.complete() || !(key.frame > before)) {
      stop("keys out of order or not complete", format, std::to_string(key.frame));
    }
    before = key.frame;
    for (const Point& point : key.points) {
      if (!(std::abs(point.x) <= 32768.0 && std::abs(point.y) <= 32768.0)) {
        stop("position out of range", format, std::to_string(key.frame));
      }
    }
  }
}

void checkWriters(const CornerTrack& track) {
  for (const Format* format : formats()) {
    WriteOptions options;
    options.frame = kFrame;
    const auto text = writeTrack(track, *format, options);
    if (!text) {
      continue;
    }
    const TrackSource source{"written", *text};
    const auto again = readTrack({&source, 1}, {format, {}});
    if (!again) {
      stop("what it wrote cannot be read", *format, again.error().input + ": " + again.error().message);
    }
    if (again->track.keys.size() < track.keys.size()) {
      stop("keys were lost", *format, *text);
    }
  }
}

void checkReader(const Format& format, std::string_view text) {
  const TrackSource source{"input", text};
  auto read = readTrack({&source, 1}, {&format, 25.0});
  if (!read) {
    if (read.error().message.empty()) {
      stop("an error without a message", format, read.error().input);
    }
    return;
  }
  ResolveOptions options;
  options.sizes = {kFrame, {640, 480}};
  options.sigma = 1.5;
  const auto resolved = resolveTrack(std::move(*read), options);
  if (!resolved) {
    return;
  }
  checkTrack(resolved->track, format);
  if (isWritable(resolved->track)) {
    summaryText(summarize(resolved->track));
    plotSvg(resolved->track, kFrame);
    checkWriters(resolved->track);
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
  const std::string text(bytes, bytes + size);
  detectFormat(text, "input");
  for (const Format* format : formats()) {
    checkReader(*format, text);
  }
  return 0;
}
