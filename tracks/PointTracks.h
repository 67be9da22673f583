// The readers' output: points over time, which become the four corners of one track.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

struct PointKey {
  double frame = 0.0;
  Point value;
  std::uint32_t line = 0;
  std::uint8_t percent = 0;  // bit 0 for x, bit 1 for y: in percent, whatever the track's units
};

struct PointTrack {
  std::string name;
  std::vector<PointKey> keys;
  bool constant = false;  // one key, which holds on every frame
};

// A file as its format's reader understood it.
struct TrackDocument {
  std::vector<PointTrack> points;
  std::vector<PointTrack> source_points;  // of the layer, in the order of Corner; empty: its outline
  Conventions conventions;                // initially the format's; the reader adds those of the file
  host::Interpolation interpolation = host::Interpolation::Linear;
  std::optional<SourceCorners> from;
  bool inverted = false;
  std::vector<std::string> notes;  // what the reader skipped or assumed
};

// One coordinate over time, for formats that store x and y separately.
struct Channel {
  std::vector<std::pair<double, double>> keys;  // frame, value
  std::uint32_t line = 0;
  bool constant = false;  // one key, whose frame is ignored
};

// The point of two channels: a key wherever either has one, the other interpolated there.
PointTrack joinChannels(std::string name, Channel x, Channel y, std::string_view file);

// Joins the points of a document into one track. The points' names decide which corner each one is, else their order.
// Throws ReadFault, naming the file, if there are not four points, if they have no keys, or if two keys have the same
// frame.
CornerTrack joinPoints(TrackDocument document, const std::string& file);

}  // namespace vantorel::tracks
