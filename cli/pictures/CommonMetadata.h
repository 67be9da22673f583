// Common names and types for metadata that each format states in its own way.
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

// The value of a rational attribute; nothing if there is none.
std::optional<double> framesPerSecond(const Metadata& metadata);

}  // namespace vantorel::cli
