#include "cli/shots/Resume.h"

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

}  // namespace

bool isFrameDone(const Shot& shot, std::int32_t frame, host::Size output_size) {
  const std::string output = shot.output.path(frame);
  return isNewer(output, shot.layer->path(frame)) && (!shot.plate || isNewer(output, shot.plate->path(frame))) &&
         (shot.options.corners_file.empty() || isNewer(output, shot.options.corners_file)) &&
         isWholePicture(output, output_size);
}

}  // namespace vantorel::cli
