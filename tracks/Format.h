// A track format: how its files are recognised, read and written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tracks/PointTracks.h"

namespace vantorel::tracks {

// One file's text, and what else the formats may need to know.
struct TrackText {
  std::string_view text;                    // without a byte order mark
  std::string_view file;                    // its name in messages
  std::optional<double> frames_per_second;  // for clock times; empty if unknown
};

// The corners to write to a file, in that order.
using CornerList = std::vector<Corner>;

struct Format {
  std::string_view name;         // its name in options: "nk"
  std::string_view description;  // a phrase for lists
  std::string_view extension;    // the usual ending of a file's name, with its dot
  Conventions conventions;       // what the format itself defines about its numbers
  bool sparse = false;           // keys may be far apart: frames between two are not a gap
  bool one_point_a_file = false;

  // Whether the text is in this format, by its first lines.
  bool (*sniff)(std::string_view text) = nullptr;
  // Fills the points and everything else that the file says. Throws ReadFault.
  void (*read)(const TrackText& text, TrackDocument& document) = nullptr;
  // Appends the file's text. The positions are in the format's conventions, and every key is complete.
  void (*write)(const CornerTrack& track, const CornerList& corners, std::string& text) = nullptr;

  // Which interpolation between keys the files can express, other than linear.
  bool can_hold = false;
  bool can_smooth = false;
  bool can_name_source = false;  // CornerTrack::source_keys
};

}  // namespace vantorel::tracks
