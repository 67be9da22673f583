// A human-readable summary of a track.
#pragma once

#include <string>
#include <vector>

#include "tracks/CornerTrack.h"

namespace vantorel::tracks {

struct TrackSummary {
  std::size_t keys = 0;
  host::Interpolation interpolation = host::Interpolation::Linear;
  std::size_t source_keys = 0;  // of the part of the layer that is drawn onto the corners; 0: all of it
  Point source_least;           // the upper left of the bounding box of all its corners, in pixels of the layer
  Point source_most;
  double first_frame = 0.0;
  double last_frame = 0.0;
  std::vector<double> frames_without_key;  // whole frames between the first and the last
  Point least;                             // the upper left of the bounding box of all corners, in pixels
  Point most;
  double fastest = 0.0;        // the largest move of a corner, in pixels a frame
  double fastest_frame = 0.0;  // the frame at the end of that move
  std::size_t fastest_corner = 0;
  std::vector<double> degenerate;  // all corners on a line, or nearly
  std::vector<double> crossing;    // edges cross
  std::vector<double> bilinear;    // drawn by the bilinear mapping rather than in perspective
};

// Summarises a track in pixels whose keys are complete. The lists also contain whole frames between keys if the track
// spans at most a million frames.
TrackSummary summarize(const CornerTrack& track);

// A few lines of text, each ended by a line break.
std::string summaryText(const TrackSummary& summary);

}  // namespace vantorel::tracks
