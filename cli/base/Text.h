// Text utilities shared by several readers.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "host/Image.h"

namespace vantorel::cli {

// The extension with its dot, in lower case; empty if the name has none.
std::string lowerCaseExtension(const std::string& path);

// Without blanks, tabs and carriage returns at both ends.
std::string_view trimmed(std::string_view text);

// Without the byte order mark that some editors write at the beginning of UTF-8 files.
std::string_view withoutByteOrderMark(std::string_view text);

// A library's error text, made suitable for a message: one line, without a full stop at the end.
std::string oneLine(std::string reason);

// Makes the text safe to print on a terminal: control characters and bytes that are not UTF-8 become escapes such as
// \x1b.
std::string escaped(std::string_view text);

// "1 frame", "2 frames"
std::string counted(std::int64_t count, const char* noun);

// "640x480"
std::string toText(host::Size size);

}  // namespace vantorel::cli
