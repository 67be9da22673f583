#include "cli/shots/ShotFiles.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/StandardStreams.h"
#include "cli/pictures/OutputFile.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

// The files of an input or of the output. Without --frames the name is taken literally.
FramePattern filesOf(const std::string& input, const std::string& name, const RenderOptions& options) {
  if (options.frames) {
    return FramePattern::parse(input, name);
  }
  std::error_code fault;
  if (name.find_first_of("#%") != std::string::npos && !fs::exists(name, fault) &&
      FramePattern::parse(input, name).hasNumber()) {
    throw badArgument(input,
                      fmt::format("'{}' stands for a sequence; say which frames with --frames FIRST-LAST", name));
  }
  return FramePattern::literal(name);
}

FramePattern outputFiles(const RenderOptions& options, const FrameRange& frames) {
  FramePattern files = filesOf("--output", options.output, options);
  if (frames.count() > 1 && !files.hasNumber() && !isStandardStream(options.output)) {
    throw badArgument("--output", fmt::format("'{}' has no placeholder for the frame number, so every frame would "
                                              "replace the one before; put %04d or #### into the name",
                                              options.output));
  }
  requireWritablePlace(files.path(frames.first));
  return files;
}

InputFiles inputFiles(const std::string& input, const std::string& name, std::optional<std::int32_t> start,
                      const char* start_option, const Shot& shot) {
  if (isStandardStream(name) && openablePath(name) == name) {
    throw badArgument(input, "cannot be standard input here; give a file");
  }
  InputFiles files(filesOf(input, name, shot.options));
  if (start) {
    if (!files.hasNumber()) {
      throw badArgument(start_option, fmt::format("is for sequences and '{}' is a still; omit it, or give --frames and "
                                                  "a name with %04d or ####",
                                                  name));
    }
    files.startAt(*start, shot.frames, start_option);
  }
  return files;
}

void planLayerEnd(Shot& shot) {
  if (!shot.layer_files.hasNumber()) {
    throw badArgument("--layer-end", "is for sequences and the layer is a still; omit it");
  }
  const std::int64_t last_frame = shot.layer_files.endAs(*shot.options.layer_end);
  if (*shot.options.layer_end != SequenceEnd::Stop || last_frame >= shot.frames.last) {
    return;
  }
  if (last_frame < shot.frames.first) {
    throw badArgument("--layer-end", fmt::format("the layer stops at frame {}, before the first frame, {}; give a "
                                                 "higher --layer-start, or hold or loop",
                                                 last_frame, shot.frames.first));
  }
  shot.frames.last = static_cast<std::int32_t>(last_frame);
  shot.notes.push_back(fmt::format("the layer ends at frame {}, and the shot with it", shot.frames.last));
}

// Decides how the files are read, and whether the plate's other contents are passed on to the output. They are not at a
// lower resolution, where they would not match the picture.
void planReading(Shot& shot) {
  shot.layer_reading.alpha = shot.options.alpha;
  (shot.plate_files ? shot.plate_reading : shot.layer_reading).selection = shot.options.selection;
  shot.passes_plate =
      shot.plate_files && shot.format != nullptr && shot.format->passes_parts && shot.options.downsample == 1;
  shot.plate_reading.keep_overscan = shot.passes_plate;
  shot.plate_reading.keep_extra = shot.passes_plate;
}

// Two inputs cannot share standard input, and standard output cannot carry both a picture and text.
void refuseSharedStreams(const RenderOptions& options) {
  std::string user;
  for (const auto& [option, file] :
       {std::pair{"LAYER", options.layer}, std::pair{"--over", options.plate}, std::pair{"--matte", options.matte},
        std::pair{"--corners", options.track.files}}) {
    if (!isStandardStream(file)) {
      continue;
    }
    if (!user.empty()) {
      throw badArgument(option, fmt::format("cannot be standard input, which {} reads already; give a file", user));
    }
    user = option;
  }
  if (!isStandardStream(options.output)) {
    return;
  }
  if (options.json) {
    throw badArgument("--json", "writes to standard output, where the picture goes; omit it, or write to a file");
  }
  if (options.resume) {
    throw badArgument("--resume", "cannot check frames that go to standard output; omit it");
  }
}

}  // namespace

void planFiles(Shot& shot) {
  const RenderOptions& options = shot.options;
  refuseSharedStreams(options);
  const std::int32_t still = options.at.value_or(0);
  shot.frames = options.frames.value_or(FrameRange{still, still, 1});
  if (!options.output.empty()) {
    shot.format = &chosenFormat(options.output, options.format);
  }
  shot.layer_files = inputFiles("LAYER", options.layer, options.layer_start, "--layer-start", shot);
  if (options.layer_end) {
    planLayerEnd(shot);
  }
  if (!options.plate.empty()) {
    shot.plate_files = inputFiles("--over", options.plate, options.plate_start, "--over-start", shot);
  } else if (options.plate_start) {
    throw badArgument("--over-start", "applies to the plate; name one with --over, or omit it");
  }
  if (!options.matte.empty()) {
    shot.matte_files = inputFiles("--matte", options.matte, options.matte_start, "--matte-start", shot);
  } else if (options.matte_start) {
    throw badArgument("--matte-start", "applies to the matte; name one with --matte, or omit it");
  }
  if (shot.format != nullptr) {
    requireEncodingHeld(*shot.format, options.encoding);
    shot.output = outputFiles(options, shot.frames);
  }
  planReading(shot);
}

}  // namespace vantorel::cli
