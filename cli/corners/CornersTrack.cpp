#include "cli/corners/CornersTrack.h"

#include <fmt/format.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/base/CommandError.h"
#include "cli/base/Files.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

// A format of files of corners is a row here and a parser.
struct TrackFormat {
  const char* extension;
  CornersTrack (*parse)(const std::string& text, const std::string& name);
};
constexpr std::array kTrackFormats{TrackFormat{".json", parseCornersJson}, TrackFormat{".csv", parseCornersCsv}};

// Ten hours of keys on every frame are a tenth of this.
constexpr std::uintmax_t kLargestFile = 512u << 20;

std::string readText(const std::string& path) {
  requireReadableFile(path, "a JSON or CSV file");
  std::error_code fault;
  if (std::filesystem::file_size(path, fault) > kLargestFile) {
    throw fileFailure(path, "is too large for a file of corners; give a JSON or CSV file of at most 512 MiB");
  }
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    throw fileFailure(path, "cannot be read; check its disk");
  }
  return std::string(withoutByteOrderMark(text));
}

// An error about one position of the track: of an option, or of a key of its file.
CommandError positionFault(const CornersTrack& track, const CornersKey& key, const char* corner,
                           const std::string& fault) {
  if (track.source.empty()) {
    return badArgument(fmt::format("--{}", corner), fault);
  }
  return fileFailure(fmt::format("{}: frame {}: {}", track.source, key.frame, corner), fault);
}

}  // namespace

CornersTrack readCorners(const std::string& path) {
  const std::string extension = lowerCaseExtension(path);
  for (const TrackFormat& format : kTrackFormats) {
    if (extension == format.extension) {
      return format.parse(readText(path), path);
    }
  }
  throw badArgument("--corners", fmt::format("'{}' ends in neither .json nor .csv; rename it to what it holds", path));
}

host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, const FrameRate& rate) {
  std::array<std::vector<host::AnimatedPoint::Key>, kCornerCount> keys;
  for (const CornersKey& key : track.keys) {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const auto point = toLayerPixels(key.corners[c], layer);
      if (!point) {
        throw positionFault(track, key, kCornerNames[c], point.error());
      }
      keys[c].push_back({rate.seconds(key.frame), *point});
    }
  }
  const auto point = [&](Corner corner) { return host::AnimatedPoint(std::move(keys[corner]), track.interpolation); };
  return {point(kUpperLeft), point(kUpperRight), point(kLowerLeft), point(kLowerRight)};
}

}  // namespace vantorel::cli
