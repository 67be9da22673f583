#include "cli/shots/PictureSource.h"

#include <utility>

namespace vantorel::cli {

PictureSource::PictureSource(InputFiles files, host::Depth depth, Prepare prepare, ReadingOptions reading)
    : files_(std::move(files)), depth_(depth), prepare_(std::move(prepare)), reading_(std::move(reading)) {}

std::shared_ptr<const Picture> PictureSource::at(std::int32_t frame, const std::stop_token& stop) {
  const std::string path = files_.path(frame);
  if (!isStill() && !keeps_latest_) {
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

std::shared_ptr<const Picture> PictureSource::read(const std::string& path, const std::stop_token& stop) const {
  return prepared(readPicture(path, depth_, stop, reading_), path);
}

std::shared_ptr<const Picture> PictureSource::prepared(Picture picture, const std::string& path) const {
  auto kept = std::make_shared<Picture>(std::move(picture));
  if (prepare_) {
    prepare_(*kept, path);
  }
  return kept;
}

void PictureSource::adopt(Picture picture, std::int32_t frame) {
  const std::scoped_lock lock(kept_mutex_);
  kept_path_ = files_.path(frame);
  kept_ = prepared(std::move(picture), kept_path_);
}

}  // namespace vantorel::cli
