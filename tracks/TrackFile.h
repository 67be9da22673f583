// Reading and writing tracks in any of the known formats.
#pragma once

#include <iosfwd>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/Error.h"
#include "tracks/Format.h"

namespace vantorel::tracks {

// All formats, in the order in which they are tried on a text.
std::span<const Format* const> formats();

// The format of that name, or null.
const Format* formatNamed(std::string_view name);

// The format of a text, detected by its content or else by the file name's extension; null if unknown.
const Format* detectFormat(std::string_view text, std::string_view file);

// A file's content and its name in messages. The text need only outlive the call.
struct TrackSource {
  std::string file;
  std::string_view text;
};

struct ReadOptions {
  const Format* format = nullptr;           // null: detected by content
  std::optional<double> frames_per_second;  // for formats with clock times
};

struct ReadTrack {
  CornerTrack track;  // as in the file, in the file's conventions
  const Format* format = nullptr;
  std::vector<std::string> notes;  // what was skipped or assumed, each to be reported once
};

// Reads one file with four points, or four files of one format with a point each, in the order ul, ur, ll, lr unless
// the names of the points or of the files say otherwise. Errors name file, line and field. Time and memory are linear
// in the texts.
host::Result<ReadTrack> readTrack(std::span<const TrackSource> sources, const ReadOptions& options = {});

// The whole stream's bytes, up to 512 MiB; `name` is its name in errors.
host::Result<std::string> readStream(std::istream& stream, const std::string& name);

struct WriteOptions {
  std::vector<Corner> corners{kUpperLeft, kUpperRight, kLowerLeft, kLowerRight};  // the ones to write to this file
  Size frame;  // the size of the picture that the track's pixels refer to; zero if unknown
};

// The text of a file in that format. `track` holds pixels from the upper left, as resolveTrack() gives them, with every
// key complete. Formats that expect a position on every frame, or cannot express the interpolation between keys, also
// get the frames between keys. Fails if the format needs the picture's size and it is unknown, or if the format cannot
// represent the track.
host::Result<std::string> writeTrack(const CornerTrack& track, const Format& format, const WriteOptions& options);

}  // namespace vantorel::tracks
