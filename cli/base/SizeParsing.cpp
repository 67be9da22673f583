#include "cli/base/SizeParsing.h"

#include <fmt/format.h>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"

namespace vantorel::cli {

host::Size parseSize(const std::string& input, std::string_view text) {
  const std::size_t cross = text.find_first_of("xX");
  const auto width = parseInt(text.substr(0, cross));
  const auto height = cross == std::string_view::npos ? std::nullopt : parseInt(text.substr(cross + 1));
  if (!width || !height) {
    throw badArgument(input, fmt::format("'{}' is not a size; give WIDTHxHEIGHT in pixels, such as 1920x1080", text));
  }
  if (*width < 1 || *height < 1) {
    throw badArgument(input, fmt::format("'{}' is not a size; width and height must be 1 or more", text));
  }
  return {*width, *height};
}

}  // namespace vantorel::cli
