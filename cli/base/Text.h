// Texts of files and names: what several readers do to them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/Image.h"

namespace vantorel::cli {

// The extension with its dot, in lower case; empty where the name has none.
std::string lowerCaseExtension(const std::string& path);

// Without blanks, tabs and carriage returns at both ends.
std::string_view trimmed(std::string_view text);

// Without the mark that some editors put at the beginning of UTF-8 files.
std::string_view withoutByteOrderMark(std::string_view text);

// A library's reason for a failure as part of a message: one line, without a full stop at its end.
std::string oneLine(std::string reason);

// Safe to show on a terminal: control characters, which could drive it, and bytes that are not UTF-8 as \x1b.
std::string escaped(std::string_view text);

// "1 frame", "2 frames"
std::string counted(std::int64_t count, const char* noun);

// "640x480"
std::string toText(host::Size size);

}  // namespace vantorel::cli
