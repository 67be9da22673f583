// What OpenImageIO reads, every format that has no input of its own here.
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/MetadataBlocks.h"
#include "cli/pictures/OpenImageIoMetadata.h"
#include "cli/pictures/PartChoice.h"
#include "cli/pictures/PictureInput.h"
#include "cli/pictures/PngText.h"
#include "cli/pictures/SampleTypes.h"
#include "cli/pictures/TiffMetadata.h"

namespace vantorel::cli {

namespace {

SampleType sampleType(const OIIO::TypeDesc& type) {
  switch (type.basetype) {
    case OIIO::TypeDesc::UINT8:
    case OIIO::TypeDesc::INT8:
      return SampleType::Bits8;
    case OIIO::TypeDesc::UINT16:
    case OIIO::TypeDesc::INT16:
      return SampleType::Bits16;
    case OIIO::TypeDesc::HALF:
      return SampleType::Half;
    default:
      return SampleType::Float;
  }
}

void describe(const OIIO::ImageSpec& spec, PictureHeader& header) {
  header.data = {spec.x, spec.y, spec.width, spec.height};
  header.display = {spec.full_x, spec.full_y, spec.full_width, spec.full_height};
  header.tile = {spec.tile_width, spec.tile_height};
  for (int c = 0; c < spec.nchannels; ++c) {
    header.channels.push_back({spec.channel_name(c), sampleType(spec.channelformat(c))});
  }
  header.alpha_channel = spec.alpha_channel;
  header.straight_alpha = spec.get_int_attribute("oiio:UnassociatedAlpha", 0) != 0;
  header.is_deep = spec.deep;
  header.is_volume = spec.depth > 1;
  const int orientation = spec.get_int_attribute("Orientation", 1);
  header.orientation = orientation >= 1 && orientation <= 8 ? orientation : 1;
  header.metadata = metadataOf(spec);
}

// Rows of 8 bits as 16: 255 becomes 65535, exactly. OpenImageIO does the same sample by sample, and more slowly.
void widenRow(const std::byte* narrow, int width, int channels, std::byte* wide) {
  const auto* from = reinterpret_cast<const std::uint8_t*>(narrow);
  auto* to = reinterpret_cast<std::uint16_t*>(wide);
  constexpr int kFactor = 257;
  if (channels == 4) {
    std::transform(from, from + 4 * static_cast<std::ptrdiff_t>(width), to,
                   [](std::uint8_t value) { return static_cast<std::uint16_t>(value * kFactor); });
    return;
  }
  for (int x = 0; x < width; ++x, from += 4, to += 4) {
    for (int c = 0; c < channels; ++c) {
      to[c] = static_cast<std::uint16_t>(from[c] * kFactor);
    }
  }
}

class OpenImageIoInput : public PictureInput {
 public:
  OpenImageIoInput(const InputFile& file, const std::string& part) : path_(file.name) {
    // Premultiplying is done by the caller, with exact rounding and no regard to a gamma that the file may state.
    OIIO::ImageSpec request;
    request.attribute("oiio:UnassociatedAlpha", 1);
    input_ = OIIO::ImageInput::open(file.path, &request);
    if (!input_) {
      throw unreadablePicture(path_, OIIO::Strutil::replace(OIIO::geterror(), file.path, file.name));
    }
    const int number = part.empty() ? 0 : choosePart(part);
    header_.format = input_->format_name();
    describe(input_->spec(), header_);
    header_.part = number;
    addWhatIsLeftOut(file.path);
  }

  const PictureHeader& header() const override { return header_; }

  void readRows(int y_begin, ChannelRange channels, const host::ImageView& rows) override {
    const bool widens = rows.depth == host::Depth::Bits16 && input_->spec().format == OIIO::TypeDesc::UINT8 &&
                        input_->spec().channelformats.empty();
    if (!widens) {
      return readAt(rows.depth, y_begin, channels, rows);
    }
    const std::ptrdiff_t row_bytes = 4 * static_cast<std::ptrdiff_t>(rows.size.width);
    narrow_.resize(static_cast<std::size_t>(row_bytes) * static_cast<std::size_t>(rows.size.height));
    const host::ImageView narrow{narrow_.data(), row_bytes, rows.size, host::Depth::Bits8};
    readAt(host::Depth::Bits8, y_begin, channels, narrow);
    for (int y = 0; y < rows.size.height; ++y) {
      widenRow(narrow.row(y), rows.size.width, channels.end - channels.first, rows.row(y));
    }
  }

 private:
  void readAt(host::Depth depth, int y_begin, ChannelRange channels, const host::ImageView& rows) {
    const OIIO::ImageSpec& spec = input_->spec();
    const int part = header_.part;
    const int top = spec.y + y_begin;
    const int bottom = top + rows.size.height;
    const auto pixel_bytes = static_cast<OIIO::stride_t>(host::bytesPerPixel(depth));
    const OIIO::TypeDesc type = typeDesc(depth);
    const bool read =
        spec.tile_width > 0
            ? input_->read_tiles(part, 0, spec.x, spec.x + spec.width, top, bottom, spec.z, spec.z + 1, channels.first,
                                 channels.end, type, rows.data, pixel_bytes, rows.row_bytes)
            : input_->read_scanlines(part, 0, top, bottom, spec.z, channels.first, channels.end, type, rows.data,
                                     pixel_bytes, rows.row_bytes);
    // Some readers note that strips are missing and still call it a success.
    if (!read || input_->has_error()) {
      throw unreadablePicture(path_, input_->geterror());
    }
  }

  // Metadata that the formats' readers skip.
  void addWhatIsLeftOut(const std::string& path) {
    if (header_.format == "tiff") {
      addTiffMetadata(path, header_.part, header_.metadata);
    } else if (header_.format == "jpeg") {
      const JpegBlocks blocks = readJpegBlocks(path);
      if (!blocks.xmp.empty()) {
        header_.metadata.set(textAttribute(std::string(kXmpKey), uprightXmp(blocks.xmp)));
      }
      // EXIF's unit takes the place of the one in JFIF's header.
      Metadata exif;
      addExif(blocks.exif, exif);
      if (const Attribute* const unit = exif.find("ResolutionUnit")) {
        header_.metadata.set(*unit);
      }
    }
  }

  // Goes to the part of that name or number. Returns its number.
  int choosePart(const std::string& wanted) {
    std::vector<std::string> names;
    while (input_->seek_subimage(static_cast<int>(names.size()), 0)) {
      names.push_back(input_->spec().get_string_attribute("oiio:subimagename"));
    }
    // Reaching the end after the last part is not an error.
    input_->geterror();
    const int number = partNumber(names, wanted, path_);
    if (!input_->seek_subimage(number, 0)) {
      throw unreadablePicture(path_, input_->geterror());
    }
    return number;
  }

  std::string path_;
  std::unique_ptr<OIIO::ImageInput> input_;
  PictureHeader header_;
  std::vector<std::byte> narrow_;  // rows of 8 bits on their way to 16
};

}  // namespace

std::unique_ptr<PictureInput> openImageIoInput(const InputFile& file, const std::string& part) {
  return std::make_unique<OpenImageIoInput>(file, part);
}

}  // namespace vantorel::cli
