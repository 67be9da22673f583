// Text chunks of PNG files.
#pragma once

#include <string>
#include <string_view>

namespace vantorel::cli {

// Keywords of texts that hold blocks of metadata.
constexpr std::string_view kXmpKey = "XML:com.adobe.xmp";
constexpr std::string_view kExifKey = "Raw profile type exif";

// What the other formats call a text of that keyword, and the reverse.
std::string attributeOfKeyword(std::string_view keyword);
std::string keywordOfAttribute(std::string_view attribute);

// The packet with its orientation set to upright.
std::string uprightXmp(std::string packet);

// The block that such a text has as hexadecimal digits, from its TIFF header on; empty where it is none.
std::string exifOfText(std::string_view text);

}  // namespace vantorel::cli
