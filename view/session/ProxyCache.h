// A cache of the reduced pictures (layer, plate, matte) that drafts are drawn from: in display colours, at 1/n of their
// resolution.
#pragma once

#include <cstdint>
#include <list>
#include <mutex>

#include "cli/shots/PictureSource.h"
#include "view/session/DisplayPixels.h"

namespace vantorel::view {

// The cache of one source. Keeps the most recently used pictures, up to a limit in bytes. Safe to use from several
// threads.
class ProxyCache {
 public:
  // The source and `colour`, which converts the pictures for display, must outlive it. A null `colour` leaves values
  // unchanged.
  ProxyCache(cli::PictureSource& source, cli::ShotColour* colour) : source_(source), colour_(colour) {}

  // The picture in that frame. Throws CommandError if it cannot be read.
  DisplayPicture at(std::int32_t frame, int n, const std::stop_token& stop);

 private:
  struct Kept {
    std::int32_t frame;
    int n;
    std::size_t bytes;
    DisplayPicture picture;
  };

  DisplayPicture find(std::int32_t frame, int n);
  DisplayPicture keep(Kept kept);

  cli::PictureSource& source_;
  cli::ShotColour* colour_;
  std::mutex mutex_;
  std::list<Kept> kept_;  // most recently used first
};

}  // namespace vantorel::view
