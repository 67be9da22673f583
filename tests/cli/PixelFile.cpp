#include "PixelFile.h"

#include <algorithm>

#include "PictureFiles.h"

namespace vantorel::cli {

PixelFile::PixelFile(host::Size size, int channels)
    : size_(size),
      channels_(static_cast<std::size_t>(channels)),
      samples_(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height) * channels_) {}

PixelFile PixelFile::filled(host::Size size, const std::vector<int>& pixel) {
  PixelFile file(size, static_cast<int>(pixel.size()));
  for (int y = 0; y < size.height; ++y) {
    for (int x = 0; x < size.width; ++x) {
      file.set(x, y, pixel);
    }
  }
  return file;
}

PixelFile PixelFile::read(const std::string& path) {
  OIIO::ImageSpec request;
  request.attribute("oiio:UnassociatedAlpha", 1);
  const auto input = OIIO::ImageInput::open(path, &request);
  if (!input) {
    ADD_FAILURE() << path << " cannot be read";
    return PixelFile({1, 1}, 4);
  }
  const OIIO::ImageSpec& spec = input->spec();
  PixelFile file({spec.width, spec.height}, spec.nchannels);
  EXPECT_TRUE(input->read_image(0, 0, 0, spec.nchannels, OIIO::TypeDesc::FLOAT, file.samples_.data())) << path;
  return file;
}

void PixelFile::write(const std::string& path) const {
  OIIO::ImageSpec spec(size_.width, size_.height, static_cast<int>(channels_), OIIO::TypeDesc::UINT8);
  spec.attribute("oiio:UnassociatedAlpha", 1);
  writeFile(path, spec, samples_);
}

void PixelFile::set(int x, int y, const std::vector<int>& pixel) {
  std::transform(pixel.begin(), pixel.end(), samples_.begin() + static_cast<std::ptrdiff_t>(index(x, y)),
                 [](int value) { return static_cast<float>(value) / 255.0f; });
}

std::vector<double> PixelFile::at(int x, int y) const {
  const auto first = samples_.begin() + static_cast<std::ptrdiff_t>(index(x, y));
  return {first, first + static_cast<std::ptrdiff_t>(channels_)};
}

std::size_t PixelFile::index(int x, int y) const {
  return (static_cast<std::size_t>(y) * static_cast<std::size_t>(size_.width) + static_cast<std::size_t>(x)) *
         channels_;
}

void expectNear(const std::vector<double>& pixel, const std::vector<double>& expected, double tolerance) {
  ASSERT_EQ(pixel.size(), expected.size());
  for (std::size_t c = 0; c < pixel.size(); ++c) {
    EXPECT_NEAR(pixel[c], expected[c], tolerance) << "channel " << c;
  }
}

}  // namespace vantorel::cli
