// The corners file that the page loads and saves.
#pragma once

#include <optional>
#include <string>

#include "cli/shots/Shot.h"

namespace vantorel::view {

// Remembers the file's content as last read or written here, to detect changes by other programs.
class CornersFile {
 public:
  // The options must outlive it. Must be constructed before the file is read. Throws CommandError if the file cannot be
  // read.
  explicit CornersFile(const cli::TrackOptions& options);

  // Why the page cannot save to the file, as a message for the user; empty if it can.
  std::string reasonNotToSave() const;

  // Whether the file's format can express interpolation other than linear.
  bool holdsInterpolation() const;

  // Whether another program has changed, created or removed the file. Throws CommandError.
  bool isChanged() const;

  // Writes the track to the file atomically. In an existing file, comments, other columns and members, and unchanged
  // keys keep their text. Throws CommandError.
  void save(const tracks::CornerTrack& track, host::Size layer);

  // The file's current corners. Throws CommandError.
  cli::CornersTrack read(const cli::FrameRate& rate);

 private:
  const cli::TrackOptions& options_;
  std::optional<std::string> known_;  // empty if there was no file, or none that can be saved to
};

}  // namespace vantorel::view
