#include "cli/shots/PictureSource.h"

#include <utility>

#include "cli/base/Files.h"

namespace vantorel::cli {

PictureSource::PictureSource(InputFiles files, host::Depth depth, Prepare prepare, ReadingOptions reading)
    : files_(std::move(files)), depth_(depth), prepare_(std::move(prepare)), reading_(std::move(reading)) {
  reading_.spare = std::make_shared<SparePixels>();
}

std::shared_ptr<const Picture> PictureSource::at(std::int32_t frame, const std::stop_token& stop) {
  const std::string path = files_.path(frame);
  if (!keeps_latest_ && !files_.isHeld(frame)) {
    return read(path, stop);
  }
  const std::scoped_lock lock(kept_mutex_);
  if (!kept_ || kept_path_ != path) {
    kept_.reset();
    kept_ = read(path, stop);
    kept_path_ = path;
  }
  return kept_;
}

void PictureSource::announce(std::int32_t frame) const {
  if (!files_.isHeld(frame)) {
    fetchAhead(files_.path(frame));
  }
}

std::shared_ptr<const Picture> PictureSource::read(const std::string& path, const std::stop_token& stop) const {
  ReadingOptions reading = reading_;
  if (keeps_latest_) {
    // A viewer runs for hours and should return pictures' memory in between.
    reading.spare = nullptr;
  }
  return prepared(readPicture(path, depth_, stop, reading), path, reading.spare);
}

std::shared_ptr<const Picture> PictureSource::prepared(Picture picture, const std::string& path,
                                                       const std::shared_ptr<SparePixels>& spare) const {
  auto owned = std::make_unique<Picture>(std::move(picture));
  const std::shared_ptr<Picture> kept(owned.release(), [spare](Picture* unused) {
    if (spare) {
      spare->giveBack(std::move(unused->pixels));
    }
    delete unused;
  });
  if (prepare_) {
    prepare_(*kept, path);
  }
  return kept;
}

void PictureSource::adopt(Picture picture, std::int32_t frame) {
  const std::scoped_lock lock(kept_mutex_);
  kept_path_ = files_.path(frame);
  kept_ = prepared(std::move(picture), kept_path_, nullptr);
}

}  // namespace vantorel::cli
