// An input's pictures for the shot's frames: a sequence, or a picture that several frames show, which is read once.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <stop_token>
#include <string>

#include "cli/pictures/ImageReader.h"
#include "cli/pictures/Picture.h"
#include "cli/shots/InputFiles.h"

namespace vantorel::cli {

// Safe to use from several threads.
class PictureSource {
 public:
  // Called once for each picture after reading; may throw CommandError. The string is the picture's path.
  using Prepare = std::function<void(Picture&, const std::string&)>;

  PictureSource(InputFiles files, host::Depth depth, Prepare prepare, ReadingOptions reading = {});

  bool isStill() const { return !files_.hasNumber(); }
  std::string path(std::int32_t frame) const { return files_.path(frame); }

  // Stores a still's picture that has already been read, at the source's depth.
  void adopt(Picture picture, std::int32_t frame);

  // From now on keeps a sequence's picture until another one is requested, for viewers that show the same frame
  // repeatedly.
  void keepLatest() { keeps_latest_ = true; }

  // Announces that the picture of that frame will be needed soon.
  void announce(std::int32_t frame) const;

  // The picture of that frame. A still, or the last picture of a sequence that is held, is kept for the next frame;
  // other pictures are owned only by the caller.
  std::shared_ptr<const Picture> at(std::int32_t frame, const std::stop_token& stop);

 private:
  std::shared_ptr<const Picture> read(const std::string& path, const std::stop_token& stop) const;
  // When the picture is freed, its memory goes to `spare`, unless that is null.
  std::shared_ptr<const Picture> prepared(Picture picture, const std::string& path,
                                          const std::shared_ptr<SparePixels>& spare) const;

  InputFiles files_;
  host::Depth depth_;
  Prepare prepare_;
  ReadingOptions reading_;
  bool keeps_latest_ = false;
  std::mutex kept_mutex_;
  std::shared_ptr<const Picture> kept_;
  std::string kept_path_;
};

}  // namespace vantorel::cli
