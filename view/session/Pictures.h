// The pictures that the page shows: backdrops, drafts while corners move, and the full-quality picture.
#pragma once

#include <cstdint>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "cli/shots/Shot.h"
#include "host/Instance.h"
#include "view/session/LatestWins.h"
#include "view/session/Messages.h"
#include "view/session/ProxyCache.h"

namespace vantorel::view {

// Each function returns a picture in the format of pictureMessage(), and throws CommandError: "interrupted" if a later
// request of the same kind has superseded it. Safe to use from several threads.
class Pictures {
 public:
  // The shot must outlive it, and is given new corners by full(). Starts reading the first frame's pictures, so that
  // they are ready when the page asks for them.
  explicit Pictures(cli::Shot& shot);

  // The plate, or black without one.
  std::string backdrop(std::int32_t frame, const Region& region);

  // The layer on those corners over the backdrop, drawn quickly from proxies and without motion blur; only the part of
  // the region around the corners.
  std::string draft(std::int32_t frame, const host::Corners& corners, const Region& region);

  // The frame exactly as it is rendered to a file, then reduced for display. Only the part of the region that the layer
  // can reach: elsewhere the frame is the backdrop.
  std::string full(std::int32_t frame, const tracks::CornerTrack& track, const Region& region);

  // Stops what is being drawn, and refuses further requests.
  void close();

 private:
  int layerReduction(const host::Corners& corners, const Region& region, host::Size layer) const;
  void hold(const host::Corners& corners, std::int32_t frame, const Region& drawn, const std::stop_token& stop);
  Region reached(std::int32_t frame, const Region& region) const;
  void requireFrameSize(const DisplayPicture& picture, const cli::PictureSource& source, std::int32_t frame,
                        int n) const;
  void layOverPlate(const host::ImageView& picture, std::int32_t frame, const Region& region,
                    const std::stop_token& stop);

  cli::Shot& shot_;
  ProxyCache layers_;
  std::optional<ProxyCache> plates_;
  std::optional<ProxyCache> mattes_;
  LatestWins drafts_;
  std::mutex draft_mutex_;
  host::Instance drafter_;
  host::Image draft_pixels_;
  // The part of the layer that is drawn onto the corners, in its pixels; if unset or without keys, all of it.
  std::optional<host::AnimatedCorners> source_;
  std::vector<tracks::CornerKey> source_keys_;
  LatestWins fulls_;
  std::mutex full_mutex_;
  std::vector<std::jthread> first_readings_;
};

}  // namespace vantorel::view
