// What readers hand over: points over time, which become the four corners of one track.
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
  Conventions conventions;                // the format's at first; the reader adds what the file says
  host::Interpolation interpolation = host::Interpolation::Linear;
  std::optional<SourceCorners> from;
  bool inverted = false;
  std::vector<std::string> notes;  // what the reader left out or took for granted
};

// One coordinate over time, for formats that keep x and y apart.
struct Channel {
  std::vector<std::pair<double, double>> keys;  // frame, value
  std::uint32_t line = 0;
  bool constant = false;  // one key, whose frame does not count
};

// The point of two channels: a key wherever either has one, the other interpolated there.
PointTrack joinChannels(std::string name, Channel x, Channel y, std::string_view file);

// Makes one track of the points of a document: the corners by the points' names where these tell, else in their order.
// Throws ReadFault, naming the file, where there are not four points, they have no keys, or two keys one frame.
CornerTrack joinPoints(TrackDocument document, const std::string& file);

}  // namespace vantorel::tracks
