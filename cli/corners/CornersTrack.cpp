#include "cli/corners/CornersTrack.h"

#include <fmt/format.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "cli/base/CommandError.h"
#include "cli/base/Files.h"

namespace vantorel::cli {

namespace {

CommandError fromTracks(const host::Error& error) {
  return fileFailure(error.input, error.message);
}

template <typename T>
T trackOrThrow(host::Result<T> result) {
  if (!result) {
    throw fromTracks(result.error());
  }
  return std::move(*result);
}

std::string readText(const std::string& path) {
  if (path == "-") {
    return trackOrThrow(tracks::readStream(std::cin, "standard input"));
  }
  // A pipe may be readable too, but opening it to check would consume data meant for the reader.
  std::error_code fault;
  if (!std::filesystem::is_fifo(path, fault)) {
    requireReadableFile(path, "a tracker's file");
  }
  std::ifstream file(path, std::ios::binary);
  if (!file) {
    throw fileFailure(path, "cannot be opened; check its permissions and its disk");
  }
  return trackOrThrow(tracks::readStream(file, path));
}

using Keys = std::array<std::vector<host::AnimatedPoint::Key>, kCornerCount>;

host::AnimatedCorners animation(Keys keys, host::Interpolation interpolation) {
  const auto point = [&](Corner corner) { return host::AnimatedPoint(std::move(keys[corner]), interpolation); };
  return {point(kUpperLeft), point(kUpperRight), point(kLowerLeft), point(kLowerRight)};
}

Keys keysOf(const std::vector<tracks::CornerKey>& track_keys, const FrameRate& rate) {
  Keys keys;
  for (const tracks::CornerKey& key : track_keys) {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      keys[c].push_back({rate.seconds(key.frame), key.points[c]});
    }
  }
  return keys;
}

host::AnimatedCorners stillCorners(const CornerPositions& still, host::Size layer) {
  const host::Corners at = toPixels(still, layer, "--");
  Keys keys;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    keys[c].push_back({0.0, at[c]});
  }
  return animation(std::move(keys), host::Interpolation::Linear);
}

}  // namespace

std::vector<std::string> trackFiles(const std::string& list) {
  std::error_code fault;
  if (std::filesystem::exists(list, fault)) {
    return {list};
  }
  std::vector<std::string> files;
  std::size_t begin = 0;
  while (true) {
    const std::size_t comma = list.find(',', begin);
    files.push_back(list.substr(begin, comma - begin));
    if (comma == std::string::npos) {
      return files;
    }
    begin = comma + 1;
  }
}

CornersTrack readCorners(const TrackOptions& options, const FrameRate& rate) {
  const std::vector<std::string> files = trackFiles(options.files);
  std::vector<std::string> texts;
  texts.reserve(files.size());  // the sources hold views of the texts, which must not move
  std::vector<tracks::TrackSource> sources;
  for (const std::string& file : files) {
    texts.push_back(readText(file));
    sources.push_back({file == "-" ? "standard input" : file, texts.back()});
  }
  CornersTrack track;
  track.read = trackOrThrow(tracks::readTrack(sources, {nullptr, static_cast<double>(rate.scale) / rate.step}));
  track.options = options.resolve;
  return track;
}

tracks::ResolvedTrack resolveCorners(const CornersTrack& track, host::Size layer, host::Size output) {
  tracks::ResolveOptions options = track.options;
  options.sizes = {output, layer};
  return trackOrThrow(tracks::resolveTrack(*track.read, options));
}

host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, host::Size output,
                                  const FrameRate& rate) {
  if (!track.read) {
    return stillCorners(track.still, layer);
  }
  const tracks::ResolvedTrack resolved = resolveCorners(track, layer, output);
  return animation(keysOf(resolved.track.keys, rate), resolved.track.interpolation);
}

host::AnimatedCorners toSourceAnimation(const CornersTrack& track, host::Size layer, host::Size output,
                                        const FrameRate& rate) {
  const tracks::ResolvedTrack resolved = resolveCorners(track, layer, output);
  return animation(keysOf(resolved.track.source_keys, rate), resolved.track.interpolation);
}

host::Corners toPixels(const CornerPositions& positions, host::Size layer, const char* prefix) {
  std::array<host::Point, kCornerCount> at;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    const auto point = toLayerPixels(positions[c], layer);
    if (!point) {
      throw badArgument(fmt::format("{}{}", prefix, kCornerNames[c]), point.error());
    }
    at[c] = *point;
  }
  return {at[kUpperLeft], at[kUpperRight], at[kLowerLeft], at[kLowerRight]};
}

void tellNotes(const std::vector<std::string>& notes) {
  for (const std::string& note : notes) {
    std::fprintf(stderr, "vantorel: %s\n", note.c_str());
  }
}

}  // namespace vantorel::cli
