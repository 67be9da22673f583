// The part of the layer that goes onto the corners, where it is not all of it.
#pragma once

#include <optional>

#include "cli/base/CommandError.h"
#include "cli/shots/Shot.h"

namespace vantorel::cli {

// Throws CommandError where options and file of corners both name one, or another option does not go with it.
void refuseSourceContradictions(const RenderOptions& options, const CornersTrack& corners);

// The quadrilateral over time, in pixels of a layer of that size before it is enlarged; nothing: the layer's outline.
// Throws CommandError for a quadrilateral that is not convex: a bad argument for one from options, a file failure for
// one from a file.
std::optional<host::AnimatedCorners> sourceOf(const Shot& shot, host::Size layer);

// The same in pixels of the enlarged layer.
std::optional<host::AnimatedCorners> enlargedSourceOf(const Shot& shot, host::Size layer);

// The host's error about the source of that frame, with the name of what it is from.
CommandError sourceFault(const Shot& shot, std::int32_t frame, const host::Error& error);

}  // namespace vantorel::cli
