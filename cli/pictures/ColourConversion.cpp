#include "cli/pictures/ColourConversion.h"

#include <OpenImageIO/color.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>
#include <tbb/parallel_for.h>

#include "cli/base/CommandError.h"
#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

namespace {

// One for the process: making it reads the machine's colour configuration, where there is one.
const OIIO::ColorConfig& colourConfig() {
  static const OIIO::ColorConfig config;
  return config;
}

void convert(const host::ImageView& picture, const std::string& from, const std::string& to, const std::string& input) {
  const OIIO::ColorProcessorHandle processor = colourConfig().createColorProcessor(from, to);
  if (!processor) {
    throw fileFailure(input, fmt::format("the conversion of its colours from '{}' to '{}' is not known; omit "
                                         "--linear, or convert the file to sRGB or linear",
                                         from, to));
  }
  tbb::parallel_for(0, picture.size.height, [&](int y) {
    auto* row = reinterpret_cast<float*>(picture.row(y));
    unpremultiplyRow(row, picture.size.width);
    processor->apply(row, picture.size.width, 1, 4, sizeof(float), 4 * sizeof(float),
                     4 * static_cast<OIIO::stride_t>(sizeof(float)) * picture.size.width);
    repremultiplyRow(row, picture.size.width);
  });
}

std::string orSrgb(const std::string& colour_space) {
  return colour_space.empty() ? "sRGB" : colour_space;
}

bool isLinear(const std::string& colour_space) {
  return OIIO::Strutil::iequals(colour_space, "linear") || OIIO::Strutil::iequals(colour_space, "scene_linear");
}

}  // namespace

std::string outputColourSpace(const std::string& source, bool format_is_linear) {
  if (format_is_linear) {
    return "Linear";
  }
  return source.empty() || isLinear(source) ? "sRGB" : source;
}

void toLinear(const host::ImageView& picture, const std::string& from, const std::string& input) {
  if (!isLinear(from)) {
    convert(picture, orSrgb(from), "linear", input);
  }
}

void fromLinear(const host::ImageView& picture, const std::string& to, const std::string& input) {
  if (!isLinear(to)) {
    convert(picture, "linear", orSrgb(to), input);
  }
}

}  // namespace vantorel::cli
