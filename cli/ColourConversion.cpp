#include "cli/ColourConversion.h"

#include <OpenImageIO/color.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>
#include <tbb/parallel_for.h>

#include "cli/CommandError.h"

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
    throw fileFailure(input, fmt::format("the conversion of its colours from '{}' to '{}' is not known; leave --linear "
                                         "away, or convert the file to sRGB or linear",
                                         from, to));
  }
  tbb::parallel_for(0, picture.size.height, [&](int y) {
    auto* row = reinterpret_cast<float*>(picture.row(y));
    float* const end = row + 4 * static_cast<std::ptrdiff_t>(picture.size.width);
    for (float* pixel = row; pixel != end; pixel += 4) {
      if (const float alpha = pixel[3]; alpha != 0.0f && alpha != 1.0f) {
        for (int c = 0; c < 3; ++c) {
          pixel[c] /= alpha;
        }
      }
    }
    processor->apply(row, picture.size.width, 1, 4, sizeof(float), 4 * sizeof(float),
                     4 * static_cast<OIIO::stride_t>(sizeof(float)) * picture.size.width);
    for (float* pixel = row; pixel != end; pixel += 4) {
      if (const float alpha = pixel[3]; alpha != 0.0f && alpha != 1.0f) {
        for (int c = 0; c < 3; ++c) {
          pixel[c] *= alpha;
        }
      }
    }
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
