// JPEG by libjpeg.
#include <cstdio>

#include <jpeglib.h>

#include <csetjmp>
#include <vector>

#include "cli/pictures/FileDate.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/PlainExif.h"
#include "cli/pictures/RowEncoder.h"
#include "cli/pictures/RowSpread.h"

namespace vantorel::cli {

namespace {

constexpr int kQuality = 98;

// libjpeg's record of a file that is written.
class JpegWriter {
 public:
  JpegWriter(const std::string& path, OutputFile& file) : path_(path), file_(file) {
    info_.err = jpeg_std_error(&errors_);
    errors_.error_exit = fail;
    errors_.emit_message = [](j_common_ptr, int) {};
    info_.client_data = this;
    run([&] {
      jpeg_create_compress(&info_);
      jpeg_stdio_dest(&info_, file_.stream());
    });
  }
  ~JpegWriter() { jpeg_destroy_compress(&info_); }
  JpegWriter(const JpegWriter&) = delete;
  JpegWriter& operator=(const JpegWriter&) = delete;

  jpeg_compress_struct& info() { return info_; }

  // Runs a step of writing, in which libjpeg may jump out: it must hold nothing that is to be destroyed.
  template <typename Step>
  void run(const Step& step) {
    if (setjmp(jump_) != 0) {
      file_.note(std::ferror(file_.stream()) == 0);
      file_.throwIfFailed();
      throw unwritablePicture(path_, fault_);
    }
    step();
  }

 private:
  [[noreturn]] static void fail(j_common_ptr info) {
    auto& writer = *static_cast<JpegWriter*>(info->client_data);
    info->err->format_message(info, writer.fault_);
    std::longjmp(writer.jump_, 1);
  }

  const std::string& path_;
  OutputFile& file_;
  jpeg_compress_struct info_{};
  jpeg_error_mgr errors_{};
  std::jmp_buf jump_{};
  char fault_[JMSG_LENGTH_MAX] = "";
};

void setResolution(jpeg_compress_struct& info, const Metadata& metadata) {
  constexpr double kMost = 65535.0;
  const std::string unit = metadata.text("ResolutionUnit");
  const double x = metadata.number("XResolution").value_or(0.0);
  const double y = metadata.number("YResolution").value_or(x);
  if (x >= 1.0 && y >= 1.0 && x <= kMost && y <= kMost) {
    info.density_unit = unit == "in" || unit == "inch" ? 1 : unit == "cm" ? 2 : 0;
    info.X_density = static_cast<UINT16>(x);
    info.Y_density = static_cast<UINT16>(y);
  }
}

// The metadata of the picture, except its profile. OpenImageIO is asked where that is more than a few texts.
std::vector<JpegSegment> segmentsOf(const Metadata& metadata, const ImageFormat& format, const OutputPicture& picture) {
  const auto exif = writePlainExif(metadata);
  if (!exif || metadata.find("ImageDescription") != nullptr) {
    return formatLibrary().jpeg_segments(format, picture);
  }
  return {{JPEG_APP0 + 1, std::string("Exif\0\0", 6) + *exif}};
}

class JpegOutput : public PictureOutput {
 public:
  JpegOutput(const std::string& path, OutputFile& file, const OutputPicture& picture, const Metadata& metadata,
             const std::vector<JpegSegment>& segments)
      : writer_(path, file), encoder_(picture.pixels.depth, SampleType::Bits8, false) {
    jpeg_compress_struct& info = writer_.info();
    info.image_width = static_cast<JDIMENSION>(picture.pixels.size.width);
    info.image_height = static_cast<JDIMENSION>(picture.pixels.size.height);
    // libjpeg takes the pixels as they are, and skips their alpha.
    info.input_components = 4;
    info.in_color_space = JCS_EXT_RGBX;
    const Attribute* const profile = metadata.find("ICCProfile");
    writer_.run([&] {
      jpeg_set_defaults(&info);
      setResolution(info, metadata);
      jpeg_set_quality(&info, picture.encoding.jpeg_quality.value_or(kQuality), TRUE);
      jpeg_start_compress(&info, TRUE);
      for (const JpegSegment& segment : segments) {
        jpeg_write_marker(&info, segment.marker, reinterpret_cast<const JOCTET*>(segment.bytes.data()),
                          static_cast<unsigned>(segment.bytes.size()));
      }
      if (profile != nullptr) {
        jpeg_write_icc_profile(&info, reinterpret_cast<const JOCTET*>(profile->bytes.data()),
                               static_cast<unsigned>(profile->bytes.size()));
      }
    });
    eight_bits_.resize(4 * static_cast<std::size_t>(info.image_width));
  }

  void writeRows(int, const host::ConstImageView& pixels) override {
    // Row by row, so that each stays in the processor's caches on its way.
    for (int y = 0; y < pixels.size.height; ++y) {
      const std::byte* row =
          encoder_.encode({pixels.row(y), pixels.row_bytes, {pixels.size.width, 1}, pixels.depth}).data;
      if (pixels.depth == host::Depth::Bits16) {
        spreadRow(reinterpret_cast<const std::uint16_t*>(row), pixels.size.width, 4, {0, 4}, host::Depth::Bits8,
                  eight_bits_.data());
        row = eight_bits_.data();
      }
      // libjpeg's rows are not const, but it leaves those alone that it writes.
      JSAMPROW samples = const_cast<JSAMPROW>(reinterpret_cast<const JSAMPLE*>(row));
      writer_.run([&] { jpeg_write_scanlines(&writer_.info(), &samples, 1); });
    }
  }

  void close() override {
    writer_.run([&] { jpeg_finish_compress(&writer_.info()); });
  }

 private:
  JpegWriter writer_;
  RowEncoder encoder_;
  std::vector<std::byte> eight_bits_;  // a row at 8 bits
};

}  // namespace

std::unique_ptr<PictureOutput> openJpegOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                              const OutputPicture& picture) {
  Metadata metadata = picture.metadata ? *picture.metadata : Metadata();
  metadata.set(textAttribute("Software", recordText(picture.settings)));
  if (metadata.find("DateTime") == nullptr && !fileDate().empty()) {
    metadata.set(textAttribute("DateTime", fileDate()));
  }
  return std::make_unique<JpegOutput>(path, file, picture, metadata, segmentsOf(metadata, format, picture));
}

}  // namespace vantorel::cli
