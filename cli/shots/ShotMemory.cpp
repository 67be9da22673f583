#include "cli/shots/ShotMemory.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>

#include "cli/base/CommandError.h"
#include "cli/base/Memory.h"
#include "cli/base/Text.h"
#include "cli/shots/ShotColour.h"

namespace vantorel::cli {

namespace {

// More frames at once would gain nothing: the remaining threads share the frames' rows.
constexpr int kMaxFramesInFlight = 16;

double bytesPerFrame(const Shot& shot, const FrameHeads& heads) {
  const int n = shot.options.downsample;
  double bytes = pictureBytes(heads.layer.size, shot.depth);
  if (shot.enlargement != Enlargement{}) {
    bytes += pictureBytes(enlargedSize(heads.layer.size, shot.enlargement), shot.depth);
  }
  if (n > 1) {
    bytes += pictureBytes(host::downsampled(heads.layer.size, n), shot.depth);
  }
  for (const auto& other : {heads.plate, heads.matte}) {
    bytes += other ? pictureBytes(other->size, shot.depth) : 0.0;
  }
  bytes += shot.passes_plate && heads.plate ? heads.plate->extra_bytes : 0.0;
  return bytes + pictureBytes(host::downsampled(shot.frame_size, n), shot.depth);
}

void requireMemory(const Shot& shot, const FrameHeads& heads, double bytes_per_frame) {
  const auto shortage = memoryShortage(bytes_per_frame);
  if (!shortage) {
    return;
  }
  const auto fault = [&](host::Size size, const char* remedy) {
    return fmt::format("a picture of {} at {} bits {}; {}", toText(size), static_cast<int>(shot.depth), *shortage,
                       remedy);
  };
  const auto pixels = [](host::Size size) { return static_cast<double>(size.width) * size.height; };
  const bool plate_is_largest = heads.plate && pixels(heads.plate->size) > pixels(heads.layer.size);
  const host::Size largest = plate_is_largest ? heads.plate->size : heads.layer.size;
  if (shot.options.size && pixels(*shot.options.size) >= pixels(largest)) {
    throw outOfMemory("--size", fault(*shot.options.size, "give a smaller size"));
  }
  const bool can_be_lower =
      shot.depth != host::Depth::Bits8 && !shot.options.linear && !(shot.colour && shot.colour->converts());
  throw outOfMemory(
      (plate_is_largest ? *shot.plate_files : shot.layer_files).path(shot.frames.first),
      fault(largest, can_be_lower ? "give a smaller picture or a lower --depth" : "give a smaller picture"));
}

}  // namespace

int framesInFlight(const Shot& shot, const FrameHeads& heads) {
  const double bytes_each = bytesPerFrame(shot, heads);
  requireMemory(shot, heads, bytes_each);
  std::int64_t most = std::min<std::int64_t>({shot.options.threads, shot.frames.count(), kMaxFramesInFlight});
  // Uses only half of the free memory, to leave room for codecs and the host.
  if (const auto available = availableMemory()) {
    most = std::min(most, static_cast<std::int64_t>(*available / 2 / bytes_each));
  }
  return static_cast<int>(std::max<std::int64_t>(1, most));
}

}  // namespace vantorel::cli
