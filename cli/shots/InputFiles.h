// The files of an input for the shot's frames; their numbers may differ from the frames' numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "cli/base/FramePattern.h"
#include "cli/base/FrameRange.h"

namespace vantorel::cli {

// What follows a sequence's last picture.
enum class SequenceEnd { Hold, Loop, Stop };

class InputFiles {
 public:
  InputFiles() = default;
  explicit InputFiles(FramePattern files) : files_(std::move(files)) {}

  bool hasNumber() const { return files_.hasNumber(); }

  // The file shown at that frame of the shot.
  std::string path(std::int32_t frame) const { return files_.path(numberAt(frame)); }

  // Whether all later frames show the same file: a still, or the last one of a sequence that is held.
  bool isHeld(std::int32_t frame) const;

  // Shows the first file that exists at `start`, the next one at the frame after it, and so on. Throws CommandError,
  // naming the files if there are none, or naming `option` if one of `frames` needs a number beyond 32 bits.
  void startAt(std::int32_t start, const FrameRange& frames, const std::string& option);

  // Continues as `end` says after the last existing file. Returns the frame that shows that file, which may be before
  // the shot. Throws CommandError, naming the files, if there are none.
  std::int64_t endAs(SequenceEnd end);

 private:
  std::int32_t numberAt(std::int32_t frame) const;
  FramePattern::Numbers existing() const;

  FramePattern files_;
  std::int64_t shift_ = 0;                      // added to a frame of the shot to get the file's number
  std::optional<FramePattern::Numbers> ended_;  // the range of files for hold or loop
  SequenceEnd end_ = SequenceEnd::Stop;
};

}  // namespace vantorel::cli
