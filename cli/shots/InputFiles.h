// The files of an input over a shot's frames, which need not be numbered as the shot is.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "cli/base/FramePattern.h"
#include "cli/base/FrameRange.h"

namespace vantorel::cli {

// What is shown after a sequence's last picture.
enum class SequenceEnd { Hold, Loop, Stop };

class InputFiles {
 public:
  InputFiles() = default;
  explicit InputFiles(FramePattern files) : files_(std::move(files)) {}

  bool hasNumber() const { return files_.hasNumber(); }

  // The file that is shown at that frame of the shot.
  std::string path(std::int32_t frame) const { return files_.path(numberAt(frame)); }

  // Whether the frame's file is the one that all frames beyond its own show too: a still, or the last of a sequence
  // that is held.
  bool isHeld(std::int32_t frame) const;

  // Shows the first file that exists at `start`, the next one at the frame after it, and so on. Throws CommandError:
  // naming the files, where there are none; naming `option`, where one of `frames` needs a number beyond 32 bits.
  void startAt(std::int32_t start, const FrameRange& frames, const std::string& option);

  // Goes on after the last file that exists as `end` has it. Returns the frame that shows that file, which may lie
  // before the shot. Throws CommandError, naming the files, where there are none.
  std::int64_t endAs(SequenceEnd end);

 private:
  std::int32_t numberAt(std::int32_t frame) const;
  FramePattern::Numbers existing() const;

  FramePattern files_;
  std::int64_t shift_ = 0;                      // from a frame of the shot to the file's number
  std::optional<FramePattern::Numbers> ended_;  // the files that hold or loop go on from
  SequenceEnd end_ = SequenceEnd::Stop;
};

}  // namespace vantorel::cli
