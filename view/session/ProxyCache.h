// The layer, the plate and the matte as drafts need them: for display, at 1/n of their resolution, kept for the next
// draft.
#pragma once

#include <cstdint>
#include <list>
#include <mutex>

#include "cli/shots/PictureSource.h"
#include "view/session/DisplayPixels.h"

namespace vantorel::view {

// Of one of them. Keeps what was asked for last, up to a bound on its bytes. Safe to use from several threads.
class ProxyCache {
 public:
  // The source must outlive it, and so must the colours that its pictures are shown by; null for numbers as they are.
  ProxyCache(cli::PictureSource& source, cli::ShotColour* colour) : source_(source), colour_(colour) {}

  // The picture in that frame. Throws CommandError as reading it does.
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
  std::list<Kept> kept_;  // the last used first
};

}  // namespace vantorel::view
