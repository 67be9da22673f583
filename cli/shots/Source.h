// The part of the layer that is drawn onto the corners, if it is not the whole layer.
#pragma once

#include <optional>

#include "cli/base/CommandError.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Throws CommandError if both the options and the corners file specify one, or if it conflicts with another option.
void refuseSourceContradictions(const RenderOptions& options, const CornersTrack& corners);

// The quadrilateral over time, in pixels of a layer of that size before it is enlarged; empty: the layer's outline.
// Throws CommandError for a quadrilateral that is not convex: a bad argument for one from options, a file failure for
// one from a file.
std::optional<host::AnimatedCorners> sourceOf(const Shot& shot, host::Size layer);

// The same in pixels of the enlarged layer.
std::optional<host::AnimatedCorners> enlargedSourceOf(const Shot& shot, host::Size layer);

// The host's error about the source of that frame, naming the option or file that it comes from.
CommandError sourceFault(const Shot& shot, std::int32_t frame, const host::Error& error);

}  // namespace vantorel::cli
