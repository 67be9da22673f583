// OpenEXR by its own library.
#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfHeader.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfThreading.h>
#include <OpenEXR/ImfTiledInputPart.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <type_traits>
#include <vector>

#include "cli/pictures/CodecThreads.h"
#include "cli/pictures/ExtraChannels.h"
#include "cli/pictures/HalfConversion.h"
#include "cli/pictures/OpenExrHeader.h"
#include "cli/pictures/PartChoice.h"
#include "cli/pictures/PictureInput.h"
#include "cli/pictures/PixelConversion.h"

namespace vantorel::cli {

namespace {

// Integers become 0 to 1, as those of other formats do.
constexpr float kUnitOfUint = 1.0f / 4294967295.0f;

// A channel to read, and which of a pixel's four it becomes.
struct Wanted {
  std::string name;
  Imf::PixelType type;
  std::size_t place;
};

// What OpenEXR says, less the name of the file, which begins the message anyway.
std::string reasonOf(const Iex::BaseExc& fault, const std::string& path) {
  const std::string text = fault.what();
  const std::string named = '"' + path + "\". ";
  const std::size_t at = text.find(named);
  return at == std::string::npos ? text : text.substr(at + named.size());
}

template <typename Channel>
Channel sampleOf(float value) {
  if constexpr (std::is_same_v<Channel, float>) {
    return value;
  } else {
    return quantise<Channel>(value);
  }
}

// Writes the first channels of every pixel, that many of four.
template <typename Channel, int kChannels>
void writeChannels(const float* pixels, std::size_t width, int channels, std::byte* out) {
  auto* to = reinterpret_cast<Channel*>(out);
  for (std::size_t x = 0; x < width; ++x, pixels += 4, to += 4) {
    for (int c = 0; c < (kChannels > 0 ? kChannels : channels); ++c) {
      to[c] = sampleOf<Channel>(pixels[c]);
    }
  }
}

template <typename Channel>
void writeRow(const float* pixels, std::size_t width, int channels, std::byte* out) {
  switch (channels) {
    case 4:
      return writeChannels<Channel, 4>(pixels, width, channels, out);
    case 3:
      return writeChannels<Channel, 3>(pixels, width, channels, out);
    default:
      return writeChannels<Channel, 0>(pixels, width, channels, out);
  }
}

void writeRow(const float* pixels, host::Depth depth, std::size_t width, int channels, std::byte* out) {
  switch (depth) {
    case host::Depth::Bits8:
      return writeRow<std::uint8_t>(pixels, width, channels, out);
    case host::Depth::Bits16:
      return writeRow<std::uint16_t>(pixels, width, channels, out);
    case host::Depth::Float:
      return writeRow<float>(pixels, width, channels, out);
  }
}

class OpenExrInput : public PictureInput {
 public:
  OpenExrInput(const InputFile& file, const std::string& part) : source_(file) {
    guarded([&] {
      file_.emplace(file.path.c_str());
      header_ = pictureHeaderOf(*file_, partNumber(partNames(*file_), part, source_.name));
    });
  }

  const PictureHeader& header() const override { return header_; }

  void readRows(int y_begin, ChannelRange channels, const host::ImageView& rows) override {
    const std::vector<Wanted> wanted = wantedOf(channels);
    if (all(wanted, Imf::FLOAT) && rows.depth == host::Depth::Float) {
      Imf::FrameBuffer buffer;
      addTo(buffer, wanted, Imf::FLOAT, reinterpret_cast<char*>(rows.data), static_cast<std::size_t>(rows.row_bytes),
            y_begin);
      return readInto(buffer, y_begin, rows.size.height);
    }
    // Strips that stay in the cache between decoding and conversion; tiles are read by whole rows of them.
    constexpr int kRowsPerStrip = 32;
    const int strip = header_.tile.height > 0 ? rows.size.height : kRowsPerStrip * (1 + Imf::globalThreadCount());
    for (int y = 0; y < rows.size.height; y += std::min(strip, rows.size.height - y)) {
      host::ImageView part = rows;
      part.data = rows.row(y);
      part.size.height = std::min(strip, rows.size.height - y);
      readStrip(y_begin + y, wanted, channels.end - channels.first, part);
    }
  }

  std::shared_ptr<const ExtraChannels> keepOthers(const std::vector<std::string>& names) override {
    const Imf::Header& header = file_->header(header_.part);
    Imf::ChannelList others;
    for (auto it = header.channels().begin(); it != header.channels().end(); ++it) {
      if (std::ranges::find(names, it.name()) == names.end()) {
        others.insert(it.name(), it.channel());
      }
    }
    others_ = std::make_shared<const ExtraChannels>(others, header.dataWindow());
    return others_;
  }

 private:
  // Runs a step of reading; what OpenEXR throws in it is the file's fault.
  template <typename Step>
  void guarded(const Step& step) const {
    try {
      step();
    } catch (const Iex::BaseExc& fault) {
      throw unreadablePicture(source_.name, reasonOf(fault, source_.path));
    }
  }

  std::vector<Wanted> wantedOf(ChannelRange range) const {
    const Imf::ChannelList& list = file_->header(header_.part).channels();
    std::vector<Wanted> wanted;
    for (int c = range.first; c < range.end; ++c) {
      const ChannelHeader& channel = header_.channels[static_cast<std::size_t>(c)];
      if (!channel.is_subsampled) {
        wanted.push_back({channel.name, list[channel.name].type, static_cast<std::size_t>(c - range.first)});
      }
    }
    return wanted;
  }

  static bool all(const std::vector<Wanted>& wanted, Imf::PixelType type) {
    return std::ranges::all_of(wanted, [type](const Wanted& channel) { return channel.type == type; });
  }

  // Adds places for the channels, four to a pixel, whose first row is `y_begin` of the data window. Integers stay
  // integers, in as many bytes as floats.
  void addTo(Imf::FrameBuffer& buffer, const std::vector<Wanted>& wanted, Imf::PixelType type, char* first,
             std::size_t row_bytes, int y_begin) const {
    const std::size_t sample = type == Imf::HALF ? 2 : 4;
    const std::ptrdiff_t top = std::ptrdiff_t{header_.data.y} + y_begin;
    char* const base =
        first - top * static_cast<std::ptrdiff_t>(row_bytes) - header_.data.x * static_cast<std::ptrdiff_t>(4 * sample);
    for (const Wanted& channel : wanted) {
      buffer.insert(channel.name, Imf::Slice(channel.type == Imf::UINT ? Imf::UINT : type,
                                             base + channel.place * sample, 4 * sample, row_bytes));
    }
  }

  // Reads that many rows of the data window, from `y_begin` on.
  void readInto(Imf::FrameBuffer& buffer, int y_begin, int count) {
    if (others_) {
      others_->addTo(buffer);
    }
    guarded([&] {
      if (const int tile = header_.tile.height; tile > 0) {
        Imf::TiledInputPart part(*file_, header_.part);
        part.setFrameBuffer(buffer);
        part.readTiles(0, part.numXTiles() - 1, y_begin / tile, (y_begin + count - 1) / tile);
      } else {
        Imf::InputPart part(*file_, header_.part);
        part.setFrameBuffer(buffer);
        part.readPixels(header_.data.y + y_begin, header_.data.y + y_begin + count - 1);
      }
    });
  }

  void readStrip(int y_begin, const std::vector<Wanted>& wanted, int channels, const host::ImageView& rows) {
    const bool are_halves = all(wanted, Imf::HALF);
    const auto width = static_cast<std::size_t>(rows.size.width);
    const std::size_t row_bytes = 4 * width * (are_halves ? 2 : 4);
    samples_.resize(row_bytes * static_cast<std::size_t>(rows.size.height));
    Imf::FrameBuffer buffer;
    addTo(buffer, wanted, are_halves ? Imf::HALF : Imf::FLOAT, samples_.data(), row_bytes, y_begin);
    if (are_halves && wanted.size() == 3 && channels == 3) {
      // With a fourth channel OpenEXR interleaves many halves at once.
      buffer.insert("~", Imf::Slice(Imf::HALF, buffer[wanted[0].name].base + 6, 8, row_bytes, 1, 1, 1.0));
    }
    readInto(buffer, y_begin, rows.size.height);
    for (int y = 0; y < rows.size.height; ++y) {
      char* const row = samples_.data() + row_bytes * static_cast<std::size_t>(y);
      if (are_halves && channels == 4 && rows.depth == host::Depth::Float) {
        fromHalf(reinterpret_cast<const std::uint16_t*>(row), 4 * width, reinterpret_cast<float*>(rows.row(y)));
      } else {
        writeRow(are_halves ? floatsOfHalves(row, 4 * width) : floatsOfAny(row, wanted, 4 * width), rows.depth, width,
                 channels, rows.row(y));
      }
    }
  }

  const float* floatsOfHalves(const char* row, std::size_t count) {
    floats_.resize(count);
    fromHalf(reinterpret_cast<const std::uint16_t*>(row), count, floats_.data());
    return floats_.data();
  }

  // Turns integers among the floats of a row into floats, in place.
  static const float* floatsOfAny(char* row, const std::vector<Wanted>& wanted, std::size_t count) {
    auto* const floats = reinterpret_cast<float*>(row);
    for (const Wanted& channel : wanted) {
      for (std::size_t i = channel.place; channel.type == Imf::UINT && i < count; i += 4) {
        std::uint32_t integer = 0;
        std::memcpy(&integer, floats + i, sizeof integer);
        floats[i] = static_cast<float>(integer) * kUnitOfUint;
      }
    }
    return floats;
  }

  InputFile source_;
  std::optional<Imf::MultiPartInputFile> file_;
  PictureHeader header_;
  std::shared_ptr<const ExtraChannels> others_;
  std::vector<char> samples_;  // of a strip, four channels to a pixel
  std::vector<float> floats_;  // of a row
};

}  // namespace

std::unique_ptr<PictureInput> openExrInput(const InputFile& file, const std::string& part) {
  startOpenExrThreads();
  return std::make_unique<OpenExrInput>(file, part);
}

}  // namespace vantorel::cli
