// One name and type for what several formats state each in a way of its own.
#pragma once

#include <optional>
#include <string>

#include "cli/pictures/Metadata.h"

namespace vantorel::cli {

// Gives what a file states of its resolution, camera, film speed, frame rate and position the names and types that
// OpenImageIO has for most formats: "ResolutionUnit" is a text, "FramesPerSecond" a rational, "GPS:Latitude" degrees,
// minutes and seconds.
void useCommonNames(Metadata& metadata);

// Degrees of a position, positive to the north and east; nothing where the metadata does not state it whole. `axis` is
// "Latitude" or "Longitude".
std::optional<double> positionDegrees(const Metadata& metadata, const std::string& axis);

// Of the attribute of that name, which is a rational; nothing without one.
std::optional<double> framesPerSecond(const Metadata& metadata);

}  // namespace vantorel::cli
