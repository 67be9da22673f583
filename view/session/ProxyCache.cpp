#include "view/session/ProxyCache.h"

#include <memory>
#include <utility>

#include "cli/pictures/Reduce.h"

namespace vantorel::view {

namespace {

constexpr std::size_t kMaxBytes = 256u << 20;

std::size_t bytesOf(const host::ConstImageView& pixels) {
  return static_cast<std::size_t>(pixels.row_bytes) * static_cast<std::size_t>(pixels.size.height);
}

}  // namespace

DisplayPicture ProxyCache::at(std::int32_t frame, int n, const std::stop_token& stop) {
  const std::scoped_lock lock(mutex_);
  const std::int32_t kept_frame = source_.isStill() ? 0 : frame;
  if (DisplayPicture picture = find(kept_frame, n); picture.owner) {
    return picture;
  }
  DisplayPicture whole = find(kept_frame, 1);
  if (!whole.owner) {
    const std::shared_ptr<const cli::Picture> picture = source_.at(frame, stop);
    whole = displayed(picture, cli::shownPixels(*picture), colour_, source_.path(frame));
    whole.has_alpha = picture->info.has_alpha;
    keep({kept_frame, 1, bytesOf(whole.pixels), whole});
  }
  if (n == 1) {
    return whole;
  }
  auto smaller = std::make_shared<host::Image>(cli::reduced(whole.pixels, n));
  const host::ConstImageView pixels = std::as_const(*smaller).view();
  return keep({kept_frame, n, bytesOf(pixels), {std::move(smaller), pixels, whole.has_alpha}});
}

DisplayPicture ProxyCache::find(std::int32_t frame, int n) {
  for (auto kept = kept_.begin(); kept != kept_.end(); ++kept) {
    if (kept->frame == frame && kept->n == n) {
      kept_.splice(kept_.begin(), kept_, kept);
      return kept->picture;
    }
  }
  return {};
}

DisplayPicture ProxyCache::keep(Kept kept) {
  kept_.push_front(std::move(kept));
  std::size_t bytes = 0;
  auto entry = kept_.begin();
  while (entry != kept_.end()) {
    bytes += entry->bytes;
    entry = bytes > kMaxBytes && entry != kept_.begin() ? kept_.erase(entry) : std::next(entry);
  }
  return kept_.front().picture;
}

}  // namespace vantorel::view
