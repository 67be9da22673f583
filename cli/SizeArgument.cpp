#include "cli/SizeArgument.h"

#include <fmt/format.h>

#include "cli/CommandError.h"
#include "cli/NumberParsing.h"

namespace vantorel::cli {

host::Size parseSize(const std::string& input, std::string_view text) {
  const std::size_t cross = text.find_first_of("xX");
  const auto width = parseWhole(text.substr(0, cross));
  const auto height =
      cross == std::string_view::npos ? std::nullopt : parseWhole(text.substr(std::min(cross + 1, text.size())));
  if (!width || !height) {
    throw badArgument(input, fmt::format("'{}' is not a size; give WIDTHxHEIGHT in pixels, such as 1920x1080", text));
  }
  if (*width < 1 || *height < 1) {
    throw badArgument(input, fmt::format("'{}' is not a size; width and height must be 1 or more", text));
  }
  return {*width, *height};
}

std::string toText(host::Size size) {
  return fmt::format("{}x{}", size.width, size.height);
}

}  // namespace vantorel::cli
