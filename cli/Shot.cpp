#include "cli/Shot.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>

#include "cli/ColourConversion.h"
#include "cli/CommandError.h"
#include "cli/Composite.h"
#include "cli/ImageReader.h"
#include "cli/Memory.h"
#include "cli/ModuleLocation.h"
#include "cli/OutputFile.h"
#include "cli/SizeArgument.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

// More frames at once than this gain nothing: the threads that are left over share the frames' rows.
constexpr int kMostFramesInFlight = 16;

constexpr const char* kCornerOptions[kCornerCount] = {"--ul", "--ur", "--ll", "--lr"};

void refuseContradictions(const RenderOptions& options) {
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    if (options.corners[c] && !options.corners_file.empty()) {
      throw badArgument(kCornerOptions[c], "cannot be given together with --corners; leave one of them away");
    }
  }
  if (options.fit && options.size) {
    throw badArgument("--fit", "cannot be given together with --size; leave one of them away");
  }
  if (options.fit && !options.plate.empty()) {
    throw badArgument("--fit",
                      "cannot be given together with --over, whose picture sets the size; leave one of them "
                      "away");
  }
  if (options.linear && (options.depth == DepthChoice::Bits8 || options.depth == DepthChoice::Bits16)) {
    throw badArgument("--linear", "renders in float; leave --depth away, or give --depth float");
  }
}

// The files of an input or of the output. Without --frames every character of the name stands for itself.
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
  if (frames.count() > 1 && !files.hasNumber()) {
    throw badArgument("--output", fmt::format("'{}' has no place for the frame number, so that every frame would "
                                              "replace the one before; put %04d or #### into the name",
                                              options.output));
  }
  requireWritablePlace(files.path(frames.first));
  return files;
}

CornersTrack cornersOf(const RenderOptions& options) {
  if (!options.corners_file.empty()) {
    return readCorners(options.corners_file);
  }
  constexpr Coordinate kNear{0.0, true};
  constexpr Coordinate kFar{100.0, true};
  const CornerPositions layers_own{{{kNear, kNear}, {kFar, kNear}, {kNear, kFar}, {kFar, kFar}}};
  CornersKey key;
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    key.corners[c] = options.corners[c].value_or(layers_own[c]);
  }
  return {"", {key}, host::Interpolation::Linear};
}

struct Heads {
  PictureInfo layer;
  std::optional<PictureInfo> plate;
};

Heads probeFrame(const FramePattern& layer, const std::optional<FramePattern>& plate, std::int32_t frame) {
  Heads heads{probePicture(layer.path(frame)), std::nullopt};
  if (plate) {
    heads.plate = probePicture(plate->path(frame));
  }
  return heads;
}

// The first frame's files; where it is to keep going, those of the first frame that can be read.
Heads probeShot(const FramePattern& layer, const std::optional<FramePattern>& plate, const FrameRange& frames,
                bool keep_going) {
  for (std::int64_t index = 0;; ++index) {
    try {
      return probeFrame(layer, plate, frames.at(index));
    } catch (const CommandError&) {
      const bool all_still = !layer.hasNumber() && !(plate && plate->hasNumber());
      if (!keep_going || all_still || index + 1 == frames.count()) {
        throw;
      }
    }
  }
}

SampleType finer(SampleType a, SampleType b) {
  const SampleType most = std::max(a, b);
  // Half holds what 8 bits hold, but not what 16 bits hold.
  return most == SampleType::Half && std::min(a, b) == SampleType::Bits16 ? SampleType::Float : most;
}

void requireMemory(const RenderOptions& options, std::uint64_t bytes_per_frame, host::Size size, host::Depth depth) {
  const auto available = availableMemory();
  if (!available || bytes_per_frame <= *available / 10 * 9) {
    return;
  }
  const std::string message =
      fmt::format("a picture of {} at {} bits needs {} of memory and {} are free; {}", toText(size),
                  static_cast<int>(depth), memoryText(bytes_per_frame), memoryText(*available),
                  options.size ? "give a smaller size" : "give a smaller picture, a lower --depth or a --size");
  throw options.size ? badArgument("--size", message) : fileFailure(options.layer, message);
}

std::uint64_t bytesPerFrame(const Shot& shot, const Heads& heads) {
  const int n = shot.options.downsample;
  std::uint64_t bytes = pictureBytes(heads.layer.size, shot.depth);
  if (n > 1) {
    bytes += pictureBytes(host::downsampled(heads.layer.size, n), shot.depth);
  }
  if (heads.plate) {
    bytes += pictureBytes(heads.plate->size, shot.depth);
  }
  return bytes + pictureBytes(host::downsampled(shot.frame_size, n), shot.depth);
}

int framesInFlight(const RenderOptions& options, const FrameRange& frames, std::uint64_t bytes_each) {
  std::int64_t most = std::min<std::int64_t>({options.threads, frames.count(), kMostFramesInFlight});
  // Half of what is free leaves room for what codecs and the host take.
  if (const auto available = availableMemory(); available && bytes_each > 0) {
    most = std::min(most, static_cast<std::int64_t>(*available / 2 / bytes_each));
  }
  return static_cast<int>(std::max<std::int64_t>(1, most));
}

PictureSource::Prepare preparation(bool linear, int reduce_by) {
  return [=](Picture& picture, const std::string& path) {
    if (linear) {
      toLinear(picture.pixels.view(), picture.colour_space, path);
    }
    if (reduce_by > 1) {
      picture.pixels = reduced(std::as_const(picture.pixels).view(), reduce_by);
    }
  };
}

void requirePlateSize(const RenderOptions& options, const PictureInfo& plate) {
  if (options.size && *options.size != plate.size) {
    throw badArgument("--size", fmt::format("{} is not the plate's size, {}; leave --size away", toText(*options.size),
                                            toText(plate.size)));
  }
}

bool isNewer(const std::string& output, const std::string& input) {
  std::error_code fault;
  const auto output_time = fs::last_write_time(output, fault);
  if (fault) {
    return false;
  }
  const auto input_time = fs::last_write_time(input, fault);
  return !fault && output_time > input_time;
}

}  // namespace

Shot planShot(const RenderOptions& options) {
  refuseContradictions(options);
  Shot shot;
  shot.options = options;
  shot.frames = options.frames.value_or(FrameRange{});
  shot.format = &formatForOutput("--output", options.output);
  // The first and the last frame are the furthest in time.
  timeOf(shot.frames.first, options.rate);
  timeOf(shot.frames.last, options.rate);
  const FramePattern layer_files = filesOf("LAYER", options.layer, options);
  std::optional<FramePattern> plate_files;
  if (!options.plate.empty()) {
    plate_files = filesOf("--over", options.plate, options);
  }
  shot.output = outputFiles(options, shot.frames);
  shot.corners = cornersOf(options);

  const Heads heads = probeShot(layer_files, plate_files, shot.frames, options.keep_going);
  if (heads.plate) {
    requirePlateSize(options, *heads.plate);
  }
  const SampleType source = heads.plate ? finer(heads.layer.samples, heads.plate->samples) : heads.layer.samples;
  shot.depth = options.linear ? host::Depth::Float : renderDepth(options.depth, source);
  shot.samples = outputSamples(*shot.format, options.depth, source);
  shot.frame_size = options.size ? *options.size : (heads.plate ? heads.plate->size : heads.layer.size);
  if (!options.fit) {
    requireSizeHeld(*shot.format, options.output, host::downsampled(shot.frame_size, options.downsample));
  }
  const std::uint64_t bytes_each = bytesPerFrame(shot, heads);
  requireMemory(options, bytes_each, shot.frame_size, shot.depth);
  shot.frames_in_flight = framesInFlight(options, shot.frames, bytes_each);
  shot.threads_per_frame = std::max(1u, options.threads / static_cast<unsigned>(shot.frames_in_flight));

  shot.layer = std::make_unique<PictureSource>(layer_files, shot.depth, preparation(options.linear, 1));
  if (plate_files) {
    shot.plate =
        std::make_unique<PictureSource>(*plate_files, shot.depth, preparation(options.linear, options.downsample));
  }
  shot.module = loadModule(options.module);
  return shot;
}

bool isFrameDone(const Shot& shot, std::int32_t frame, host::Size output_size) {
  const std::string output = shot.output.path(frame);
  return isNewer(output, shot.layer->path(frame)) && (!shot.plate || isNewer(output, shot.plate->path(frame))) &&
         (shot.options.corners_file.empty() || isNewer(output, shot.options.corners_file)) &&
         isWholePicture(output, output_size);
}

}  // namespace vantorel::cli
