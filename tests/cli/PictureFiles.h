// Picture files for tests: written by hand or by the command's writer, and read back.
#pragma once

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "TestFolder.h"
#include "cli/base/CommandError.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/ImageWriter.h"

namespace vantorel::cli {

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
  host::Image image = std::move(*host::Image::create({19, 300}, depth));
  for (int y = 0; y < 300; ++y) {
    for (int x = 0; x < 19; ++x) {
      for (int c = 0; c < 4; ++c) {
        const double alpha = x < 9 ? 1.0 : (x - 9) / 10.0;
        const double value = c == 3 ? alpha : alpha * std::fmod(0.013 * x + 0.0031 * y + 0.3 * c, 1.0);
        std::byte* channel = image.view().pixel(x, y) + host::bytesPerPixel(depth) / 4 * static_cast<std::size_t>(c);
        if (depth == host::Depth::Bits8) {
          *reinterpret_cast<std::uint8_t*>(channel) = static_cast<std::uint8_t>(value * 255 + 0.5);
        } else if (depth == host::Depth::Bits16) {
          *reinterpret_cast<std::uint16_t*>(channel) = static_cast<std::uint16_t>(value * 65535 + 0.5);
        } else {
          *reinterpret_cast<float*>(channel) = static_cast<float>(static_cast<int>(value * 1024)) / 1024.0f;
        }
      }
    }
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

inline bool samePixels(const host::Image& a, const host::Image& b) {
  bool same = a.size() == b.size() && a.depth() == b.depth();
  for (int y = 0; same && y < a.size().height; ++y) {
    same = std::memcmp(a.view().row(y), b.view().row(y),
                       host::bytesPerPixel(a.depth()) * static_cast<std::size_t>(a.size().width)) == 0;
  }
  return same;
}

}  // namespace vantorel::cli
