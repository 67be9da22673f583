// One line of JSON for every finished frame, on standard output.
#pragma once

#include <cstdint>
#include <string>

#include "host/Image.h"
#include "host/Instance.h"

namespace vantorel::cli {

// The result of a frame. Times are in seconds.
struct FrameReport {
  std::int32_t frame = 0;
  host::RenderPath path = host::RenderPath::Perspective;
  host::Depth depth = host::Depth::Bits8;
  int origin_x = 0;  // the position of the output's first pixel on the canvas, in pixels of the rendered resolution
  int origin_y = 0;
  host::Size size;
  double read_seconds = 0;    // reading and decoding layer and plate
  double render_seconds = 0;  // as in host::FrameResult
  double write_seconds = 0;   // compositing, encoding and writing
  std::string output;
  std::string redone_because;  // why an existing frame was rendered again; empty otherwise; not part of the JSON
};

std::string toJson(const FrameReport& report);

// Writes the line and flushes it. Throws CommandError (file failure) if standard output cannot be written to. Safe to
// call from several threads.
void printJson(const FrameReport& report);

}  // namespace vantorel::cli
