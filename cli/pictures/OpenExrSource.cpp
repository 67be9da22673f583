#include "cli/pictures/OpenExrSource.h"

#include <OpenEXR/ImfDeepScanLineInputPart.h>
#include <OpenEXR/ImfDeepScanLineOutputPart.h>
#include <OpenEXR/ImfDeepTiledInputPart.h>
#include <OpenEXR/ImfDeepTiledOutputPart.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <OpenEXR/ImfTiledInputPart.h>
#include <OpenEXR/ImfTiledOutputPart.h>

#include <algorithm>
#include <array>

#include "cli/pictures/FileRecord.h"
#include "cli/pictures/OpenExrAttributes.h"

namespace vantorel::cli {

namespace {

template <typename Input, typename Output>
void copyPixels(Imf::MultiPartInputFile& from, Imf::MultiPartOutputFile& to, int part) {
  Input input(from, part);
  Output output(to, part);
  output.copyPixels(input);
}

std::size_t sampleBytes(Imf::PixelType type) {
  return type == Imf::HALF ? 2 : 4;
}

// Towards minus infinity, as OpenEXR counts the samples of channels that do not have one for every pixel.
int floorDivided(int value, int by) {
  return value >= 0 ? value / by : -((by - 1 - value) / by);
}

// Samples of a channel at positions [begin, end).
int samplesIn(int begin, int end, int sampling) {
  return floorDivided(end - 1, sampling) - floorDivided(begin - 1, sampling);
}

}  // namespace

OpenExrSource::OpenExrSource(const PictureOrigin& origin) : origin_(origin), file_(origin.path.c_str()) {
  const Imf::ChannelList& all = header(origin.part).channels();
  for (auto channel = all.begin(); channel != all.end(); ++channel) {
    if (std::ranges::find(origin.replaced, channel.name()) == origin.replaced.end()) {
      others_.insert(channel.name(), channel.channel());
    }
  }
}

Imf::Header OpenExrSource::passedHeader(int part) const {
  const Imf::Header& passed = header(part);
  // A record of how the plate was made is not one of how this file is.
  const auto* software = passed.findTypedAttribute<Imf::StringAttribute>("Software");
  static constexpr std::array kRecord{"Software"};
  return software != nullptr && holdsRecord(software->value()) ? without(passed, kRecord) : passed;
}

void OpenExrSource::copyPart(int part, Imf::MultiPartOutputFile& output) {
  const std::string& type = header(part).type();
  if (type == Imf::TILEDIMAGE) {
    copyPixels<Imf::TiledInputPart, Imf::TiledOutputPart>(file_, output, part);
  } else if (type == Imf::DEEPSCANLINE) {
    copyPixels<Imf::DeepScanLineInputPart, Imf::DeepScanLineOutputPart>(file_, output, part);
  } else if (type == Imf::DEEPTILE) {
    copyPixels<Imf::DeepTiledInputPart, Imf::DeepTiledOutputPart>(file_, output, part);
  } else {
    copyPixels<Imf::InputPart, Imf::OutputPart>(file_, output, part);
  }
}

void OpenExrSource::readOthers(int x_begin, int x_end, int y_begin, int y_end, Imf::FrameBuffer& rows) {
  const Imath::Box2i window = header(origin_.part).dataWindow();
  Imf::FrameBuffer own;
  memory_.clear();
  for (auto it = others_.begin(); it != others_.end(); ++it) {
    const Imf::Channel& channel = it.channel();
    const std::size_t bytes = sampleBytes(channel.type);
    const std::size_t row_bytes = bytes * static_cast<std::size_t>(samplesIn(x_begin, x_end, channel.xSampling));
    const auto count = static_cast<std::size_t>(samplesIn(y_begin, y_end, channel.ySampling));
    std::vector<char>& memory = memory_.emplace_back(row_bytes * count);
    // OpenEXR addresses a sample by its position, counted from the display window's origin.
    const std::ptrdiff_t first = floorDivided(y_begin - 1, channel.ySampling) + 1;
    const std::ptrdiff_t left = floorDivided(x_begin - 1, channel.xSampling) + 1;
    char* const base =
        memory.data() - first * static_cast<std::ptrdiff_t>(row_bytes) - left * static_cast<std::ptrdiff_t>(bytes);
    const Imf::Slice slice(channel.type, base, bytes, row_bytes, channel.xSampling, channel.ySampling);
    own.insert(it.name(), slice);
    rows.insert(it.name(), slice);
  }
  const int first = std::max(y_begin, window.min.y);
  const int last = std::min(y_end - 1, window.max.y);
  if (first <= last) {
    Imf::InputPart input(file_, origin_.part);
    input.setFrameBuffer(own);
    input.readPixels(first, last);
  }
}

}  // namespace vantorel::cli
