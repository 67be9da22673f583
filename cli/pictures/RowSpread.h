// Rows of samples as files hold them, spread to four channels a pixel at the depth that is asked for.
#pragma once

#include <cstddef>
#include <cstdint>

#include "cli/pictures/PictureInput.h"
#include "host/Image.h"

namespace vantorel::cli {

// Turns `width` pixels of `channels` samples of 8 or 16 bits, in the machine's order, into the first channels of `out`
// (four to a pixel): those of `range`. Whole ranges become whole ranges, integers rounded to nearest.
void spreadRow(const std::uint8_t* samples, int width, int channels, ChannelRange range, host::Depth depth,
               std::byte* out);
void spreadRow(const std::uint16_t* samples, int width, int channels, ChannelRange range, host::Depth depth,
               std::byte* out);

}  // namespace vantorel::cli
