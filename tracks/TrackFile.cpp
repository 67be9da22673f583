#include "tracks/TrackFile.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <istream>

#include "tracks/CornerNames.h"
#include "tracks/Faults.h"
#include "tracks/WholeFrames.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

// A file's first lines are enough to recognise its format; this much, because other nodes may come before the one that
// counts.
constexpr std::size_t kSniffedBytes = 1u << 20;
// Ten hours with a key on every frame take a tenth of this.
constexpr std::size_t kLargestFile = 512u << 20;
constexpr std::size_t kReadAtOnce = 1u << 18;

// Formats that almost any text could pass for come last.
constexpr std::array<const Format*, 17> kFormats{
    &kUvJsonFormat,    &kJsonFormat,    &kNodeTextFormat,  &kMatchMoverFormat, &kFlameFormat,  &kShakeFormat,
    &kMayaLiveFormat,  &kPfTrackFormat, &kBlenderFormat,   &k3dePointsFormat,  &kUvTextFormat, &kMltFormat,
    &kSynthEyesFormat, &kBoujouFormat,  &kBenchmarkFormat, &kColumnsFormat,    &kCsvFormat};

std::string_view extensionOf(std::string_view file) {
  const std::size_t dot = file.rfind('.');
  return dot == std::string_view::npos ? std::string_view() : file.substr(dot);
}

std::string_view stemOf(std::string_view file) {
  const std::size_t slash = file.find_last_of("/\\");
  const std::string_view name = slash == std::string_view::npos ? file : file.substr(slash + 1);
  return name.substr(0, name.size() - extensionOf(name).size());
}

std::string formatNames() {
  std::string names;
  for (const Format* format : kFormats) {
    names += names.empty() ? "" : ", ";
    names += format->name;
  }
  return names;
}

const Format& formatOf(std::string_view text, const TrackSource& source, const ReadOptions& options) {
  if (options.format != nullptr) {
    return *options.format;
  }
  if (const Format* format = detectFormat(text, source.file)) {
    return *format;
  }
  Lines lines(text, source.file);
  if (!lines.nextContent()) {
    fail(source.file, 0, "", "holds no keys; export the track with a key on every frame");
  }
  lines.fail("", fmt::format("reads {}, which no known format begins with; export one of {}", quoted(lines.text()),
                             formatNames()));
}

std::string joinedNames(std::span<const TrackSource> sources) {
  std::string names;
  for (const TrackSource& source : sources) {
    names += names.empty() ? "" : ",";
    names += source.file;
  }
  return names;
}

// Reads one source and adds its points to the document.
void addSource(const TrackSource& source, const Format& format, const ReadOptions& options, bool alone,
               TrackDocument& document) {
  TrackDocument part;
  part.conventions = format.conventions;
  format.read({withoutByteOrderMark(source.text), source.file, options.frames_per_second}, part);
  if (!alone && part.points.size() == 1 && !cornerOfName(part.points[0].name)) {
    part.points[0].name = stemOf(source.file);
  }
  if (!alone) {
    for (PointTrack& point : part.points) {
      if (point.keys.empty()) {
        fail(source.file, 0, "", "holds no keys; export the track with a key on every frame");
      }
    }
  }
  std::move(part.points.begin(), part.points.end(), std::back_inserter(document.points));
  document.conventions = part.conventions;
  document.interpolation = part.interpolation;
  document.from = part.from;
  document.source_points = std::move(part.source_points);
  document.inverted = part.inverted;
  for (std::string& note : part.notes) {
    document.notes.push_back(fmt::format("{}: {}", source.file, note));
  }
}

ReadTrack readSources(std::span<const TrackSource> sources, const ReadOptions& options) {
  if (sources.empty()) {
    fail("", 0, "", "no corners file was given; give one, or four of one point each");
  }
  ReadTrack result;
  TrackDocument document;
  for (const TrackSource& source : sources) {
    const Format& format = formatOf(withoutByteOrderMark(source.text), source, options);
    if (result.format != nullptr && result.format != &format) {
      fail(source.file, 0, "",
           fmt::format("is in the format {}, the file before it in {}; give four of one format", format.name,
                       result.format->name));
    }
    result.format = &format;
    addSource(source, format, options, sources.size() == 1, document);
  }
  result.notes = std::move(document.notes);
  result.track = joinPoints(std::move(document), joinedNames(sources));
  return result;
}

// The track in a form that the format can represent: with keys on every frame if it cannot express the interpolation
// between keys.
CornerTrack withKeysFor(const Format& format, const CornerTrack& track) {
  if (!track.source_keys.empty() && !format.can_name_source) {
    fail(track.source, 0, "from",
         fmt::format("is a part of the layer, which the format {} cannot name; write json", format.name));
  }
  const bool is_told = track.interpolation == host::Interpolation::Linear ||
                       (track.interpolation == host::Interpolation::Hold ? format.can_hold : format.can_smooth);
  if (format.sparse && is_told) {
    return track;
  }
  CornerTrack whole = withWholeFrames(track);
  whole.interpolation = is_told ? track.interpolation : host::Interpolation::Linear;
  return whole;
}

// The track in the format's own conventions.
CornerTrack inConventions(CornerTrack track, const Format& format, Size frame) {
  Conventions conventions =
      overridden({Origin::UpperLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}}, format.conventions);
  const PictureSizes sizes{frame, frame};
  if (*missingSize(conventions, sizes) != '\0') {
    fail(track.source, 0, "", fmt::format("needs the picture size to be written as {}; give it", format.name));
  }
  if (frame.width > 0 && frame.height > 0) {
    conventions.size = frame;
    conventions.aspect = static_cast<double>(frame.width) / frame.height;
  }
  if (conventions.units == Units::CentreSpan && (frame.width < 2 || frame.height < 2)) {
    fail(track.source, 0, "", fmt::format("refers to a picture that is too small for {}", format.name));
  }
  const FrameMap map = frameMap(conventions, sizes);
  const double shift = conventions.counts_from.value_or(1) - 1;
  for (CornerKey& key : track.keys) {
    key.frame += shift;
    for (Point& point : key.points) {
      point = {map.x.fromPixels(point.x), map.y.fromPixels(point.y)};
    }
  }
  track.conventions = conventions;
  return track;
}

}  // namespace

std::span<const Format* const> formats() {
  return kFormats;
}

const Format* formatNamed(std::string_view name) {
  const auto* const found =
      std::find_if(kFormats.begin(), kFormats.end(), [&](const Format* format) { return format->name == name; });
  return found == kFormats.end() ? nullptr : *found;
}

const Format* detectFormat(std::string_view text, std::string_view file) {
  std::string_view head = withoutByteOrderMark(text).substr(0, kSniffedBytes);
  head.remove_prefix(std::min(head.find_first_not_of(" \t\r\n"), head.size()));
  for (const Format* format : kFormats) {
    if (format->sniff(head)) {
      return format;
    }
  }
  const std::string extension = lowerCase(extensionOf(file));
  // .txt files may be in any format.
  const auto* const found = std::find_if(kFormats.begin(), kFormats.end(), [&](const Format* format) {
    return format->extension == extension && extension != ".txt" && format != &kBlenderFormat;
  });
  return found == kFormats.end() ? nullptr : *found;
}

host::Result<ReadTrack> readTrack(std::span<const TrackSource> sources, const ReadOptions& options) {
  return resultOf([&] { return readSources(sources, options); });
}

host::Result<std::string> readStream(std::istream& stream, const std::string& name) {
  return resultOf([&] {
    std::string text;
    std::vector<char> buffer(kReadAtOnce);
    while (stream.read(buffer.data(), static_cast<std::streamsize>(buffer.size())) || stream.gcount() > 0) {
      text.append(buffer.data(), static_cast<std::size_t>(stream.gcount()));
      if (text.size() > kLargestFile) {
        fail(name, 0, "", "is larger than 512 MiB; give a corners file");
      }
    }
    if (stream.bad()) {
      fail(name, 0, "", "cannot be read; check the disk or the pipe");
    }
    return text;
  });
}

host::Result<std::string> writeTrack(const CornerTrack& track, const Format& format, const WriteOptions& options) {
  return resultOf([&] {
    const CornerTrack written = inConventions(withKeysFor(format, track), format, options.frame);
    std::string text;
    format.write(written, options.corners, text);
    return text;
  });
}

}  // namespace vantorel::tracks
