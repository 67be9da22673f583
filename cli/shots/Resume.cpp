#include "cli/shots/Resume.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <span>

#include "cli/base/Hash64.h"
#include "cli/pictures/FileRecord.h"
#include "cli/shots/ShotColour.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

bool isNewer(const std::string& output, const std::string& input) {
  std::error_code fault;
  const auto output_time = fs::last_write_time(output, fault);
  if (fault) {
    return false;
  }
  const auto input_time = fs::last_write_time(input, fault);
  return !fault && output_time > input_time;
}

// Standard input and pipes have no meaningful time: their content counts as new.
bool isNewerThanCorners(const std::string& output, const TrackOptions& track) {
  if (track.files.empty()) {
    return true;
  }
  const std::vector<std::string> files = trackFiles(track.files);
  return std::all_of(files.begin(), files.end(), [&](const std::string& file) {
    std::error_code fault;
    return fs::is_regular_file(file, fault) && isNewer(output, file);
  });
}

bool isNewerThanInputs(const Shot& shot, std::int32_t frame, const std::string& output) {
  return isNewer(output, shot.layer->path(frame)) && (!shot.plate || isNewer(output, shot.plate->path(frame))) &&
         (!shot.matte || isNewer(output, shot.matte->path(frame))) && isNewerThanCorners(output, shot.options.track);
}

std::uint64_t hashOf(const std::string& text) {
  Hash64 hash;
  hash.add(std::as_bytes(std::span(text)));
  return hash.value();
}

std::string stillText(const CornerPositions& corners) {
  std::string text;
  for (const CornerPosition& corner : corners) {
    for (const Coordinate& coordinate : {corner.x, corner.y}) {
      fmt::format_to(std::back_inserter(text), " {}{}", coordinate.value, coordinate.percent ? "%" : "");
    }
  }
  return text;
}

void addKeys(std::string& text, const std::vector<tracks::CornerKey>& keys) {
  for (const tracks::CornerKey& key : keys) {
    fmt::format_to(std::back_inserter(text), "{}", key.frame);
    for (const host::Point& point : key.points) {
      fmt::format_to(std::back_inserter(text), " {} {}", point.x, point.y);
    }
    text += '\n';
  }
}

std::string trackText(const tracks::CornerTrack& track) {
  std::string text = fmt::format("interpolation {}\n", static_cast<int>(track.interpolation));
  addKeys(text, track.keys);
  if (!track.source_keys.empty()) {
    text += "from\n";
    addKeys(text, track.source_keys);
  }
  return text;
}

std::string cornersText(const Shot& shot, host::Size layer) {
  return shot.corners.read ? trackText(resolveCorners(shot.corners, layer, shot.frame_size).track)
                           : stillText(shot.corners.still);
}

}  // namespace

const char* reasonToRedo(FrameState state) {
  switch (state) {
    case FrameState::Older:
      return "older than the inputs";
    case FrameState::NoRecord:
      return "without a record of how they were made";
    case FrameState::OtherSettings:
      return "made with other options";
    case FrameState::Damaged:
      return "damaged";
    case FrameState::Done:
    case FrameState::Missing:
      break;
  }
  return "";
}

std::uint64_t commonSettings(const Shot& shot, host::Size layer) {
  return hashOf(fmt::format("{}\nmodule {:x}\n{} {} {} {}x{}\n{}\n{}", shot.options.settings,
                            shot.module->info().version_word, shot.format->name, static_cast<int>(shot.samples),
                            static_cast<int>(shot.depth), shot.frame_size.width, shot.frame_size.height,
                            cornersText(shot, layer), shot.colour ? shot.colour->record() : ""));
}

std::uint64_t settingsOf(const Shot& shot, std::int32_t frame) {
  const auto name = [&](const std::optional<InputFiles>& files) { return files ? files->path(frame) : ""; };
  return hashOf(fmt::format("{:x}\nframe {}\nlayer {}\nplate {}\nmatte {}", shot.settings, frame,
                            shot.layer_files.path(frame), name(shot.plate_files), name(shot.matte_files)));
}

FrameState stateOf(const Shot& shot, std::int32_t frame) {
  const std::string output = shot.output.path(frame);
  std::error_code fault;
  if (!fs::exists(output, fault)) {
    return FrameState::Missing;
  }
  if (!isNewerThanInputs(shot, frame, output)) {
    return FrameState::Older;
  }
  switch (checkRecord(output, settingsOf(shot, frame))) {
    case RecordState::Matches:
      return FrameState::Done;
    case RecordState::Absent:
      return FrameState::NoRecord;
    case RecordState::OtherSettings:
      return FrameState::OtherSettings;
    case RecordState::Damaged:
      break;
  }
  return FrameState::Damaged;
}

}  // namespace vantorel::cli
