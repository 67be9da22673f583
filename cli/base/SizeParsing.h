// Parses picture sizes.
#pragma once

#include <string>
#include <string_view>

#include "host/Image.h"

namespace vantorel::cli {

// "WxH", both 1 and up. Throws CommandError naming `input`.
host::Size parseSize(const std::string& input, std::string_view text);

}  // namespace vantorel::cli
