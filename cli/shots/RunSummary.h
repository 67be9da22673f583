// Collects the results of a shot's frames, and reports them at the end.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "cli/shots/FrameReport.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Not safe to use from several threads at a time.
class RunSummary {
 public:
  // The report is empty for a frame that was already done.
  void add(std::int32_t frame, const std::optional<FrameReport>& report);
  void addFailed(std::int32_t frame) { failed_.push_back(frame); }

  bool anyFailed() const { return !failed_.empty(); }

  // Messages that are always printed, one per line: frames that failed, were skipped or rendered again, or took the
  // bilinear path.
  std::vector<std::string> messages(const Shot& shot) const;

  // "100 frames in 12.3 s, 8.1 frames/s, shot.0001.png to shot.0100.png"
  std::string lastLine(const Shot& shot, double seconds) const;

 private:
  using Frames = std::vector<std::int32_t>;

  std::int64_t rendered_ = 0;
  std::int64_t skipped_ = 0;
  Frames failed_;
  Frames bilinear_;
  std::map<std::string, Frames> redone_;  // by reason
};

// Frame numbers in ascending order, as ranges: "3, 7-9".
std::string frameList(std::vector<std::int32_t> frames);

}  // namespace vantorel::cli
