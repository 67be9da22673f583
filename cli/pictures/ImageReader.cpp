#include "cli/pictures/ImageReader.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/Console.h"
#include "cli/base/Files.h"
#include "cli/base/Memory.h"
#include "cli/base/StandardStreams.h"
#include "cli/pictures/ChannelPlan.h"
#include "cli/pictures/ColourTags.h"
#include "cli/pictures/KeptMetadata.h"
#include "cli/pictures/Orientation.h"
#include "cli/pictures/PictureInput.h"
#include "cli/pictures/PixelConversion.h"
#include "cli/pictures/ReadLimits.h"
#include "cli/pictures/Truncation.h"

namespace vantorel::cli {

namespace {

// Rows read between two checks of the stop token: enough for OpenEXR to decompress its blocks side by side, and few
// enough of other formats to stay in the processor's caches until they are premultiplied.
constexpr int kRowsPerRead = 256;
constexpr int kRowsPerDecode = 16;

// An open file, and how to interpret its pixels.
struct Source {
  InputFile file;
  std::unique_ptr<PictureInput> input;
  ChannelPlan plan;
  bool unassociated = false;
  std::optional<ReadClock> clock;

  const PictureHeader& header() const { return input->header(); }
  host::Size displaySize() const { return {header().display.width, header().display.height}; }
};

Source openSource(const std::string& path, const ReadingOptions& options = {}) {
  const InputFile file{openablePath(path), inputName(path)};
  if (!isStandardStream(path)) {
    requireReadableFile(path, "a picture file");
  }
  // Checked before the libraries read the file, because they allocate whatever size a part of it states.
  if (isTruncated(file.path)) {
    throw fileFailure(file.name, "is truncated; give the whole file");
  }
  const ReadLimits limits = readLimits();
  Source source;
  source.file = file;
  source.clock.emplace(limits, file.name);
  source.input = openPictureInput(file, options.selection.part);
  requireSaneHeader(source.header(), file.name);
  requirePixelsWithin(limits, file.name, "a picture", source.displaySize());
  requirePixelsWithin(limits, file.name, "a data window", {source.header().data.width, source.header().data.height});
  requirePixelsWithin(limits, file.name, "a tile", source.header().tile);
  source.plan = planChannels(source.header(), options.selection.layer, file.name);
  if (options.alpha == AlphaReading::Ignored) {
    source.plan.source[3] = -1;
  }
  const bool is_straight = options.alpha == AlphaReading::AsStated ? source.header().straight_alpha
                                                                   : options.alpha == AlphaReading::Straight;
  source.unassociated = source.plan.hasAlpha() && is_straight;
  return source;
}

// Of the channels of an OpenEXR file but those of the picture, as if all had a sample for every pixel.
double extraBytes(const Source& source) {
  const PictureHeader& header = source.header();
  if (header.format != "openexr") {
    return 0.0;
  }
  double bytes = 0.0;
  for (std::size_t c = 0; c < header.channels.size(); ++c) {
    const bool is_extra = std::ranges::find(source.plan.source, static_cast<int>(c)) == source.plan.source.end();
    bytes += !is_extra ? 0.0 : header.channels[c].samples == SampleType::Half ? 2.0 : 4.0;
  }
  return bytes * header.data.width * header.data.height;
}

PictureInfo infoOf(const Source& source) {
  host::Size size = source.displaySize();
  if (swapsAxes(source.header().orientation)) {
    std::swap(size.width, size.height);
  }
  const SampleType samples = samplesOf(source.header(), source.plan);
  return {size,
          samples,
          source.plan.hasAlpha(),
          source.unassociated,
          source.header().format,
          dataWindow(source.header()),
          source.header().views,
          extraBytes(source),
          std::make_shared<const ColourFacts>(colourFactsOf(source.header(), samples))};
}

host::Image pixelsFor(host::Size size, host::Depth depth, const ReadingOptions& options) {
  host::Image pixels = options.spare ? options.spare->take() : host::Image();
  valueOrThrow(pixels.fit(size, depth));
  return pixels;
}

// What a file that is made from the picture replaces of this one.
std::shared_ptr<const PictureOrigin> originOf(const Source& source, const ReadingOptions& options) {
  const PictureHeader& header = source.header();
  PictureOrigin origin{source.file.path,
                       source.file.name,
                       header.format == "openexr",
                       header.part,
                       header.display.x,
                       header.display.y,
                       {},
                       {},
                       nullptr};
  const std::string& layer = options.selection.layer;
  const std::string prefix = layer.empty() ? "" : layer + '.';
  constexpr std::array<const char*, 4> kNames{"R", "G", "B", "A"};
  const ChannelMap& map = source.plan.source;
  const bool has_colour = map[0] != map[1] && map[1] != map[2];
  for (std::size_t c = 0; c < kNames.size(); ++c) {
    const bool is_own = map[c] >= 0 && (has_colour || c == 3);
    const std::string& name = map[c] >= 0 ? header.channels[static_cast<std::size_t>(map[c])].name : "";
    if (map[c] >= 0) {
      origin.replaced.push_back(name);
    }
    origin.written.push_back(is_own ? name : prefix + kNames[c]);
  }
  if (options.keep_extra) {
    if (const auto shortage = memoryShortage(extraBytes(source))) {
      throw outOfMemory(source.file.name,
                        fmt::format("its other channels {}; give a file of fewer channels", *shortage));
    }
    origin.extra = source.input->keepOthers(origin.replaced);
  }
  return std::make_shared<const PictureOrigin>(std::move(origin));
}

template <typename Channel>
void finishRows(const host::ImageView& rows, const ChannelMap& map, bool premultiply) {
  for (int y = 0; y < rows.size.height; ++y) {
    auto* row = reinterpret_cast<Channel*>(rows.row(y));
    if (map != kIdentityMap) {
      rearrangeRow(row, rows.size.width, map);
    }
    if (premultiply) {
      premultiplyRow(row, rows.size.width);
    }
  }
}

// Reads rows.size.height rows from y_begin on as premultiplied RGBA.
void readRows(Source& source, int y_begin, const host::ImageView& rows) {
  const int first = source.plan.first();
  ChannelMap map = source.plan.source;
  if (source.plan.end() - first <= 4) {
    source.input->readRows(y_begin, {first, source.plan.end()}, rows);
    for (int& channel : map) {
      channel = channel < 0 ? channel : channel - first;
    }
  } else {
    const std::size_t channel_bytes = host::bytesPerPixel(rows.depth) / 4;
    for (std::size_t c = 0; c < 4; ++c) {
      if (map[c] >= 0) {
        host::ImageView channel = rows;
        channel.data += c * channel_bytes;
        source.input->readRows(y_begin, {map[c], map[c] + 1}, channel);
        map[c] = static_cast<int>(c);
      }
    }
  }
  switch (rows.depth) {
    case host::Depth::Bits8:
      return finishRows<std::uint8_t>(rows, map, source.unassociated);
    case host::Depth::Bits16:
      return finishRows<std::uint16_t>(rows, map, source.unassociated);
    case host::Depth::Float:
      return finishRows<float>(rows, map, source.unassociated);
  }
}

int rowsPerRead(const PictureHeader& header) {
  if (header.format == "png" || header.format == "jpeg") {
    return kRowsPerDecode;
  }
  const int unit = std::max(1, header.tile.height);
  return unit * std::max(1, kRowsPerRead / unit);
}

// Clears what the window leaves of the picture. Done last, so that a file whose pixels cannot be read takes no memory
// for the rest of a large picture.
void clearAround(const host::Rect& window, const host::ImageView& picture) {
  const std::size_t pixel_bytes = host::bytesPerPixel(picture.depth);
  const int left = std::clamp(window.left, 0, picture.size.width);
  const int right = std::clamp(window.right, left, picture.size.width);
  const auto clear = [&](int x_begin, int x_end, int y) {
    std::memset(picture.pixel(x_begin, y), 0, pixel_bytes * static_cast<std::size_t>(x_end - x_begin));
  };
  for (int y = 0; y < picture.size.height; ++y) {
    if (y < window.top || y >= window.bottom) {
      clear(0, picture.size.width, y);
    } else {
      clear(0, left, y);
      clear(right, picture.size.width, y);
    }
  }
}

host::Rect united(const host::Rect& a, const host::Rect& b) {
  return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

// Calls visit(y_begin, y_end) for stretches of the data window's rows, from the top down, as long as it returns true.
// Returns whether it always did.
template <typename Visit>
bool forStretches(const Source& source, const std::stop_token& stop, const Visit& visit) {
  const int step = rowsPerRead(source.header());
  const int height = source.header().data.height;
  for (int y = 0; y < height; y += std::min(step, height - y)) {
    if (stop.stop_requested()) {
      throw interrupted();
    }
    source.clock->require();
    if (!visit(y, y + std::min(step, height - y))) {
      return false;
    }
  }
  return true;
}

// Looks at rows that have been read; false ends the reading.
using LookAtRows = bool(const host::ConstImageView& rows);

bool acceptAll(const host::ConstImageView&) {
  return true;
}

// Whether no pixel of those rows of 8 bits is partly transparent.
bool hasHardAlpha(const host::ConstImageView& rows) {
  bool hard = true;
  for (int y = 0; y < rows.size.height && hard; ++y) {
    const auto* pixel = reinterpret_cast<const std::uint8_t*>(rows.row(y));
    for (int x = 0; x < rows.size.width; ++x, pixel += 4) {
      hard &= pixel[3] == 0 || pixel[3] == kOpaque<std::uint8_t>;
    }
  }
  return hard;
}

bool readInside(Source& source, const host::Rect& window, const host::ImageView& picture, const std::stop_token& stop,
                LookAtRows* look) {
  return forStretches(source, stop, [&](int y_begin, int y_end) {
    const host::ImageView rows{picture.pixel(window.left, window.top + y_begin),
                               picture.row_bytes,
                               {window.width(), y_end - y_begin},
                               picture.depth};
    readRows(source, y_begin, rows);
    return look(host::asConst(rows));
  });
}

bool readCropped(Source& source, const host::Rect& window, const host::ImageView& picture, const std::stop_token& stop,
                 LookAtRows* look) {
  const int left = std::max(0, window.left);
  const int right = std::min(picture.size.width, window.right);
  const std::size_t pixel_bytes = host::bytesPerPixel(picture.depth);
  const int stretch = std::min(rowsPerRead(source.header()), source.header().data.height);
  host::Image rows = valueOrThrow(host::Image::create({window.width(), stretch}, picture.depth));
  return forStretches(source, stop, [&](int y_begin, int y_end) {
    host::ImageView part = rows.view();
    part.size.height = y_end - y_begin;
    readRows(source, y_begin, part);
    for (int y = y_begin; y < y_end; ++y) {
      const int target = window.top + y;
      if (target >= 0 && target < picture.size.height && left < right) {
        std::memcpy(picture.pixel(left, target), part.pixel(left - window.left, y - y_begin),
                    pixel_bytes * static_cast<std::size_t>(right - left));
      }
    }
    return look(host::asConst(part));
  });
}

// Nothing if `look` ended the reading.
std::optional<Picture> read(const std::string& path, host::Depth depth, const std::stop_token& stop,
                            const ReadingOptions& options, LookAtRows* look) {
  const LibraryMessagesDropped dropped;
  Source source = openSource(path, options);
  Picture picture;
  picture.info = infoOf(source);
  picture.metadata = std::make_shared<const Metadata>(keptMetadata(source.header().metadata));
  picture.origin = originOf(source, options);

  const host::Rect display{0, 0, source.displaySize().width, source.displaySize().height};
  const host::Rect data = dataWindow(source.header());
  const bool keeps_overscan = options.keep_overscan && source.header().orientation == 1;
  picture.area = keeps_overscan ? united(display, data) : display;
  picture.pixels = pixelsFor({picture.area.width(), picture.area.height()}, depth, options);
  // Where the data window lies in the pixels.
  const host::Rect window{data.left - picture.area.left, data.top - picture.area.top, data.right - picture.area.left,
                          data.bottom - picture.area.top};
  bool is_accepted = true;
  if (window.left >= 0 && window.top >= 0 && window.right <= picture.area.width() &&
      window.bottom <= picture.area.height()) {
    is_accepted = readInside(source, window, picture.pixels.view(), stop, look);
  } else {
    is_accepted = readCropped(source, window, picture.pixels.view(), stop, look);
  }
  if (!is_accepted) {
    return std::nullopt;
  }
  clearAround(window, picture.pixels.view());
  if (const int orientation = source.header().orientation; orientation > 1) {
    picture.pixels = upright(std::as_const(picture.pixels).view(), orientation);
    picture.area = {0, 0, picture.pixels.size().width, picture.pixels.size().height};
  }
  return picture;
}

}  // namespace

PictureInfo probePicture(const std::string& path, const ReadingOptions& options) {
  const LibraryMessagesDropped dropped;
  return infoOf(openSource(path, options));
}

Picture readPicture(const std::string& path, host::Depth depth, const std::stop_token& stop,
                    const ReadingOptions& options) {
  return *read(path, depth, stop, options, acceptAll);
}

std::optional<Picture> readUnlessSoft(const std::string& path, const ReadingOptions& options) {
  return read(path, host::Depth::Bits8, {}, options, hasHardAlpha);
}

bool isWholePicture(const std::string& path, host::Size size) try {
  const LibraryMessagesDropped dropped;
  Source source = openSource(path);
  if (infoOf(source).size != size) {
    return false;
  }
  const std::string& format = source.header().format;
  if (format == "png" || format == "jpeg") {
    return true;
  }
  // The last rows of the other formats can be read without those before.
  const int stretch = std::min(rowsPerRead(source.header()), source.header().data.height);
  const int begin = (source.header().data.height - 1) / stretch * stretch;
  host::Image rows = valueOrThrow(
      host::Image::create({source.header().data.width, source.header().data.height - begin}, host::Depth::Bits8));
  readRows(source, begin, rows.view());
  return true;
} catch (const CommandError&) {
  return false;
}

}  // namespace vantorel::cli
