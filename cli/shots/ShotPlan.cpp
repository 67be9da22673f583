#include "cli/shots/ShotPlan.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

#include "cli/base/CommandError.h"
#include "cli/base/Memory.h"
#include "cli/base/StandardStreams.h"
#include "cli/base/Text.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/Reduce.h"
#include "cli/shots/InputGuard.h"
#include "cli/shots/ModuleLocation.h"
#include "cli/shots/Resume.h"
#include "cli/shots/ShotColour.h"
#include "cli/shots/ShotFiles.h"
#include "cli/shots/ShotMemory.h"
#include "cli/shots/Source.h"

namespace vantorel::cli {

namespace {

void refuseContradictions(const RenderOptions& options) {
  for (std::size_t c = 0; c < kCornerCount; ++c) {
    if (options.corners[c] && !options.track.files.empty()) {
      throw badArgument(fmt::format("--{}", kCornerNames[c]),
                        "cannot be given together with --corners; omit one of them");
    }
  }
  if (options.track.files.empty() && !options.track.first_option.empty()) {
    throw badArgument(options.track.first_option, "applies to the corners file; name one with --corners, or omit it");
  }
  if (options.colour.raw && (options.linear || !options.colour.first_option.empty())) {
    throw badArgument("--raw", fmt::format("cannot be given together with {}; omit one of them",
                                           options.linear ? "--linear" : options.colour.first_option));
  }
  if (!options.colour.plate.empty() && options.plate.empty()) {
    throw badArgument("--colorspace-over", "applies to the plate; name one with --over, or omit it");
  }
  if (options.at && options.track.files.empty()) {
    throw badArgument("--at", "applies to the corners file; name one with --corners, or omit it");
  }
  if (options.at && options.frames) {
    throw badArgument("--at", "is for stills; omit it, or omit --frames");
  }
  if (options.fit && options.size) {
    throw badArgument("--fit", "cannot be given together with --size; omit one of them");
  }
  if (options.fit && !options.plate.empty()) {
    throw badArgument("--fit", "cannot be given together with --over, whose picture sets the size; omit one of them");
  }
  if (options.fit && !options.matte.empty()) {
    throw badArgument("--fit", "cannot be given together with --matte, which covers a whole frame; omit one of them");
  }
  if (options.feather > 0.0 && options.shutter.degrees > 0.0) {
    throw badArgument("--feather", "cannot be given together with --shutter; omit one of them");
  }
  if (options.placement == host::Placement::Centres && options.shutter.degrees > 0.0) {
    throw badArgument("--shutter", "needs --placement outline; omit one of them");
  }
  if (options.placement == host::Placement::Centres && options.samples > 1) {
    throw badArgument("--samples", "must be 1 with --placement centres; omit one of them");
  }
  if (options.placement == host::Placement::Centres && options.edges == host::Edges::Crisp) {
    throw badArgument("--edges", "must be soft with --placement centres; omit one of them");
  }
}

CornersTrack cornersOf(const RenderOptions& options) {
  if (!options.track.files.empty()) {
    return readCorners(options.track, options.rate);
  }
  CornersTrack track;
  track.still = orLayersOwn(options.corners);
  return track;
}

FrameHeads probeFrame(const Shot& shot, std::int32_t frame) {
  FrameHeads heads{probePicture(shot.layer_files.path(frame), shot.layer_reading), std::nullopt, std::nullopt};
  if (shot.plate_files) {
    heads.plate = probePicture(shot.plate_files->path(frame), shot.plate_reading);
  }
  if (shot.matte_files) {
    heads.matte = probePicture(shot.matte_files->path(frame));
  }
  return heads;
}

bool isSequence(const std::optional<InputFiles>& files) {
  return files && files->hasNumber();
}

// The headers of the first frame's files or, with --keep-going, of the first frame that can be read.
FrameHeads probeShot(const Shot& shot) {
  for (std::int64_t index = 0;; ++index) {
    try {
      return probeFrame(shot, shot.frames.at(index));
    } catch (const CommandError&) {
      const bool all_still =
          !shot.layer_files.hasNumber() && !isSequence(shot.plate_files) && !isSequence(shot.matte_files);
      if (!shot.options.keep_going || all_still || index + 1 == shot.frames.count()) {
        throw;
      }
    }
  }
}

SampleType finer(SampleType a, SampleType b) {
  const SampleType most = std::max(a, b);
  // Half can represent all 8-bit values, but not all 16-bit values.
  return most == SampleType::Half && std::min(a, b) == SampleType::Bits16 ? SampleType::Float : most;
}

// `colour` may be null if nothing is converted.
PictureSource::Prepare preparation(const std::shared_ptr<ShotColour>& colour, int reduce_by) {
  return [=](Picture& picture, const std::string& path) {
    if (colour) {
      colour->enter(picture, ColourRole::Plate, path);
    }
    if (reduce_by > 1) {
      picture.pixels = reduced(std::as_const(picture.pixels).view(), reduce_by);
    }
  };
}

// Crops a picture of the layer, in place.
void cropLayer(Picture& picture, const Crop& crop, const std::string& path) {
  const auto part = remaining(crop, picture.info.size);
  if (!part) {
    throw fileFailure(path, "--crop " + part.error());
  }
  picture.crop = *part;
  picture.info.size = {part->width(), part->height()};
}

// Replaces the visible part by an enlarged picture. `info.size` is kept, since the corners' percentages refer to it.
void enlargeLayer(Picture& picture, const Enlargement& by, EnlargeFilter filter) {
  picture.pixels = enlarged(shownPixels(picture), enlargedSize(picture.info.size, by), filter);
  picture.crop.reset();
}

PictureSource::Prepare layerPreparation(const Shot& shot) {
  return [enlargement = shot.enlargement, colour = shot.colour, crop = shot.options.crop,
          filter = shot.options.enlarge](Picture& picture, const std::string& path) {
    if (colour) {
      colour->enter(picture, ColourRole::Layer, path);
    }
    if (crop) {
      cropLayer(picture, *crop, path);
    }
    if (filter && enlargement != Enlargement{}) {
      enlargeLayer(picture, enlargement, *filter);
    }
  };
}

// The size of the visible part of the layer.
host::Size shownSize(const RenderOptions& options, host::Size layer) {
  if (!options.crop) {
    return layer;
  }
  const auto part = remaining(*options.crop, layer);
  if (!part) {
    throw badArgument("--crop", part.error());
  }
  return {part->width(), part->height()};
}

void requireMatteSize(const Shot& shot, const PictureInfo& matte) {
  if (matte.size != shot.frame_size) {
    throw fileFailure(shot.matte_files->path(shot.frames.first),
                      fmt::format("its size is {}, the output's is {}; give a matte of the output's size",
                                  toText(matte.size), toText(shot.frame_size)));
  }
}

void requirePlateSize(const RenderOptions& options, const PictureInfo& plate) {
  if (options.size && *options.size != plate.size) {
    throw badArgument("--size", fmt::format("{} is not the plate's size, {}; omit --size", toText(*options.size),
                                            toText(plate.size)));
  }
}

void noteViews(Shot& shot, const InputFiles& files, const PictureInfo& info) {
  if (info.views.size() > 1 && shot.options.selection.part.empty() && shot.options.selection.layer.empty()) {
    shot.notes.push_back(
        fmt::format("{}: holds the views {}; the first is used, and --part or --layer-name chooses "
                    "another",
                    files.path(shot.frames.first), fmt::join(info.views, ", ")));
  }
}

// Which of the file's frames a still shows that was told none.
void noteStillFrame(Shot& shot) {
  if (shot.options.at || shot.options.frames || !shot.corners.read || shot.corners.read->track.keys.size() < 2) {
    return;
  }
  const tracks::CornerTrack& track = shot.corners.read->track;
  shot.notes.push_back(
      fmt::format("{}: has corners for frames {:g} to {:g}; the still shows frame {}, and --at chooses "
                  "another",
                  track.source, track.keys.front().frame, track.keys.back().frame, shot.frames.first));
}

// Whether 8 bits would lose colour in nearly transparent pixels, where dividing by alpha magnifies the rounding. A
// still is searched for such pixels, and kept in `read` if it has none; a sequence with alpha is assumed to have some.
bool needsDeeperAlpha(const InputFiles& files, const PictureInfo& info, const ReadingOptions& reading,
                      std::int32_t frame, std::optional<Picture>& read) {
  if (!info.is_unassociated || info.samples != SampleType::Bits8) {
    return false;
  }
  if (!files.hasNumber()) {
    read = readUnlessSoft(files.path(frame), reading);
  }
  return !read;
}

// Stills that have been read at 8 bits to examine their pixels.
struct ReadStills {
  std::optional<Picture> layer;
  std::optional<Picture> plate;
};

host::Depth renderingDepth(const Shot& shot, const FrameHeads& heads, SampleType source, ReadStills& read) {
  if (shot.options.linear || (shot.colour && shot.colour->converts())) {
    return host::Depth::Float;
  }
  const host::Depth depth = renderDepth(shot.options.depth, source);
  const std::int32_t frame = shot.frames.first;
  const bool fades = !heads.plate && (shot.options.opacity < 1.0 || shot.options.feather > 0.0 || heads.matte);
  const bool deeper =
      shot.options.depth == DepthChoice::Auto && depth == host::Depth::Bits8 &&
      (fades || needsDeeperAlpha(shot.layer_files, heads.layer, shot.layer_reading, frame, read.layer) ||
       (heads.plate && needsDeeperAlpha(*shot.plate_files, *heads.plate, shot.plate_reading, frame, read.plate)));
  return deeper ? host::Depth::Bits16 : depth;
}

// Determines sizes and depths from the headers of the files.
void planPictures(Shot& shot, const FrameHeads& heads, ReadStills& read) {
  const RenderOptions& options = shot.options;
  if (heads.plate) {
    requirePlateSize(options, *heads.plate);
  }
  const SampleType source = heads.plate ? finer(heads.layer.samples, heads.plate->samples) : heads.layer.samples;
  if (shot.format != nullptr) {
    shot.samples = outputSamples(*shot.format, options.depth, source);
  }
  if (shot.passes_plate && heads.plate->format == "openexr" && options.depth == DepthChoice::Auto) {
    // Programs that read the plate expect the same type back: half stays half.
    shot.samples = heads.plate->samples;
  }
  if (!options.colour.raw) {
    shot.colour = std::make_shared<ShotColour>(shot, heads);
  }
  shot.depth = renderingDepth(shot, heads, source, read);
  shot.layer_size = shownSize(options, heads.layer.size);
  shot.frame_size = options.size ? *options.size : (heads.plate ? heads.plate->size : shot.layer_size);
  if (heads.matte) {
    requireMatteSize(shot, *heads.matte);
  }
  if (shot.format != nullptr && !options.fit) {
    requireSizeHeld(*shot.format, options.output, host::downsampled(shot.frame_size, options.downsample));
  }
}

// Limited by the available memory; a smaller enlargement is reported.
void planEnlargement(Shot& shot, host::Size layer) {
  if (!shot.options.enlarge) {
    return;
  }
  const host::Size shown = shownSize(shot.options, layer);
  const Enlargement wanted = enlargementFor(toAnimation(shot.corners, shown, shot.frame_size, shot.options.rate),
                                            sourceOf(shot, shown), shown);
  constexpr double kMemoryShare = 0.25;
  const double most_bytes = kMemoryShare * availableMemory().value_or(HUGE_VAL);
  shot.enlargement = limited(wanted, shown, shot.depth, most_bytes);
  if (shot.enlargement != wanted) {
    shot.notes.push_back(
        fmt::format("--enlarge: the layer is enlarged {}x{} times, not {}x{}, which would be too large",
                    shot.enlargement.x, shot.enlargement.y, wanted.x, wanted.y));
  }
}

}  // namespace

Shot planShot(const RenderOptions& options, std::optional<CornersTrack> corners) {
  refuseContradictions(options);
  Shot shot;
  shot.options = options;
  planFiles(shot);
  // The first and the last frame are the furthest in time.
  timeOf(shot.frames.first, options.rate);
  timeOf(shot.frames.last, options.rate);
  if (!options.overwrite && shot.format != nullptr) {
    refuseToReplaceInputs(shot);
  }
  if (options.colour.raw) {
    shot.notes.push_back("values are used without conversion, whatever colour spaces the files are in (--raw)");
  }
  shot.corners = corners ? *std::move(corners) : cornersOf(options);
  refuseSourceContradictions(options, shot.corners);

  const FrameHeads heads = probeShot(shot);
  ReadStills read;
  planPictures(shot, heads, read);
  if (heads.plate) {
    noteViews(shot, *shot.plate_files, *heads.plate);
  } else {
    noteViews(shot, shot.layer_files, heads.layer);
  }
  sourceOf(shot, shot.layer_size);  // reports errors in it now
  planEnlargement(shot, heads.layer.size);
  noteStillFrame(shot);
  if (shot.corners.read) {
    tellNotes(resolveCorners(shot.corners, heads.layer.size, shot.frame_size).notes);
  }
  // Frames on standard output must be in order.
  shot.frames_in_flight = isStandardStream(options.output) ? 1 : framesInFlight(shot, heads);
  shot.threads_per_frame = std::max(1u, options.threads / static_cast<unsigned>(shot.frames_in_flight));

  shot.layer =
      std::make_unique<PictureSource>(shot.layer_files, shot.depth, layerPreparation(shot), shot.layer_reading);
  if (shot.plate_files) {
    shot.plate = std::make_unique<PictureSource>(*shot.plate_files, shot.depth,
                                                 preparation(shot.colour, options.downsample), shot.plate_reading);
    if (read.plate && shot.depth == host::Depth::Bits8) {
      shot.plate->adopt(*std::move(read.plate), shot.frames.first);
    }
  }
  if (read.layer && shot.depth == host::Depth::Bits8) {
    shot.layer->adopt(*std::move(read.layer), shot.frames.first);
  }
  if (shot.matte_files) {
    shot.matte =
        std::make_unique<PictureSource>(*shot.matte_files, shot.depth, preparation(nullptr, options.downsample));
  }
  shot.module = loadModule(options.module);
  shot.settings = shot.format == nullptr ? 0 : commonSettings(shot, heads.layer.size);
  return shot;
}

}  // namespace vantorel::cli
