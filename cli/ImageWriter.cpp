#include "cli/ImageWriter.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

#include "cli/CommandError.h"
#include "cli/ImageReader.h"
#include "cli/MemoryType.h"
#include "cli/OutputFile.h"
#include "cli/PixelConversion.h"

namespace vantorel::cli {

namespace {

// Rows between two looks at the stop token; enough for OpenEXR to compress its blocks side by side.
constexpr int kRowsPerWrite = 256;

// PNG is packed fast rather than small: against zlib's default level and libpng's choice among all filters, writing
// takes about a tenth of the time, and files grow by about a quarter.
constexpr int kPngCompressionLevel = 1;
constexpr int kPngFilterSub = 16;

OIIO::TypeDesc fileType(SampleType samples) {
  switch (samples) {
    case SampleType::Bits8:
      return OIIO::TypeDesc::UINT8;
    case SampleType::Bits16:
      return OIIO::TypeDesc::UINT16;
    case SampleType::Half:
      return OIIO::TypeDesc::HALF;
    case SampleType::Float:
      return OIIO::TypeDesc::FLOAT;
  }
  return OIIO::TypeDesc::FLOAT;
}

bool writesAlpha(const ImageFormat& format, const OutputPicture& picture) {
  return picture.has_alpha && format.holds_alpha;
}

OIIO::ImageSpec describe(const ImageFormat& format, const OutputPicture& picture) {
  const host::Size size = picture.pixels.size;
  OIIO::ImageSpec spec(size.width, size.height, writesAlpha(format, picture) ? 4 : 3, fileType(picture.samples));
  if (format.holds_data_window) {
    spec.x = picture.window.left;
    spec.y = picture.window.top;
    spec.full_width = picture.frame.width;
    spec.full_height = picture.frame.height;
  }
  for (const OIIO::ParamValue& value : picture.metadata) {
    spec.extra_attribs.add_or_replace(value);
  }
  // Ten and twelve bits are DPX's own way to hold what is read as 16.
  if (std::strcmp(format.name, "DPX") != 0 || picture.samples != SampleType::Bits16) {
    spec.erase_attribute("oiio:BitsPerSample");
  }
  if (format.unassociated_alpha) {
    spec.attribute("oiio:UnassociatedAlpha", 1);
  }
  spec.attribute("png:compressionLevel", kPngCompressionLevel);
  spec.attribute("png:filter", kPngFilterSub);
  spec.attribute("Software", "vantorel");
  return spec;
}

// The rows as the file takes them, where OpenImageIO's own conversion will not do.
class RowEncoder {
 public:
  RowEncoder(const ImageFormat& format, const OutputPicture& picture)
      : unpremultiply_(format.unassociated_alpha && writesAlpha(format, picture)),
        quantise_(picture.pixels.depth == host::Depth::Float && picture.samples <= SampleType::Bits16),
        samples_(picture.samples) {}

  bool changesPixels() const { return unpremultiply_ || quantise_; }

  // The type and bytes per pixel (four channels) of what encode() gives.
  OIIO::TypeDesc type(host::Depth depth) const { return quantise_ ? fileType(samples_) : memoryType(depth); }

  void encode(const host::ConstImageView& rows, std::vector<std::byte>& encoded) const {
    const std::size_t pixel_bytes = type(rows.depth).size() * 4;
    const std::size_t row_bytes = pixel_bytes * static_cast<std::size_t>(rows.size.width);
    encoded.resize(row_bytes * static_cast<std::size_t>(rows.size.height));
    for (int y = 0; y < rows.size.height; ++y) {
      std::byte* out = encoded.data() + row_bytes * static_cast<std::size_t>(y);
      switch (rows.depth) {
        case host::Depth::Bits8:
          copyRow<std::uint8_t>(rows, y, out);
          break;
        case host::Depth::Bits16:
          copyRow<std::uint16_t>(rows, y, out);
          break;
        case host::Depth::Float:
          encodeFloatRow(rows, y, out);
          break;
      }
    }
  }

 private:
  template <typename Channel>
  void copyRow(const host::ConstImageView& rows, int y, std::byte* out) const {
    const auto width = static_cast<std::size_t>(rows.size.width);
    std::memcpy(out, rows.row(y), width * 4 * sizeof(Channel));
    if (unpremultiply_) {
      unpremultiplyRow(reinterpret_cast<Channel*>(out), rows.size.width);
    }
  }

  void encodeFloatRow(const host::ConstImageView& rows, int y, std::byte* out) const {
    if (!quantise_) {
      return copyRow<float>(rows, y, out);
    }
    const auto* row = reinterpret_cast<const float*>(rows.row(y));
    std::vector<float> values(row, row + 4 * static_cast<std::size_t>(rows.size.width));
    if (unpremultiply_) {
      unpremultiplyRow(values.data(), rows.size.width);
    }
    if (samples_ == SampleType::Bits8) {
      std::transform(values.begin(), values.end(), reinterpret_cast<std::uint8_t*>(out), quantise<std::uint8_t>);
    } else {
      std::transform(values.begin(), values.end(), reinterpret_cast<std::uint16_t*>(out), quantise<std::uint16_t>);
    }
  }

  bool unpremultiply_;
  bool quantise_;
  SampleType samples_;
};

CommandError writerFailure(const std::string& path, OIIO::ImageOutput& output) {
  std::string reason = output.geterror();
  std::replace(reason.begin(), reason.end(), '\n', ' ');
  return fileFailure(path, fmt::format("cannot be written ({}); make room on its disk, or try another format or size",
                                       reason.empty() ? "no reason given" : reason));
}

// Fills up a picture that nobody is going to see, so that its writer can be closed in peace. Blank rows are packed at
// no cost to speak of.
void writeBlankRows(OIIO::ImageOutput& output, int from_row) {
  const OIIO::ImageSpec& spec = output.spec();
  const std::vector<std::byte> blank(spec.scanline_bytes(true));
  for (int y = from_row; y < spec.height; ++y) {
    if (!output.write_scanline(spec.y + y, 0, spec.format, blank.data())) {
      return;
    }
  }
}

}  // namespace

void writePicture(const std::string& path, const ImageFormat& format, const OutputPicture& picture,
                  const std::stop_token& stop) {
  requireSizeHeld(format, path, picture.pixels.size);
  OutputFile file(path);
  // The file outlives the writer, which may write as it is destroyed.
  const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(path);
  if (!output) {
    throw fileFailure(path, fmt::format("{} files are not supported by this machine's OpenImageIO", format.name));
  }
  const OIIO::ImageSpec spec = describe(format, picture);
  if (!format.needs_path) {
    output->set_ioproxy(&file);
  }
  if (!output->open(format.needs_path ? file.temporaryPath() : path, spec)) {
    throw writerFailure(path, *output);
  }

  const RowEncoder encoder(format, picture);
  std::vector<std::byte> encoded;
  const host::ConstImageView& pixels = picture.pixels;
  for (int y = 0; y < pixels.size.height; y += std::min(kRowsPerWrite, pixels.size.height - y)) {
    if (stop.stop_requested()) {
      if (format.must_be_finished) {
        writeBlankRows(*output, y);
      }
      throw interrupted();
    }
    const int end = y + std::min(kRowsPerWrite, pixels.size.height - y);
    host::ConstImageView rows{pixels.row(y), pixels.row_bytes, {pixels.size.width, end - y}, pixels.depth};
    if (encoder.changesPixels()) {
      encoder.encode(rows, encoded);
      rows.data = encoded.data();
      rows.row_bytes = static_cast<std::ptrdiff_t>(encoded.size()) / rows.size.height;
    }
    const OIIO::TypeDesc type = encoder.type(pixels.depth);
    if (!output->write_scanlines(spec.y + y, spec.y + end, 0, type, rows.data,
                                 static_cast<OIIO::stride_t>(type.size()) * 4, rows.row_bytes)) {
      file.throwIfFailed();
      throw writerFailure(path, *output);
    }
  }
  const bool closed = output->close();
  file.throwIfFailed();
  // Writers that go round the sink do not tell whether the last that they wrote found room.
  if (!closed || (format.needs_path && !isWholePicture(file.temporaryPath(), pixels.size))) {
    throw writerFailure(path, *output);
  }
  file.commit();
}

}  // namespace vantorel::cli
