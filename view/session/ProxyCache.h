// The layer and the plate as drafts need them: for display, at 1/n of their resolution, kept for the next draft.
#pragma once

#include <cstdint>
#include <list>
#include <mutex>

#include "cli/shots/PictureSource.h"
#include "view/session/DisplayPixels.h"

namespace vantorel::view {

// Of one of the two. Keeps what was asked for last, up to a bound on its bytes. Safe to use from several threads.
class ProxyCache {
 public:
  // The source and the shot that it belongs to must outlive it.
  ProxyCache(cli::PictureSource& source, const cli::Shot& shot) : source_(source), shot_(shot) {}

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
  const cli::Shot& shot_;
  std::mutex mutex_;
  std::list<Kept> kept_;  // the last used first
};

}  // namespace vantorel::view
