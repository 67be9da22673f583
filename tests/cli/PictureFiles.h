// Picture files for tests: written by hand or by the command's writer, and read back.
#pragma once

#include <OpenImageIO/imageio.h>

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/ImageWriter.h"
#include "tests/TestFolder.h"
#include "tests/host/HostTesting.h"

namespace vantorel::cli {

using host::testing::samePixels;
using OIIO::ImageOutput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

template <typename Channel>
void writeFile(const std::string& path, const ImageSpec& spec, const std::vector<Channel>& data) {
  const auto output = ImageOutput::create(path);
  ASSERT_TRUE(output && output->open(path, spec)) << path << OIIO::geterror();
  ASSERT_TRUE(output->write_image(OIIO::BaseTypeFromC<Channel>::value, data.data())) << output->geterror();
  ASSERT_TRUE(output->close());
}

inline Picture readAt(const std::string& path, host::Depth depth) {
  return readPicture(path, depth, {});
}

inline std::vector<int> pixel8(const Picture& picture, int x, int y) {
  const auto* channel = reinterpret_cast<const std::uint8_t*>(picture.pixels.view().pixel(x, y));
  return {channel, channel + 4};
}

// A picture with partly transparent pixels of every kind.
inline host::Image sample(host::Depth depth) {
  host::Image image = host::testing::dirty({19, 300}, depth);
  for (int i = 0; i < 19 * 300 * 4; ++i) {
    const int x = i / 4 % 19, y = i / 76, c = i % 4;
    const double alpha = x < 9 ? 1.0 : (x - 9) / 10.0;
    const double value = c == 3 ? alpha : alpha * std::fmod(0.013 * x + 0.0031 * y + 0.3 * c, 1.0);
    // Floats that half ones hold.
    host::testing::setChannel(image.view(), x, y, c,
                              depth == host::Depth::Float ? static_cast<int>(value * 1024) / 1024.0 : value);
  }
  return image;
}

inline OutputPicture describe(const host::Image& image, SampleType samples) {
  OutputPicture picture;
  picture.pixels = image.view();
  picture.frame = image.size();
  picture.window = {0, 0, image.size().width, image.size().height};
  picture.samples = samples;
  return picture;
}

// Writes it in the format of the name.
inline void writeImage(const std::string& path, const host::Image& image, SampleType samples) {
  writePicture(path, formatForOutput("", path), describe(image, samples), {});
}

}  // namespace vantorel::cli
