#include "view/session/CommandText.h"

#include <fmt/format.h>

#include "tracks/CornerOrder.h"
#include "tracks/Text.h"

namespace vantorel::view {

namespace {

std::string quotedForShell(const std::string& word) {
  constexpr std::string_view kPlain = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-+=./,:@%";
  if (!word.empty() && word.find_first_not_of(kPlain) == std::string::npos) {
    return word;
  }
  std::string text = "'";
  for (const char c : word) {
    text += c == '\'' ? std::string("'\\''") : std::string(1, c);
  }
  return text + "'";
}

std::string cornerOptions(const tracks::CornerKey& key) {
  constexpr int kDecimals = 6;
  std::string text;
  for (std::size_t c = 0; c < tracks::kCornerCount; ++c) {
    text += fmt::format(" --{} {},{}", tracks::kCornerNames[c], tracks::printed(key.points[c].x, kDecimals),
                        tracks::printed(key.points[c].y, kDecimals));
  }
  return text;
}

}  // namespace

bool isReadAsWritten(const tracks::CornerTrack& track) {
  return tracks::bestOrder(track.keys) == tracks::kAsWritten;
}

std::string commandText(const cli::ViewOptions& options, const tracks::CornerTrack& track, std::int32_t frame) {
  std::string text = "vantorel render";
  const auto add = [&](const char* option, const std::string& value) {
    text += std::string(" ") + option + (*option == '\0' ? "" : " ") + quotedForShell(value);
  };
  text += ' ' + quotedForShell(options.layer_label.empty() ? options.layer : "LAYER");
  add("-o", options.output.empty() ? (options.frames ? "OUT.%04d.png" : "OUT.png") : options.output);
  const bool in_file = !options.track.files.empty() || track.keys.size() > 1;
  if (in_file) {
    add("--corners", options.track.files.empty() ? "CORNERS.json" : options.track.files);
    if (!options.frames && track.keys.size() > 1) {
      text += fmt::format(" --at {}", frame);
    }
    if (!isReadAsWritten(track)) {
      text += " --corners-order as-written";
    }
  } else {
    text += cornerOptions(track.keys.front());
  }
  if (options.overwrite) {
    text += " --overwrite";
  }
  for (const cli::GivenOption& given : options.given) {
    text += ' ' + given.name + (given.value.empty() ? "" : ' ' + quotedForShell(given.value));
  }
  return text;
}

}  // namespace vantorel::view
