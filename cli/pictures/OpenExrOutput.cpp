// OpenEXR by its own library: what a plate holds besides its picture passes into the output.
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfStringAttribute.h>

#include <array>
#include <map>
#include <optional>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/pictures/CodecThreads.h"
#include "cli/pictures/ExtraChannels.h"
#include "cli/pictures/FileDate.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/HalfConversion.h"
#include "cli/pictures/OpenExrAttributes.h"
#include "cli/pictures/OpenExrSource.h"
#include "cli/pictures/PictureInput.h"
#include "cli/pictures/PictureOutput.h"

namespace vantorel::cli {

namespace {

constexpr std::array kChromaticities{"chromaticities"};

// Lets OpenEXR write to an output file, which keeps the reason of a failure.
class ExrStream : public Imf::OStream {
 public:
  ExrStream(const std::string& path, OutputFile& file) : OStream(path.c_str()), file_(file) {}

  void write(const char bytes[], int count) override {
    const auto size = static_cast<std::size_t>(count);
    require(std::fwrite(bytes, 1, size, file_.stream()) == size);
  }
  std::uint64_t tellp() override { return static_cast<std::uint64_t>(ftello(file_.stream())); }
  void seekp(std::uint64_t position) override {
    require(fseeko(file_.stream(), static_cast<off_t>(position), SEEK_SET) == 0);
  }

 private:
  void require(bool succeeded) {
    file_.note(succeeded);
    file_.throwIfFailed();
  }

  OutputFile& file_;
};

// Runs a step of reading the plate; what OpenEXR throws in it is the plate's fault.
template <typename Step>
auto ofPlate(const PictureOrigin& origin, const Step& step) {
  try {
    return step();
  } catch (const Iex::BaseExc& fault) {
    throw unreadablePicture(origin.name, fault.what());
  }
}

Imath::Box2i windowAt(const host::Rect& rect, int x, int y) {
  return {{rect.left + x, rect.top + y}, {rect.right + x - 1, rect.bottom + y - 1}};
}

Imf::Compression compressionNamed(const std::string& name) {
  static const std::map<std::string, Imf::Compression> kNames{
      {"none", Imf::NO_COMPRESSION},   {"rle", Imf::RLE_COMPRESSION},   {"zips", Imf::ZIPS_COMPRESSION},
      {"zip", Imf::ZIP_COMPRESSION},   {"piz", Imf::PIZ_COMPRESSION},   {"pxr24", Imf::PXR24_COMPRESSION},
      {"b44", Imf::B44_COMPRESSION},   {"b44a", Imf::B44A_COMPRESSION}, {"dwaa", Imf::DWAA_COMPRESSION},
      {"dwab", Imf::DWAB_COMPRESSION},
  };
  return kNames.at(name);
}

class OpenExrOutput : public PictureOutput {
 public:
  OpenExrOutput(const std::string& path, OutputFile& file, const OutputPicture& picture)
      : path_(path), file_(file), picture_(picture), stream_(path, file) {
    if (picture.origin && picture.origin->is_openexr) {
      ofPlate(*picture.origin, [&] { source_.emplace(*picture.origin); });
    }
    guarded([&] {
      const std::vector<Imf::Header> headers = describe();
      output_.emplace(stream_, headers.data(), static_cast<int>(headers.size()), true);
      part_.emplace(*output_, passesParts() ? source_->part() : 0);
    });
  }

  void writeRows(int y_begin, const host::ConstImageView& rows) override {
    const int top = window_.min.y + y_begin;
    Imf::FrameBuffer buffer;
    if (extra_) {
      extra_->addTo(buffer);
    }
    encode(rows);
    const std::size_t sample = picture_.samples == SampleType::Half ? 2 : 4;
    const std::size_t row_bytes = 4 * sample * static_cast<std::size_t>(rows.size.width);
    char* const base = reinterpret_cast<char*>(encoded_.data()) - static_cast<std::ptrdiff_t>(row_bytes) * top -
                       static_cast<std::ptrdiff_t>(4 * sample) * window_.min.x;
    for (std::size_t c = 0; c < names_.size(); ++c) {
      buffer.insert(names_[c], Imf::Slice(pixelType(), base + c * sample, 4 * sample, row_bytes));
    }
    guarded([&] {
      part_->setFrameBuffer(buffer);
      part_->writePixels(rows.size.height);
    });
  }

  void close() override {
    if (passesParts()) {
      for (int part = 0; part < source_->parts(); ++part) {
        if (part != source_->part()) {
          ofPlate(*picture_.origin, [&] { source_->copyPart(part, *output_); });
          file_.throwIfFailed();
        }
      }
    }
    // The offsets of the parts are written when it is destroyed, and failures are recorded only in the file.
    part_.reset();
    output_.reset();
    requireComplete();
  }

 private:
  // If OpenEXR runs out of memory while compressing rows, it may leave them out silently.
  void requireComplete() {
    file_.note(std::fflush(file_.stream()) == 0);
    file_.throwIfFailed();
    guarded([&] {
      const Imf::MultiPartInputFile written(file_.temporaryPath().c_str());
      if (!written.partComplete(passesParts() ? source_->part() : 0)) {
        throw unwritablePicture(path_, "it is incomplete");
      }
    });
  }

  // The plate's other channels, in this file's data window.
  void placeExtra() {
    if (passesParts() && picture_.origin->extra) {
      const std::shared_ptr<const ExtraChannels>& extra = picture_.origin->extra;
      extra_ = extra->cover(window_) ? extra : std::make_shared<const ExtraChannels>(extra->in(window_));
    }
  }

  bool passesParts() const { return source_ && picture_.passes_plate; }
  Imf::PixelType pixelType() const { return picture_.samples == SampleType::Half ? Imf::HALF : Imf::FLOAT; }

  // Runs a step of writing; what OpenEXR throws in it is the output's fault.
  template <typename Step>
  void guarded(const Step& step) {
    try {
      step();
    } catch (const Iex::BaseExc& fault) {
      file_.throwIfFailed();
      throw unwritablePicture(path_, fault.what());
    }
  }

  // All parts of a file share one set of primaries, those of the pixels as they are now.
  void tagColours(Imf::Header& header) const {
    const std::vector<float> values =
        picture_.metadata ? picture_.metadata->floats("chromaticities") : std::vector<float>();
    constexpr std::size_t kValues = 8;
    if (values.size() == kValues) {
      Imf::addChromaticities(
          header, {{values[0], values[1]}, {values[2], values[3]}, {values[4], values[5]}, {values[6], values[7]}});
    } else {
      header = without(header, kChromaticities);
    }
  }

  std::vector<Imf::Header> describe() {
    std::vector<Imf::Header> headers;
    if (passesParts()) {
      for (int part = 0; part < source_->parts(); ++part) {
        headers.push_back(part == source_->part() ? pictureHeader() : source_->passedHeader(part));
      }
    } else {
      headers.push_back(pictureHeader());
    }
    for (Imf::Header& header : headers) {
      tagColours(header);
    }
    return headers;
  }

  // The plate's, less its tiles and preview, which were those of its own pixels, and less what only a file of several
  // parts needs where there is one.
  Imf::Header pictureAttributes() const {
    static constexpr std::array kOfPixels{"tiles", "preview", "chunkCount"};
    static constexpr std::array kOfParts{"tiles", "preview", "chunkCount", "name", "view", "multiView"};
    if (!source_) {
      return Imf::Header();
    }
    const Imf::Header& header = source_->header(source_->part());
    return passesParts() ? without(header, kOfPixels) : without(header, kOfParts);
  }

  Imf::Header pictureHeader() {
    Imf::Header header = pictureAttributes();
    const int x = passesParts() ? picture_.origin->display_x : 0;
    const int y = passesParts() ? picture_.origin->display_y : 0;
    window_ = windowAt(picture_.window, x, y);
    header.dataWindow() = window_;
    header.displayWindow() = windowAt({0, 0, picture_.frame.width, picture_.frame.height}, x, y);
    header.lineOrder() = Imf::INCREASING_Y;
    header.setType(Imf::SCANLINEIMAGE);
    placeExtra();
    addChannels(header);
    compress(header);
    if (picture_.metadata && !source_) {
      addAttributes(header, *picture_.metadata);
    }
    header.insert("Software", Imf::StringAttribute(recordText(picture_.settings)));
    if (const std::string date = fileDate(); !date.empty() && !Imf::hasCapDate(header)) {
      Imf::addCapDate(header, date);
    }
    return header;
  }

  void addChannels(Imf::Header& header) {
    names_ = {"R", "G", "B", "A"};
    header.channels() = extra_ ? extra_->channels() : Imf::ChannelList();
    if (passesParts()) {
      names_ = picture_.origin->written;
    }
    names_.resize(picture_.has_alpha ? 4 : 3);
    for (const std::string& name : names_) {
      header.channels().insert(name, Imf::Channel(pixelType()));
    }
  }

  void compress(Imf::Header& header) const {
    const Compression& wanted = picture_.encoding.compression;
    if (wanted.name.empty()) {
      return;
    }
    header.compression() = compressionNamed(wanted.name);
    if (wanted.level && header.compression() >= Imf::DWAA_COMPRESSION) {
      header.dwaCompressionLevel() = static_cast<float>(*wanted.level);
    } else if (wanted.level) {
      header.zipCompressionLevel() = static_cast<int>(*wanted.level);
    }
  }

  void encode(const host::ConstImageView& rows) {
    const std::size_t sample = picture_.samples == SampleType::Half ? 2 : 4;
    const auto count = 4 * static_cast<std::size_t>(rows.size.width);
    encoded_.resize(sample * count * static_cast<std::size_t>(rows.size.height));
    for (int y = 0; y < rows.size.height; ++y) {
      std::byte* const out = encoded_.data() + sample * count * static_cast<std::size_t>(y);
      if (picture_.samples == SampleType::Half) {
        toHalf(rows.row(y), rows.depth, count, reinterpret_cast<std::uint16_t*>(out));
      } else {
        toFloat(rows.row(y), rows.depth, count, reinterpret_cast<float*>(out));
      }
    }
  }

  const std::string& path_;
  OutputFile& file_;
  const OutputPicture& picture_;
  ExrStream stream_;
  std::optional<OpenExrSource> source_;
  Imath::Box2i window_;             // the data window, by the file's own count
  std::vector<std::string> names_;  // of the channels for R, G, B and A
  std::shared_ptr<const ExtraChannels> extra_;
  std::optional<Imf::MultiPartOutputFile> output_;
  std::optional<Imf::OutputPart> part_;
  std::vector<std::byte> encoded_;
};

}  // namespace

std::unique_ptr<PictureOutput> openExrOutput(const std::string& path, OutputFile& file, const ImageFormat&,
                                             const OutputPicture& picture) {
  startOpenExrThreads();
  return std::make_unique<OpenExrOutput>(path, file, picture);
}

}  // namespace vantorel::cli
