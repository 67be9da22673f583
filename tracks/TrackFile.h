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

// Every format, in the order in which texts are tried for them.
std::span<const Format* const> formats();

// The format of that name, or null.
const Format* formatNamed(std::string_view name);

// The format of a text by its content; where that does not tell, by the ending of the file's name; null if neither
// does.
const Format* detectFormat(std::string_view text, std::string_view file);

// A file's content and what messages call it. The text must outlive the call only.
struct TrackSource {
  std::string file;
  std::string_view text;
};

struct ReadOptions {
  const Format* format = nullptr;           // null: found by content
  std::optional<double> frames_per_second;  // for formats with clock times
};

struct ReadTrack {
  CornerTrack track;  // as the file says it, in the file's conventions
  const Format* format = nullptr;
  std::vector<std::string> notes;  // what was left out or taken for granted, each to be reported once
};

// Reads one file with four points, or four files of one format with a point each, in the order ul, ur, ll, lr unless
// their points' or their own names tell another. Errors name file, line and field. Time and memory are linear in the
// texts.
host::Result<ReadTrack> readTrack(std::span<const TrackSource> sources, const ReadOptions& options = {});

// The whole stream's bytes, up to 512 MiB; `name` is what errors call it.
host::Result<std::string> readStream(std::istream& stream, const std::string& name);

struct WriteOptions {
  std::vector<Corner> corners{kUpperLeft, kUpperRight, kLowerLeft, kLowerRight};  // which ones this file gets
  Size frame;  // the size of the picture that the track's pixels are of; zero if not known
};

// The text of a file in that format. `track` holds pixels from the upper left, as resolveTrack() gives them, with every
// key complete. Formats that expect a position on every frame, or cannot say how the corners move between two keys,
// get those between keys too. Fails where the format needs
// the picture's size and it is not known, or cannot hold the track.
host::Result<std::string> writeTrack(const CornerTrack& track, const Format& format, const WriteOptions& options);

}  // namespace vantorel::tracks
