#include "cli/pictures/ImageWriter.h"

#include <OpenImageIO/imageio.h>
#include <fmt/chrono.h>
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

#include "cli/base/CommandError.h"
#include "cli/base/Text.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/FileSink.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/OpenImageIoMetadata.h"
#include "cli/pictures/OutputFile.h"
#include "cli/pictures/RowEncoder.h"
#include "cli/pictures/SampleTypes.h"

namespace vantorel::cli {

namespace {

// Dates the file by SOURCE_DATE_EPOCH (seconds since 1970), and without it not at all, unless its source had a date:
// the same call writes the same bytes. The formats' writers would otherwise put in the time of writing.
void dateBySourceEpoch(OIIO::ImageSpec& spec, bool is_dpx) {
  if (spec.find_attribute("DateTime") != nullptr) {
    return;
  }
  // An empty date is as good as none to the DPX writer.
  std::string date = is_dpx ? " " : "";
  const char* const given = std::getenv("SOURCE_DATE_EPOCH");
  std::time_t seconds = 0;
  if (given != nullptr && std::from_chars(given, given + std::strlen(given), seconds).ec == std::errc{}) {
    date = fmt::format("{:%Y:%m:%d %H:%M:%S}", fmt::gmtime(seconds));
  }
  spec.attribute("DateTime", date);
}

// Rows written between two checks of the stop token; enough for OpenEXR to compress its blocks side by side.
constexpr int kRowsPerWrite = 256;

// PNG is packed fast rather than small: against zlib's default level and libpng's choice among all filters, writing
// takes about a tenth of the time, and files grow by about a quarter.
constexpr int kPngCompressionLevel = 1;
constexpr int kPngFilterSub = 16;

bool writesAlpha(const ImageFormat& format, const OutputPicture& picture) {
  return picture.has_alpha && format.holds_alpha;
}

void addMetadata(OIIO::ImageSpec& spec, const OutputPicture& picture) {
  if (picture.metadata) {
    for (const Attribute& attribute : picture.metadata->attributes()) {
      addAttribute(spec, attribute);
    }
  }
  if (picture.colour_space) {
    // A profile of the colour space that the pixels are in no longer would take them for something else.
    if (spec.get_string_attribute("oiio:ColorSpace") != *picture.colour_space) {
      spec.erase_attribute("ICCProfile");
    }
    spec.attribute("oiio:ColorSpace", *picture.colour_space);
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
  const bool is_dpx = std::strcmp(format.name, "DPX") == 0;
  // Ten and twelve bits are DPX's own way to hold what is read as 16.
  if (!is_dpx || picture.samples != SampleType::Bits16) {
    spec.erase_attribute("oiio:BitsPerSample");
  }
  if (format.unassociated_alpha) {
    spec.attribute("oiio:UnassociatedAlpha", 1);
  }
  spec.attribute("png:compressionLevel", kPngCompressionLevel);
  spec.attribute("png:filter", kPngFilterSub);
  spec.attribute("Software", recordText(picture.settings));
  dateBySourceEpoch(spec, is_dpx);
  return spec;
}

// Completes a picture that is going to be discarded, since closing its writer early prints an error. Blank rows take
// next to no time.
void writeBlankRows(OIIO::ImageOutput& output, int from_row) {
  const OIIO::ImageSpec& spec = output.spec();
  const std::vector<std::byte> blank(spec.scanline_bytes(true));
  for (int y = from_row; y < spec.height; ++y) {
    if (!output.write_scanline(spec.y + y, 0, spec.format, blank.data())) {
      return;
    }
  }
}

// A picture on its way into a file.
class Writer {
 public:
  Writer(const std::string& path, const ImageFormat& format, const OutputPicture& picture)
      : path_(path),
        format_(format),
        picture_(picture),
        file_(path),
        sink_(file_),
        output_(OIIO::ImageOutput::create(path)),
        encoder_(picture.pixels.depth, picture.samples, format.unassociated_alpha && writesAlpha(format, picture)) {
    if (!output_) {
      throw fileFailure(path, fmt::format("{} files are not supported by this machine's OpenImageIO", format.name));
    }
    if (!format.needs_path) {
      output_->set_ioproxy(&sink_);
    }
    if (!output_->open(format.needs_path ? file_.temporaryPath() : path, describe(format, picture))) {
      throw failure();
    }
  }

  void writeRows(int y_begin, int y_end) {
    const host::ConstImageView& pixels = picture_.pixels;
    const RowEncoder::Rows rows =
        encoder_.encode({pixels.row(y_begin), pixels.row_bytes, {pixels.size.width, y_end - y_begin}, pixels.depth});
    const OIIO::TypeDesc type = rows.quantised ? typeDesc(picture_.samples) : typeDesc(pixels.depth);
    const int top = output_->spec().y;
    if (!output_->write_scanlines(top + y_begin, top + y_end, 0, type, rows.data,
                                  static_cast<OIIO::stride_t>(type.size()) * 4, rows.row_bytes)) {
      throw failure();
    }
  }

  // Lets go of a picture of which only the rows above `rows_written` have been written.
  void abandon(int rows_written) {
    if (format_.must_be_finished) {
      writeBlankRows(*output_, rows_written);
    }
  }

  void finish() {
    const bool closed = output_->close();
    file_.throwIfFailed();
    // Writers that bypass the sink do not report whether their last write found room.
    if (!closed || (format_.needs_path && !isWholePicture(file_.temporaryPath(), picture_.pixels.size))) {
      throw failure();
    }
    file_.note(std::fflush(file_.stream()) == 0);
    file_.note(sealRecord(file_.temporaryPath()));
    file_.commit();
  }

 private:
  CommandError failure() {
    file_.throwIfFailed();
    return fileFailure(path_, fmt::format("cannot be written ({}); make room on its disk, or try another format or "
                                          "size",
                                          oneLine(output_->geterror())));
  }

  const std::string& path_;
  const ImageFormat& format_;
  const OutputPicture& picture_;
  // The file outlives the writer, which may write as it is destroyed.
  OutputFile file_;
  FileSink sink_;
  std::unique_ptr<OIIO::ImageOutput> output_;
  RowEncoder encoder_;
};

}  // namespace

void writePicture(const std::string& path, const ImageFormat& format, const OutputPicture& picture,
                  const std::stop_token& stop) {
  requireSizeHeld(format, path, picture.pixels.size);
  Writer writer(path, format, picture);
  const int height = picture.pixels.size.height;
  for (int y = 0; y < height; y += std::min(kRowsPerWrite, height - y)) {
    if (stop.stop_requested()) {
      writer.abandon(y);
      throw interrupted();
    }
    writer.writeRows(y, y + std::min(kRowsPerWrite, height - y));
  }
  writer.finish();
}

}  // namespace vantorel::cli
