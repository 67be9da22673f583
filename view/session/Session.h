// What one view is about: the shot, its pictures, its corners and the rendering of it.
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
  // Reads the corners and the pictures' heads. Throws CommandError.
  explicit Session(const cli::ViewOptions& options);

  // What the page needs to know at first.
  nlohmann::json description();

  Pictures& pictures() { return pictures_; }
  RenderJob& job() { return job_; }
  host::Size frameSize() const { return shot_.frame_size; }

  // Each takes a request's body and throws CommandError.
  // Saves nothing where somebody else has changed the file, unless "anyway" is true: {"changed": message}.
  nlohmann::json save(const nlohmann::json& body);
  // The corners that the file holds now: {"track": ...}.
  nlohmann::json reload();
  nlohmann::json render(const nlohmann::json& body);
  // The command that renders the same as the page shows.
  nlohmann::json command(const nlohmann::json& body) const;

 private:
  bool isFrame(std::int32_t frame) const;

  cli::ViewOptions options_;
  std::mutex file_mutex_;
  CornersFile file_;
  cli::Shot shot_;
  tracks::CornerTrack track_;  // as the file has it; without keys where there is none
  host::Size layer_size_;
  Pictures pictures_;
  RenderJob job_;
};

}  // namespace vantorel::view
