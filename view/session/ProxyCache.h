// The layer and the plate as drafts need them: for display, at 1/n of their resolution, kept for the next draft.
#pragma once

#include <cstdint>
#include <list>
#include <mutex>

#include "cli/shots/Shot.h"
#include "view/session/DisplayPixels.h"

namespace vantorel::view {

enum class Role { Layer, Plate };

// Keeps what was asked for last, up to a bound on its bytes. Safe to use from several threads.
class ProxyCache {
 public:
  // The shot must outlive it.
  explicit ProxyCache(const cli::Shot& shot) : shot_(shot) {}

  // The role's picture in that frame; the shot must have one in that role. Throws CommandError as reading it does.
  DisplayPicture at(Role role, std::int32_t frame, int n, const std::stop_token& stop);

 private:
  struct Kept {
    Role role;
    std::int32_t frame;
    int n;
    std::size_t bytes;
    DisplayPicture picture;
  };

  DisplayPicture find(Role role, std::int32_t frame, int n);
  DisplayPicture keep(Kept kept);
  cli::PictureSource& source(Role role) const { return role == Role::Layer ? *shot_.layer : *shot_.plate; }

  const cli::Shot& shot_;
  std::mutex mutex_;
  std::list<Kept> kept_;  // the last used first
};

}  // namespace vantorel::view
