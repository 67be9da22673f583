// Which frames to render, and their times.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/Instance.h"

namespace vantorel::cli {

// Frames first, first + step, ... up to and including last.
struct FrameRange {
  std::int32_t first = 0;
  std::int32_t last = 0;
  std::int32_t step = 1;

  std::int64_t count() const { return (std::int64_t{last} - first) / step + 1; }
  std::int32_t at(std::int64_t index) const { return static_cast<std::int32_t>(first + index * step); }
};

// "A-B", "A-BxS" or a single frame "A"; frame numbers may be negative. Throws CommandError naming `input`.
FrameRange parseFrameRange(const std::string& input, std::string_view text);

// Frames per second as scale / step, the form that the host uses: frame n is at n * step / scale seconds.
struct FrameRate {
  std::uint32_t scale = 24;
  std::int32_t step = 1;

  double seconds(double frame) const { return frame * step / scale; }
};

// "25", "12.5", "30000/1001"; 23.976, 29.97, 59.94 and 119.88 mean the broadcast rates 24000/1001 and so on. Throws
// CommandError naming `input`.
FrameRate parseFrameRate(const std::string& input, std::string_view text);

// Throws CommandError if the frame's time does not fit into the 32 bits that an effect receives.
host::FrameTime timeOf(std::int32_t frame, const FrameRate& rate);

}  // namespace vantorel::cli
