// What OpenImageIO writes, every format that has no output of its own here.
#include <OpenImageIO/filesystem.h>
#include <OpenImageIO/imageio.h>
#include <OpenImageIO/strutil.h>
#include <fmt/format.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/pictures/CommonMetadata.h"
#include "cli/pictures/FileDate.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/FileSink.h"
#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/OpenImageIoMetadata.h"
#include "cli/pictures/PictureOutput.h"
#include "cli/pictures/RowEncoder.h"
#include "cli/pictures/SampleTypes.h"
#include "cli/pictures/TiffFaults.h"
#include "cli/pictures/TiffMetadata.h"

namespace vantorel::cli {

namespace {

bool writesAlpha(const ImageFormat& format, const OutputPicture& picture) {
  return picture.has_alpha && format.holds_alpha;
}

void addMetadata(OIIO::ImageSpec& spec, const OutputPicture& picture) {
  if (picture.metadata) {
    for (const Attribute& attribute : picture.metadata->attributes()) {
      addAttribute(spec, attribute);
    }
  }
}

// What these formats' writers look for under names of their own.
void addOwnNames(OIIO::ImageSpec& spec, const std::string& writer, const Metadata& metadata) {
  const auto& all = spec.extra_attribs;
  if (writer == "tiff" && std::any_of(all.begin(), all.end(), [](const OIIO::ParamValue& attribute) {
        return OIIO::Strutil::starts_with(attribute.name(), "IPTC:") || attribute.name() == "Keywords";
      })) {
    spec.attribute("tiff:write_iptc", 1);
  }
  if (writer == "dpx") {
    if (const auto rate = framesPerSecond(metadata); rate && spec.find_attribute("dpx:FrameRate") == nullptr) {
      spec.attribute("dpx:FrameRate", static_cast<float>(*rate));
    }
    if (spec.find_attribute("dpx:InputDevice") == nullptr) {
      spec.attribute("dpx:InputDevice", spec.get_string_attribute("Model"));
    }
  }
}

void choosePacking(OIIO::ImageSpec& spec, const Encoding& encoding) {
  if (encoding.jpeg_quality) {
    spec.attribute("CompressionQuality", *encoding.jpeg_quality);
  }
  const Compression& compression = encoding.compression;
  if (!compression.name.empty()) {
    spec.attribute("compression", compression.name);
  }
  if (compression.level) {
    spec.attribute("tiff:zipquality", static_cast<int>(*compression.level));
  }
}

OIIO::ImageSpec describe(const ImageFormat& format, const OutputPicture& picture) {
  const host::Size size = picture.pixels.size;
  OIIO::ImageSpec spec(size.width, size.height, writesAlpha(format, picture) ? 4 : 3, typeDesc(picture.samples));
  if (format.holds_data_window) {
    spec.x = picture.window.left;
    spec.y = picture.window.top;
    spec.full_width = picture.frame.width;
    spec.full_height = picture.frame.height;
  }
  addMetadata(spec, picture);
  if (picture.metadata) {
    addOwnNames(spec, format.writer, *picture.metadata);
  }
  const bool is_dpx = std::strcmp(format.name, "DPX") == 0;
  // DPX can store samples that are read as 16 bits in ten or twelve.
  if (!is_dpx || picture.samples != SampleType::Bits16) {
    spec.erase_attribute("oiio:BitsPerSample");
  }
  if (format.unassociated_alpha) {
    spec.attribute("oiio:UnassociatedAlpha", 1);
  }
  choosePacking(spec, picture.encoding);
  spec.attribute("Software", recordText(picture.settings));
  if (spec.find_attribute("DateTime") == nullptr) {
    // Otherwise the formats' writers insert the current time. DPX's treats an empty date as none.
    const std::string date = fileDate();
    spec.attribute("DateTime", date.empty() && is_dpx ? " " : date);
  }
  return spec;
}

// The segments of a JPEG file that are neither the codec's own nor a profile's.
std::vector<JpegSegment> jpegSegments(std::string_view file) {
  constexpr int kFirst = 0xE1;
  constexpr int kProfile = 0xE2;
  constexpr int kLast = 0xEF;
  constexpr int kComment = 0xFE;
  constexpr int kScan = 0xDA;
  std::vector<JpegSegment> segments;
  const auto byte = [&](std::size_t at) { return std::size_t{static_cast<unsigned char>(file[at])}; };
  for (std::size_t at = 2; at + 4 <= file.size() && byte(at + 1) != kScan;) {
    const auto marker = static_cast<int>(byte(at + 1));
    const std::size_t length = byte(at + 2) * 256 + byte(at + 3);
    if ((marker >= kFirst && marker <= kLast && marker != kProfile) || marker == kComment) {
      segments.push_back({marker, std::string(file.substr(at + 4, length - 2))});
    }
    at += 2 + length;
  }
  return segments;
}

class OpenImageIoOutput : public PictureOutput {
 public:
  OpenImageIoOutput(const std::string& path, OutputFile& file, const ImageFormat& format, const OutputPicture& picture)
      : path_(path),
        picture_(picture),
        file_(file),
        sink_(file),
        output_(OIIO::ImageOutput::create(format.writer)),
        encoder_(picture.pixels.depth, picture.samples, format.unassociated_alpha && writesAlpha(format, picture)) {
    if (!output_) {
      throw fileFailure(path, fmt::format("{} files are not supported by this machine's OpenImageIO", format.name));
    }
    if (!format.needs_path) {
      output_->set_ioproxy(&sink_);
    }
    takeTiffFault();
    if (!output_->open(format.needs_path ? file_.temporaryPath() : path, describe(format, picture))) {
      throw failure();
    }
  }

  void writeRows(int y_begin, const host::ConstImageView& pixels) override {
    const RowEncoder::Rows rows = encoder_.encode(pixels);
    const OIIO::TypeDesc type = rows.quantised ? typeDesc(picture_.samples) : typeDesc(pixels.depth);
    const int top = output_->spec().y + y_begin;
    if (!output_->write_scanlines(top, top + pixels.size.height, 0, type, rows.data,
                                  static_cast<OIIO::stride_t>(type.size()) * 4, rows.row_bytes)) {
      throw failure();
    }
    throwIfFailed();
  }

  void close() override {
    const bool closed = output_->close();
    throwIfFailed();
    if (!closed) {
      throw failure();
    }
    if (picture_.metadata && std::strcmp(output_->format_name(), "tiff") == 0 &&
        !writeTiffMetadata(file_.temporaryPath(), *picture_.metadata)) {
      throwIfFailed();
      throw unwritablePicture(path_, "its attributes do not fit");
    }
  }

 private:
  // OpenImageIO's writers do not report all that fails below them.
  void throwIfFailed() {
    if (const int fault = takeTiffFault(); fault != 0) {
      errno = fault;
      file_.note(false);
    }
    file_.throwIfFailed();
  }

  CommandError failure() {
    throwIfFailed();
    return unwritablePicture(path_, output_->geterror());
  }

  const std::string& path_;
  const OutputPicture& picture_;
  OutputFile& file_;
  FileSink sink_;
  std::unique_ptr<OIIO::ImageOutput> output_;
  RowEncoder encoder_;
};

}  // namespace

std::unique_ptr<PictureOutput> openImageIoOutput(const std::string& path, OutputFile& file, const ImageFormat& format,
                                                 const OutputPicture& picture) {
  return std::make_unique<OpenImageIoOutput>(path, file, format, picture);
}

// Taken from a small picture with the same metadata.
std::vector<JpegSegment> jpegSegmentsByImageIo(const ImageFormat& format, const OutputPicture& picture) {
  constexpr int kSide = 8;
  OIIO::ImageSpec spec = describe(format, picture);
  spec.width = kSide;
  spec.height = kSide;
  spec.full_width = kSide;
  spec.full_height = kSide;
  std::vector<unsigned char> file;
  OIIO::Filesystem::IOVecOutput sink(file);
  const std::unique_ptr<OIIO::ImageOutput> output = OIIO::ImageOutput::create(format.writer);
  const std::vector<unsigned char> black(static_cast<std::size_t>(kSide * kSide * spec.nchannels));
  if (!output || !output->set_ioproxy(&sink) || !output->open("a.jpg", spec) ||
      !output->write_image(OIIO::TypeDesc::UINT8, black.data()) || !output->close()) {
    throw unwritablePicture(format.name, output ? output->geterror() : OIIO::geterror());
  }
  return jpegSegments({reinterpret_cast<const char*>(file.data()), file.size()});
}

}  // namespace vantorel::cli
