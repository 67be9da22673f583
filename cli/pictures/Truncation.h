// Truncated pictures, found by their structure: decoders fill what is missing with grey, or complain on the terminal.
#pragma once

#include <string>

namespace vantorel::cli {

// Whether the file is a PNG or JPEG that ends before its end marker, or an OpenEXR or DPX file whose header states
// lengths beyond the end. False for other files and for those that cannot be opened.
bool isTruncated(const std::string& path);

}  // namespace vantorel::cli
