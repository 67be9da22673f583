// The messages between page and server: bodies of requests and responses.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>

#include "cli/corners/CornersTrack.h"
#include "host/Animation.h"
#include "host/Image.h"

namespace vantorel::view {

// A part of the picture, at 1/n of its resolution.
struct Region {
  host::Rect rect;  // full-resolution pixels, edges at multiples of n, within the frame
  int n = 1;
};

// Parses a body as JSON. The getters below throw CommandError (bad argument), naming the member, if it is missing, has
// the wrong type or is out of range.
nlohmann::json parseBody(const std::string& text);

std::int32_t frameOf(const nlohmann::json& body);
host::Corners cornersOf(const nlohmann::json& body);
// "region": [left, top, right, bottom] and "n"; aligned, and clipped to a frame of that size.
Region regionOf(const nlohmann::json& body, host::Size frame);

// "track": {"interpolation": "linear" | "hold" | "smooth", "keys": [[frame, ulx, uly, urx, ury, llx, lly, lrx, lry],
// ...]}, at least one key; positions in pixels of the output, frames ascending.
tracks::CornerTrack trackOf(const nlohmann::json& body);
nlohmann::json toJson(const tracks::CornerTrack& track);

// "linear", "hold" or "smooth", as in files.
std::string_view nameOf(host::Interpolation interpolation);

// The track in the form of one read from a file, with its corners kept in order.
cli::CornersTrack asCorners(const tracks::CornerTrack& track);

// A picture in the page's format: four little-endian int32 (left and top in full-resolution pixels, width and height in
// pixels of the picture), then rows of 8-bit RGBA. `pixels` must be 8-bit.
std::string pictureMessage(host::Point origin, const host::ConstImageView& pixels);

}  // namespace vantorel::view
