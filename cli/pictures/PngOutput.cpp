// PNG by libpng, its pixels packed by libdeflate.
#include <png.h>
#include <strings.h>

#include <algorithm>
#include <bit>
#include <csetjmp>
#include <cstring>
#include <deque>
#include <optional>
#include <vector>

#include "cli/pictures/FileDate.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/PictureOutput.h"
#include "cli/pictures/PngPacking.h"
#include "cli/pictures/PngText.h"
#include "cli/pictures/RowEncoder.h"
#include "cli/pictures/RowSpread.h"

namespace vantorel::cli {

namespace {

// PNG is packed fast rather than small: against zlib's default level and libpng's choice among all filters, writing
// takes about a tenth of the time, and files grow by about a quarter.
constexpr int kFastLevel = 1;

// libpng's two records of a file that is written, and the fault that it found last.
class PngWriter {
 public:
  PngWriter(const std::string& path, OutputFile& file) : path_(path), file_(file) {
    png_ = png_create_write_struct(PNG_LIBPNG_VER_STRING, this, fail, [](png_structp, png_const_charp) {});
    info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    if (info_ == nullptr) {
      png_destroy_write_struct(&png_, nullptr);
      throw unwritablePicture(path_, "out of memory");
    }
    png_set_write_fn(png_, this, write, [](png_structp) {});
  }
  ~PngWriter() { png_destroy_write_struct(&png_, &info_); }
  PngWriter(const PngWriter&) = delete;
  PngWriter& operator=(const PngWriter&) = delete;

  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

  // Runs a step of writing, in which libpng may jump out: it must hold nothing that is to be destroyed.
  template <typename Step>
  void run(const Step& step) {
    if (setjmp(png_jmpbuf(png_)) != 0) {
      file_.throwIfFailed();
      throw unwritablePicture(path_, fault_);
    }
    step();
  }

 private:
  [[noreturn]] static void fail(png_structp png, png_const_charp fault) {
    std::snprintf(static_cast<PngWriter*>(png_get_error_ptr(png))->fault_, sizeof fault_, "%s", fault);
    png_longjmp(png, 1);
  }
  static void write(png_structp png, png_bytep bytes, png_size_t size) {
    auto& writer = *static_cast<PngWriter*>(png_get_io_ptr(png));
    const bool done = std::fwrite(bytes, 1, size, writer.file_.stream()) == size;
    writer.file_.note(done);
    if (!done) {
      png_error(png, "write error");
    }
  }

  const std::string& path_;
  OutputFile& file_;
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  char fault_[256] = "";
};

void tagColours(png_structp png, png_infop info, const Metadata& metadata) {
  const std::string space = metadata.text("oiio:ColorSpace");
  const auto is = [&](const char* name) { return strcasecmp(space.c_str(), name) == 0; };
  if (is("sRGB")) {
    png_set_sRGB_gAMA_and_cHRM(png, info, PNG_sRGB_INTENT_ABSOLUTE);
  } else if (is("linear")) {
    png_set_gAMA(png, info, 1.0);
  } else if (const auto gamma = metadata.number("oiio:Gamma");
             gamma && *gamma > 0.0 && strncasecmp(space.c_str(), "gamma", 5) == 0) {
    png_set_gAMA(png, info, 1.0 / *gamma);
  }
  if (const Attribute* const profile = metadata.find("ICCProfile")) {
    png_set_iCCP(png, info, "Embedded Profile", 0, reinterpret_cast<png_const_bytep>(profile->bytes.data()),
                 static_cast<png_uint_32>(profile->bytes.size()));
  }
}

void tagDate(png_structp png, png_infop info, const std::string& date) {
  int field[6] = {};
  if (std::sscanf(date.c_str(), "%4d:%02d:%02d %02d:%02d:%02d", &field[0], &field[1], &field[2], &field[3], &field[4],
                  &field[5]) == 6) {
    const auto byte = [&](int i) { return static_cast<png_byte>(field[i]); };
    const png_time time{static_cast<png_uint_16>(field[0]), byte(1), byte(2), byte(3), byte(4), byte(5)};
    png_set_tIME(png, info, &time);
  }
}

void tagResolution(png_structp png, png_infop info, const Metadata& metadata) {
  const auto x = metadata.number("XResolution");
  const auto y = metadata.number("YResolution");
  if (!x || !y || *x <= 0.0 || *y <= 0.0) {
    return;
  }
  const std::string unit = metadata.text("ResolutionUnit");
  const bool is_absolute = unit == "in" || unit == "inch" || unit == "cm";
  const double scale = !is_absolute ? 1.0 : unit == "cm" ? 100.0 : 100.0 / 2.54;
  constexpr double kMost = PNG_UINT_31_MAX;
  if (*x * scale < kMost && *y * scale < kMost) {
    const auto rounded = [&](double value) { return static_cast<png_uint_32>(value * scale + 0.5); };
    png_set_pHYs(png, info, rounded(*x), rounded(*y), is_absolute ? PNG_RESOLUTION_METER : PNG_RESOLUTION_UNKNOWN);
  }
}

bool isPlain(const std::string& text) {
  return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

class PngOutput : public PictureOutput {
 public:
  PngOutput(const std::string& path, OutputFile& file, const OutputPicture& picture)
      : picture_(picture),
        writer_(path, file),
        channels_(picture.has_alpha ? 4 : 3),
        encoder_(picture.pixels.depth, picture.samples, picture.has_alpha) {
    png_structp const png = writer_.png();
    png_infop const info = writer_.info();
    const host::Size size = picture.pixels.size;
    const Metadata metadata = picture.metadata ? *picture.metadata : Metadata();
    addTexts(metadata);
    writer_.run([&] {
      png_set_user_limits(png, PNG_UINT_31_MAX, PNG_UINT_31_MAX);
      png_set_IHDR(png, info, static_cast<png_uint_32>(size.width), static_cast<png_uint_32>(size.height),
                   isDeep() ? 16 : 8, picture.has_alpha ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB,
                   PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
      tagColours(png, info, metadata);
      tagResolution(png, info, metadata);
    });
    tagDate(png, info, metadata.find("DateTime") == nullptr ? fileDate() : metadata.text("DateTime"));
    writer_.run([&] {
      png_set_text(png, info, chunks_.data(), static_cast<int>(chunks_.size()));
      png_write_info(png, info);
    });
    const int level = picture.encoding.png_level.value_or(kFastLevel);
    const std::size_t pixel_bytes = static_cast<std::size_t>(channels_) * (isDeep() ? 2 : 1);
    const std::size_t row_bytes = pixel_bytes * static_cast<std::size_t>(size.width);
    if (PngPacking::holds((1 + std::uint64_t{row_bytes}) * static_cast<std::uint64_t>(size.height))) {
      packing_.emplace(row_bytes, size.height, pixel_bytes, level);
      return;
    }
    writer_.run([&] {
      png_set_compression_level(png, level);
      png_set_filter(png, 0, PNG_FILTER_SUB);
      if constexpr (std::endian::native == std::endian::little) {
        png_set_swap(png);
      }
    });
  }

  void writeRows(int, const host::ConstImageView& pixels) override {
    // Row by row, so that each stays in the processor's caches on its way.
    for (int y = 0; y < pixels.size.height; ++y) {
      const RowEncoder::Rows row =
          encoder_.encode({pixels.row(y), pixels.row_bytes, {pixels.size.width, 1}, pixels.depth});
      const host::Depth depth = row.quantised ? (isDeep() ? host::Depth::Bits16 : host::Depth::Bits8) : pixels.depth;
      writeRow(fileRow(row.data, depth, pixels.size.width), pixels.size.width);
    }
  }

  void close() override {
    if (!packing_) {
      return writer_.run([&] { png_write_end(writer_.png(), nullptr); });
    }
    const std::span<const std::uint8_t> pixels = packing_->packed();
    writer_.run([&] {
      png_write_chunk(writer_.png(), reinterpret_cast<png_const_bytep>("IDAT"), pixels.data(), pixels.size());
      png_write_chunk(writer_.png(), reinterpret_cast<png_const_bytep>("IEND"), nullptr, 0);
    });
  }

 private:
  bool isDeep() const { return picture_.samples == SampleType::Bits16; }

  // Keeps the texts of which libpng gets the addresses.
  void addText(const std::string& keyword, const std::string& text) {
    constexpr std::size_t kLongestKeyword = 79;
    if (keyword.empty() || keyword.size() > kLongestKeyword) {
      return;
    }
    png_text chunk{};
    const bool is_latin = isPlain(text) && keyword != kXmpKey;
    chunk.compression = is_latin ? PNG_TEXT_COMPRESSION_NONE : PNG_ITXT_COMPRESSION_NONE;
    chunk.key = texts_.emplace_back(keyword).data();
    chunk.text = texts_.emplace_back(text).data();
    chunk.text_length = text.size();
    chunks_.push_back(chunk);
  }

  void addTexts(const Metadata& metadata) {
    for (const Attribute& attribute : metadata.attributes()) {
      const bool is_elsewhere = attribute.name.rfind("oiio:", 0) == 0 || attribute.name == "DateTime" ||
                                attribute.name == "ResolutionUnit" || attribute.name == "Software";
      if (attribute.isText() && !is_elsewhere) {
        addText(keywordOfAttribute(attribute.name), attribute.text);
      }
    }
    addText("Software", recordText(picture_.settings));
  }

  void writeRow(png_const_bytep row, int width) {
    if (!packing_) {
      return writer_.run([&] { png_write_row(writer_.png(), row); });
    }
    if (isDeep() && std::endian::native == std::endian::little) {
      const auto* const samples = reinterpret_cast<const std::uint16_t*>(row);
      swapped_.resize(static_cast<std::size_t>(channels_) * static_cast<std::size_t>(width));
      std::transform(samples, samples + swapped_.size(), swapped_.begin(),
                     [](std::uint16_t sample) { return static_cast<std::uint16_t>(sample << 8 | sample >> 8); });
      row = reinterpret_cast<png_const_bytep>(swapped_.data());
    }
    packing_->add(row);
  }

  // The row as the machine holds it, in the file's type, from one of four channels at that depth.
  png_const_bytep fileRow(const std::byte* row, host::Depth depth, int width) {
    const host::Depth wanted = isDeep() ? host::Depth::Bits16 : host::Depth::Bits8;
    if (depth != wanted) {
      converted_.resize(host::bytesPerPixel(wanted) * static_cast<std::size_t>(width));
      if (isDeep()) {
        spreadRow(reinterpret_cast<const std::uint8_t*>(row), width, 4, {0, 4}, wanted, converted_.data());
      } else {
        spreadRow(reinterpret_cast<const std::uint16_t*>(row), width, 4, {0, 4}, wanted, converted_.data());
      }
      row = converted_.data();
    }
    if (channels_ == 4) {
      return reinterpret_cast<png_const_bytep>(row);
    }
    if (isDeep()) {
      dropAlpha<2>(row, static_cast<std::size_t>(width));
    } else {
      dropAlpha<1>(row, static_cast<std::size_t>(width));
    }
    return reinterpret_cast<png_const_bytep>(opaque_.data());
  }

  template <std::size_t kSampleBytes>
  void dropAlpha(const std::byte* row, std::size_t width) {
    // A pixel is written whole, and its alpha overwritten by the next.
    opaque_.resize(kSampleBytes * (3 * width + 1));
    for (std::size_t x = 0; x < width; ++x) {
      std::memcpy(opaque_.data() + 3 * kSampleBytes * x, row + 4 * kSampleBytes * x, 4 * kSampleBytes);
    }
  }

  const OutputPicture& picture_;
  PngWriter writer_;
  int channels_;
  RowEncoder encoder_;
  std::deque<std::string> texts_;
  std::vector<png_text> chunks_;
  std::vector<std::byte> converted_;  // a row of the file's type
  std::vector<std::byte> opaque_;     // and one without alpha
  std::vector<std::uint16_t> swapped_;
  std::optional<PngPacking> packing_;  // of pictures that are not too large for it
};

}  // namespace

std::unique_ptr<PictureOutput> openPngOutput(const std::string& path, OutputFile& file, const ImageFormat&,
                                             const OutputPicture& picture) {
  return std::make_unique<PngOutput>(path, file, picture);
}

}  // namespace vantorel::cli
