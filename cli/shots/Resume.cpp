#include "cli/shots/Resume.h"

#include <algorithm>
#include <filesystem>

#include "cli/pictures/ImageReader.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

bool isNewer(const std::string& output, const std::string& input) {
  std::error_code fault;
  const auto output_time = fs::last_write_time(output, fault);
  if (fault) {
    return false;
  }
  const auto input_time = fs::last_write_time(input, fault);
  return !fault && output_time > input_time;
}

// Standard input and pipes have no time that counts: what they bring is taken for new.
bool isNewerThanCorners(const std::string& output, const TrackOptions& track) {
  if (track.files.empty()) {
    return true;
  }
  const std::vector<std::string> files = trackFiles(track.files);
  return std::all_of(files.begin(), files.end(), [&](const std::string& file) {
    std::error_code fault;
    return fs::is_regular_file(file, fault) && isNewer(output, file);
  });
}

}  // namespace

bool isFrameDone(const Shot& shot, std::int32_t frame, host::Size output_size) {
  const std::string output = shot.output.path(frame);
  return isNewer(output, shot.layer->path(frame)) && (!shot.plate || isNewer(output, shot.plate->path(frame))) &&
         isNewerThanCorners(output, shot.options.track) && isWholePicture(output, output_size);
}

}  // namespace vantorel::cli
