#include "cli/shots/RunSummary.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "cli/base/StandardStreams.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

// "frame 3", "frames 3, 7-9"
std::string namedFrames(const std::vector<std::int32_t>& frames) {
  return fmt::format("{} {}", frames.size() == 1 ? "frame" : "frames", frameList(frames));
}

}  // namespace

void RunSummary::add(std::int32_t frame, const std::optional<FrameReport>& report) {
  if (!report) {
    ++skipped_;
    return;
  }
  ++rendered_;
  if (report->path == host::RenderPath::Bilinear) {
    bilinear_.push_back(frame);
  }
  if (!report->redone_because.empty()) {
    redone_[report->redone_because].push_back(frame);
  }
}

std::vector<std::string> RunSummary::messages(const Shot& shot) const {
  const std::string all = counted(shot.frames.count(), "frame");
  std::vector<std::string> lines;
  if (skipped_ > 0) {
    lines.push_back(fmt::format("skipped {} of {}, already done and newer than the inputs", skipped_, all));
  }
  for (const auto& [reason, frames] : redone_) {
    lines.push_back(fmt::format("rendered again, {}: {}", reason, namedFrames(frames)));
  }
  if (!bilinear_.empty()) {
    const bool mixed = static_cast<std::int64_t>(bilinear_.size()) < rendered_;
    const std::string which = shot.frames.count() == 1 ? "the picture" : namedFrames(bilinear_);
    lines.push_back(
        fmt::format("{} drawn by bilinear mapping{}, since the corners do not form a convex quadrilateral{}",
                    which + (bilinear_.size() == 1 ? " was" : " were"), mixed ? " and the others in perspective" : "",
                    mixed ? "; the picture jumps where the mapping changes" : ""));
  }
  if (!failed_.empty()) {
    lines.push_back(fmt::format("{} of {} failed: {}; fix their files and run again with --resume", failed_.size(), all,
                                frameList(failed_)));
  }
  return lines;
}

std::string RunSummary::lastLine(const Shot& shot, double seconds) const {
  const std::string first = outputName(shot.output.path(shot.frames.first));
  std::string line = fmt::format("{} in {:.1f} s", counted(rendered_, "frame"), seconds);
  if (rendered_ > 1 && seconds > 0) {
    line += fmt::format(", {:.1f} frames/s", static_cast<double>(rendered_) / seconds);
  }
  const bool one_file = shot.frames.count() == 1 || !shot.output.hasNumber();
  return line + ", " + (one_file ? first : first + " to " + shot.output.path(shot.frames.at(shot.frames.count() - 1)));
}

std::string frameList(std::vector<std::int32_t> frames) {
  std::sort(frames.begin(), frames.end());
  std::vector<std::string> ranges;
  for (std::size_t first = 0; first < frames.size();) {
    std::size_t last = first;
    while (last + 1 < frames.size() && frames[last + 1] == frames[last] + 1) {
      ++last;
    }
    ranges.push_back(first == last ? fmt::format("{}", frames[first])
                                   : fmt::format("{}-{}", frames[first], frames[last]));
    first = last + 1;
  }
  return fmt::format("{}", fmt::join(ranges, ", "));
}

}  // namespace vantorel::cli
