#include "cli/shots/FrameReport.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace {

// Rounded to microseconds.
double milliseconds(double seconds) {
  return std::round(seconds * 1e6) / 1e3;
}

}  // namespace

std::string toJson(const FrameReport& report) {
  nlohmann::ordered_json line;
  line["frame"] = report.frame;
  line["path"] = report.path == host::RenderPath::Perspective ? "perspective" : "bilinear";
  line["depth"] = static_cast<int>(report.depth);
  line["origin"] = {report.origin_x, report.origin_y};
  line["size"] = {report.size.width, report.size.height};
  line["read_ms"] = milliseconds(report.read_seconds);
  line["render_ms"] = milliseconds(report.render_seconds);
  line["write_ms"] = milliseconds(report.write_seconds);
  line["output"] = report.output;
  // File names need not be UTF-8.
  return line.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

void printJson(const FrameReport& report) {
  const std::string line = toJson(report) + '\n';
  // A single call, so that lines of several threads do not get mixed up.
  if (std::fwrite(line.data(), 1, line.size(), stdout) != line.size() || std::fflush(stdout) != 0) {
    throw fileFailure("standard output", "cannot be written to; check the pipe or the disk that it goes to");
  }
}

}  // namespace vantorel::cli
