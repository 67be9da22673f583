// What a track format is: how its files are recognised, read and written.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "tracks/PointTracks.h"

namespace vantorel::tracks {

// One file's text, and what the formats may need to know besides.
struct TrackText {
  std::string_view text;                    // without a byte order mark
  std::string_view file;                    // as messages name it
  std::optional<double> frames_per_second;  // for clock times; empty where it is not known
};

// Which corners a file gets, in the order in which it gets them.
using CornerList = std::vector<Corner>;

struct Format {
  std::string_view name;         // as options name it: "nk"
  std::string_view description;  // a phrase for lists
  std::string_view extension;    // the usual ending of a file's name, with its dot
  Conventions conventions;       // what the format itself says of its numbers
  bool sparse = false;           // keys may be far apart: what is between two is no gap
  bool one_point_a_file = false;

  // Whether the text is in this format, by its first lines.
  bool (*sniff)(std::string_view text) = nullptr;
  // Fills the points, and what else the file says. Throws ReadFault.
  void (*read)(const TrackText& text, TrackDocument& document) = nullptr;
  // Adds the file's text. The positions are in the format's conventions, and every key complete.
  void (*write)(const CornerTrack& track, const CornerList& corners, std::string& text) = nullptr;

  // What the files can say of the way between two keys, besides that it is straight and even.
  bool can_hold = false;
  bool can_smooth = false;
  bool can_name_source = false;  // CornerTrack::source_keys
};

}  // namespace vantorel::tracks
