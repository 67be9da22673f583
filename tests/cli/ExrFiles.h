// OpenEXR files of random samples, by OpenEXR's own library.
#pragma once

#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfTiledOutputPart.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <vector>

namespace vantorel::cli {

constexpr int kInRows = -1;

struct ExrChannel {
  std::string name;
  Imf::PixelType type = Imf::HALF;
  int sampling = 1;  // pixels to a sample, in both axes
};

struct ExrPart {
  std::vector<ExrChannel> channels{{"R"}, {"G"}, {"B"}};
  Imf::Compression compression = Imf::ZIP_COMPRESSION;
  int levels = kInRows;  // or an Imf::LevelMode of tiles
  Imath::Box2i data{{0, 0}, {36, 70}};
  Imath::Box2i display{{0, 0}, {36, 70}};
  std::string name{};  // none of a part alone
  std::string view{};
  std::function<void(Imf::Header&)> describe{};  // states what else there is to say
};

inline Imf::Header headerOf(const ExrPart& part) {
  Imf::Header header(part.display, part.data);
  header.compression() = part.compression;
  header.setType(part.levels == kInRows ? Imf::SCANLINEIMAGE : Imf::TILEDIMAGE);
  if (part.levels != kInRows) {
    header.setTileDescription({16, 24, static_cast<Imf::LevelMode>(part.levels)});
  }
  if (!part.name.empty()) {
    header.setName(part.name);
  }
  if (!part.view.empty()) {
    header.setView(part.view);
  }
  for (const auto& [name, type, sampling] : part.channels) {
    header.channels().insert(name, Imf::Channel(type, sampling, sampling));
  }
  if (part.describe) {
    part.describe(header);
  }
  return header;
}

// Of the samples' random bits those in the mask are set.
inline void writeExr(const std::string& path, const std::vector<ExrPart>& parts, std::uint32_t mask = ~0U) {
  std::vector<Imf::Header> headers(parts.size());
  std::ranges::transform(parts, headers.begin(), headerOf);
  std::mt19937 random(7);
  Imf::MultiPartOutputFile file(path.c_str(), headers.data(), static_cast<int>(headers.size()));
  for (int i = 0; i < file.parts(); ++i) {
    const ExrPart& part = parts[static_cast<std::size_t>(i)];
    const auto width = static_cast<std::size_t>(part.data.size().x + 1);
    const auto height = static_cast<std::size_t>(part.data.size().y + 1);
    std::vector<std::uint32_t> samples(width * height * part.channels.size());
    std::ranges::generate(samples, [&] { return static_cast<std::uint32_t>(random()) & mask; });
    Imf::FrameBuffer buffer;
    for (std::size_t c = 0; c < part.channels.size(); ++c) {
      const auto& [name, type, sampling] = part.channels[c];
      buffer.insert(name, Imf::Slice::Make(type, samples.data() + width * height * c, part.data, 4, 4 * width, sampling,
                                           sampling));
    }
    if (part.levels == kInRows) {
      Imf::OutputPart output(file, i);
      output.setFrameBuffer(buffer);
      output.writePixels(static_cast<int>(height));
      continue;
    }
    Imf::TiledOutputPart output(file, i);
    output.setFrameBuffer(buffer);
    for (int y = 0; y < output.numYLevels(); ++y) {
      for (int x = 0; x < output.numXLevels(); ++x) {
        if (output.isValidLevel(x, y)) {
          output.writeTiles(0, output.numXTiles(x) - 1, 0, output.numYTiles(y) - 1, x, y);
        }
      }
    }
  }
}

}  // namespace vantorel::cli
