#include "cli/CornersFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "cli/CommandError.h"

namespace vantorel::cli {

namespace {

constexpr const char* kCornerNames[kCornerCount] = {"ul", "ur", "ll", "lr"};
// Ten hours of keys on every frame are a tenth of this.
constexpr std::uintmax_t kLargestFile = 512u << 20;

std::string readText(const std::string& path) {
  std::error_code fault;
  if (!std::filesystem::exists(path, fault)) {
    throw fileFailure(path, "does not exist; check the name given to --corners");
  }
  if (!std::filesystem::is_regular_file(path, fault) || std::filesystem::file_size(path, fault) > kLargestFile) {
    throw fileFailure(path, "is no file of corners; give a JSON or CSV file");
  }
  std::ifstream file(path, std::ios::binary);
  std::string text{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  if (!file) {
    throw fileFailure(path, "cannot be read; check its permissions");
  }
  constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
  if (text.compare(0, kByteOrderMark.size(), kByteOrderMark) == 0) {
    text.erase(0, kByteOrderMark.size());
  }
  return text;
}

}  // namespace

CornersTrack readCorners(const std::string& path) {
  std::string extension = std::filesystem::path(path).extension().string();
  std::transform(extension.begin(), extension.end(), extension.begin(),
                 [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  if (extension == ".json") {
    return parseCornersJson(readText(path), path);
  }
  if (extension == ".csv") {
    return parseCornersCsv(readText(path), path);
  }
  throw badArgument("--corners", fmt::format("'{}' ends in neither .json nor .csv; rename it to what it holds", path));
}

host::AnimatedCorners toAnimation(const CornersTrack& track, host::Size layer, const FrameRate& rate) {
  std::vector<host::AnimatedPoint::Key> keys[kCornerCount];
  for (const CornersKey& key : track.keys) {
    for (std::size_t c = 0; c < kCornerCount; ++c) {
      const std::string input = track.source.empty()
                                    ? fmt::format("--{}", kCornerNames[c])
                                    : fmt::format("{}: frame {}: {}", track.source, key.frame, kCornerNames[c]);
      keys[c].push_back({rate.seconds(key.frame), toLayerPixels(input, key.corners[c], layer)});
    }
  }
  const auto point = [&](Corner corner) { return host::AnimatedPoint(std::move(keys[corner]), track.interpolation); };
  return {point(kUpperLeft), point(kUpperRight), point(kLowerLeft), point(kLowerRight)};
}

}  // namespace vantorel::cli
