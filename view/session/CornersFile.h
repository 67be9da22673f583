// The file of corners that the page loads and saves.
#pragma once

#include <optional>
#include <string>

#include "cli/shots/Shot.h"

namespace vantorel::view {

// Remembers what the file held when it was last read or written here, so that others' changes are noticed.
class CornersFile {
 public:
  // The options must outlive it. To be made before the file is read. Throws CommandError where it cannot be read.
  explicit CornersFile(const cli::TrackOptions& options);

  // Why the page cannot save to the file, as a message for people; empty where it can.
  std::string reasonNotToSave() const;

  // Whether the file can say that corners move otherwise than linearly.
  bool holdsInterpolation() const;

  // Whether somebody else has changed, made or removed the file. Throws CommandError.
  bool isChanged() const;

  // Writes the track there, whole or not at all. Of a file that is there, comments, further columns and members, and
  // the keys that have not changed stay as they are written. Throws CommandError.
  void save(const tracks::CornerTrack& track, host::Size layer);

  // The corners that it holds now. Throws CommandError.
  cli::CornersTrack read(const cli::FrameRate& rate);

 private:
  const cli::TrackOptions& options_;
  std::optional<std::string> known_;  // without a value where there was no file, or none that can be saved to
};

}  // namespace vantorel::view
