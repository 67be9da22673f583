// Rows of channels as OpenEXR holds them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "host/Image.h"

namespace vantorel::cli {

// `count` channels of that depth as floats, integers as 0 to 1.
void toFloat(const std::byte* channels, host::Depth depth, std::size_t count, float* floats);

// The same as halves, rounded to nearest, ties to even.
void toHalf(const std::byte* channels, host::Depth depth, std::size_t count, std::uint16_t* halves);

// `count` halves as floats, exactly; a NaN keeps its bits.
void fromHalf(const std::uint16_t* halves, std::size_t count, float* floats);

}  // namespace vantorel::cli
