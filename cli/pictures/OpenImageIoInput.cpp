#include <OpenImageIO/imageio.h>
#include <fmt/format.h>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/pictures/OpenImageIoMetadata.h"
#include "cli/pictures/PictureInput.h"
#include "cli/pictures/SampleTypes.h"

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

PictureHeader headerOf(const OIIO::ImageSpec& spec, const std::string& format) {
  PictureHeader header;
  header.format = format;
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
  return header;
}

class OpenImageIoInput : public PictureInput {
 public:
  explicit OpenImageIoInput(const std::string& path) : path_(path) {
    // Premultiplying is done by the caller, with exact rounding and no regard to a gamma that the file may state.
    OIIO::ImageSpec request;
    request.attribute("oiio:UnassociatedAlpha", 1);
    input_ = OIIO::ImageInput::open(path, &request);
    if (!input_) {
      throw unreadablePicture(path, OIIO::geterror());
    }
    header_ = headerOf(input_->spec(), input_->format_name());
  }

  const PictureHeader& header() const override { return header_; }

  void readRows(int y_begin, ChannelRange channels, const host::ImageView& rows) override {
    const OIIO::ImageSpec& spec = input_->spec();
    const int top = spec.y + y_begin;
    const int bottom = top + rows.size.height;
    const auto pixel_bytes = static_cast<OIIO::stride_t>(host::bytesPerPixel(rows.depth));
    const OIIO::TypeDesc type = typeDesc(rows.depth);
    const bool read =
        spec.tile_width > 0
            ? input_->read_tiles(0, 0, spec.x, spec.x + spec.width, top, bottom, spec.z, spec.z + 1, channels.first,
                                 channels.end, type, rows.data, pixel_bytes, rows.row_bytes)
            : input_->read_scanlines(0, 0, top, bottom, spec.z, channels.first, channels.end, type, rows.data,
                                     pixel_bytes, rows.row_bytes);
    // Some readers note that strips are missing and still call it a success.
    if (!read || input_->has_error()) {
      throw unreadablePicture(path_, input_->geterror());
    }
  }

 private:
  std::string path_;
  std::unique_ptr<OIIO::ImageInput> input_;
  PictureHeader header_;
};

}  // namespace

CommandError unreadablePicture(const std::string& path, const std::string& reason) {
  return fileFailure(path, fmt::format("cannot be read as a picture ({}); give a whole PNG, JPEG, TIFF, OpenEXR or DPX "
                                       "file",
                                       oneLine(reason)));
}

std::unique_ptr<PictureInput> openPictureInput(const std::string& path) {
  return std::make_unique<OpenImageIoInput>(path);
}

}  // namespace vantorel::cli
