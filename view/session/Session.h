// The state of a view: the shot, its pictures, its corners and its rendering.
#pragma once

#include <mutex>
#include <nlohmann/json.hpp>
#include <string>

#include "cli/commands/Commands.h"
#include "view/session/CornersFile.h"
#include "view/session/Pictures.h"
#include "view/session/RenderJob.h"

namespace vantorel::view {

class Session {
 public:
  // Reads the corners and the pictures' headers. Throws CommandError.
  explicit Session(const cli::ViewOptions& options);

  // What the page needs to know when it loads.
  nlohmann::json description();

  Pictures& pictures() { return pictures_; }
  RenderJob& job() { return job_; }
  host::Size frameSize() const { return shot_.frame_size; }

  // Each takes a request's body and throws CommandError.
  // If another program has changed the file, saves nothing and returns {"changed": message}, unless "anyway" is true.
  nlohmann::json save(const nlohmann::json& body);
  // The file's current corners: {"track": ...}.
  nlohmann::json reload();
  nlohmann::json render(const nlohmann::json& body);
  // The command line that renders what the page shows.
  nlohmann::json command(const nlohmann::json& body) const;

 private:
  bool isFrame(std::int32_t frame) const;

  cli::ViewOptions options_;
  std::mutex file_mutex_;
  CornersFile file_;
  cli::Shot shot_;
  tracks::CornerTrack track_;  // as in the file; without keys if there is no file
  host::Size layer_size_;
  Pictures pictures_;
  RenderJob job_;
};

}  // namespace vantorel::view
