// Pictures cut short, told by their structure: decoders fill what is missing with grey, or complain on the terminal.
#pragma once

#include <string>

namespace vantorel::cli {

// Whether the file is a PNG or JPEG that breaks off before its end marker. Says no for other files and for those that
// cannot be opened.
bool breaksOff(const std::string& path);

}  // namespace vantorel::cli
