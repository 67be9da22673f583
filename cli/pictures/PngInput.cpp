// PNG by libpng, its pixels unpacked by libdeflate.
#include <malloc.h>
#include <png.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/PngPixelStream.h"
#include "cli/pictures/PngText.h"
#include "cli/pictures/RowSpread.h"

namespace vantorel::cli {

namespace {

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

// libpng's two records of a file that is read, and the fault that it found last.
class PngReader {
 public:
  explicit PngReader(const InputFile& file) : name_(file.name), file_(std::fopen(file.path.c_str(), "rbe")) {
    if (!file_) {
      throw unreadablePicture(name_, "Could not open file");
    }
    png_ = png_create_read_struct_2(
        PNG_LIBPNG_VER_STRING, this, fail, [](png_structp, png_const_charp) {}, this, allocate, release);
    info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    if (info_ == nullptr) {
      png_destroy_read_struct(&png_, nullptr, nullptr);
      throw unreadablePicture(name_, "out of memory");
    }
    png_set_read_fn(png_, this, read);
  }
  ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;

  png_structp png() const { return png_; }
  png_infop info() const { return info_; }

  // Decompresses all pixels at once if that is possible. To be called when the file is positioned before them; `size`
  // is their number of bytes.
  void unpackPixels(std::uint64_t size) {
    is_unpacked_ = pixels_.unpack(file_.get(), size);
    if (is_unpacked_) {
      // The checksums have been verified.
      png_set_crc_action(png_, PNG_CRC_QUIET_USE, PNG_CRC_DEFAULT);
      png_set_option(png_, PNG_IGNORE_ADLER32, PNG_OPTION_ON);
    }
  }

  // Runs a step of reading, in which libpng may jump out: it must hold nothing that is to be destroyed.
  template <typename Step>
  void run(const Step& step) {
    if (setjmp(png_jmpbuf(png_)) != 0) {
      throw unreadablePicture(name_, fault_);
    }
    step();
  }

 private:
  [[noreturn]] static void fail(png_structp png, png_const_charp fault) {
    std::snprintf(static_cast<PngReader*>(png_get_error_ptr(png))->fault_, sizeof fault_, "%s", fault);
    png_longjmp(png, 1);
  }
  // A few thousand bytes of compressed text can become as many millions. libpng skips chunks for which it gets no
  // memory; those of the pixels fit, whose rows it allows to have a million pixels.
  static png_voidp allocate(png_structp png, png_alloc_size_t size) {
    constexpr std::size_t kMost = std::size_t{32} << 20;
    auto& reader = *static_cast<PngReader*>(png_get_mem_ptr(png));
    if (size > kMost - std::min(kMost, reader.allocated_)) {
      return nullptr;
    }
    void* const memory = std::malloc(size);
    reader.allocated_ += malloc_usable_size(memory);
    return memory;
  }
  static void release(png_structp png, png_voidp memory) {
    static_cast<PngReader*>(png_get_mem_ptr(png))->allocated_ -= malloc_usable_size(memory);
    std::free(memory);
  }
  static void read(png_structp png, png_bytep out, png_size_t size) {
    auto& reader = *static_cast<PngReader*>(png_get_io_ptr(png));
    const bool is_read =
        reader.is_unpacked_ ? reader.pixels_.read(out, size) : std::fread(out, 1, size, reader.file_.get()) == size;
    if (!is_read) {
      png_error(png, "Read Error");
    }
  }

  std::string name_;
  std::unique_ptr<std::FILE, CloseFile> file_;
  PngPixelStream pixels_;
  bool is_unpacked_ = false;
  std::size_t allocated_ = 0;  // by libpng
  png_structp png_ = nullptr;
  png_infop info_ = nullptr;
  char fault_[256] = "";
};

void describeColour(png_structp png, png_infop info, Metadata& metadata) {
  int intent = 0;
  double exponent = 0.0;
  if (png_get_sRGB(png, info, &intent) != 0 || png_get_gAMA(png, info, &exponent) == 0 || exponent <= 0.0) {
    metadata.set(textAttribute("oiio:ColorSpace", "sRGB"));
    return;
  }
  // The reciprocal is meant to be a number of few digits.
  const float gamma = std::round(100.0f * static_cast<float>(1.0 / exponent)) / 100.0f;
  metadata.set(numberAttribute("oiio:Gamma", gamma));
  char name[32] = "linear";
  if (gamma != 1.0f) {
    std::snprintf(name, sizeof name, "Gamma%.2g", static_cast<double>(gamma));
  }
  metadata.set(textAttribute("oiio:ColorSpace", name));
}

void describeProfile(png_structp png, png_infop info, Metadata& metadata) {
  png_charp name = nullptr;
  int packing = 0;
  png_bytep profile = nullptr;
  png_uint_32 size = 0;
  if (png_get_iCCP(png, info, &name, &packing, &profile, &size) != 0 && size > 0) {
    const auto* bytes = reinterpret_cast<const std::byte*>(profile);
    metadata.set({"ICCProfile", "uint8[" + std::to_string(size) + ']', {}, {bytes, bytes + size}});
  }
}

void describeDate(png_structp png, png_infop info, Metadata& metadata) {
  png_timep time = nullptr;
  if (png_get_tIME(png, info, &time) != 0) {
    char date[48];
    std::snprintf(date, sizeof date, "%4d:%02d:%02d %02d:%02d:%02d", time->year, time->month, time->day, time->hour,
                  time->minute, time->second);
    metadata.set(textAttribute("DateTime", date));
  }
}

void describeResolution(png_structp png, png_infop info, Metadata& metadata) {
  png_uint_32 x = 0;
  png_uint_32 y = 0;
  int unit = 0;
  if (png_get_pHYs(png, info, &x, &y, &unit) != 0) {
    constexpr auto kMetresPerInch = static_cast<float>(2.54 / 100.0);
    const float scale = unit == PNG_RESOLUTION_METER ? kMetresPerInch : 1.0f;
    metadata.set(textAttribute("ResolutionUnit", unit == PNG_RESOLUTION_METER ? "inch" : "none"));
    metadata.set(numberAttribute("XResolution", static_cast<float>(x) * scale));
    metadata.set(numberAttribute("YResolution", static_cast<float>(y) * scale));
  }
  const float aspect = png_get_pixel_aspect_ratio(png, info);
  if (aspect != 0.0f && aspect != 1.0f) {
    metadata.set(numberAttribute("PixelAspectRatio", aspect));
  }
}

void describeTexts(png_structp png, png_infop info, Metadata& metadata) {
  png_textp texts = nullptr;
  int count = 0;
  png_get_text(png, info, &texts, &count);
  for (int i = 0; i < count; ++i) {
    const std::string_view key = texts[i].key;
    const std::string text = texts[i].text == nullptr ? "" : texts[i].text;
    if (key == kXmpKey) {
      formatLibrary().add_xmp(text, metadata);
      metadata.set(textAttribute(std::string(kXmpKey), uprightXmp(text)));
    } else if (key == kExifKey) {
      formatLibrary().add_exif(exifOfText(text), metadata);
    } else {
      metadata.set(textAttribute(attributeOfKeyword(key), text));
    }
  }
}

void describeExif(png_structp png, png_infop info, Metadata& metadata) {
  png_bytep exif = nullptr;
  png_uint_32 size = 0;
  if (png_get_eXIf_1(png, info, &size, &exif) != 0 && size > 0) {
    formatLibrary().add_exif({reinterpret_cast<const char*>(exif), size}, metadata);
  }
}

class PngInput : public PictureInput {
 public:
  explicit PngInput(const InputFile& file) : file_(file) {
    begin();
    png_structp const png = reader_->png();
    png_infop const info = reader_->info();
    header_.format = "png";
    const Window frame{0, 0, static_cast<int>(png_get_image_width(png, info)),
                       static_cast<int>(png_get_image_height(png, info))};
    header_.display = frame;
    header_.data = {png_get_x_offset_pixels(png, info), png_get_y_offset_pixels(png, info), frame.width, frame.height};
    channels_ = png_get_channels(png, info);
    is_deep_ = png_get_bit_depth(png, info) == 16;
    const std::string names = channels_ < 3 ? "YA" : "RGBA";
    for (std::size_t c = 0; c < static_cast<std::size_t>(channels_); ++c) {
      header_.channels.push_back({{names[c]}, is_deep_ ? SampleType::Bits16 : SampleType::Bits8});
    }
    header_.alpha_channel = channels_ % 2 == 0 ? channels_ - 1 : -1;
    header_.straight_alpha = true;
    describeColour(png, info, header_.metadata);
    describeProfile(png, info, header_.metadata);
    describeDate(png, info, header_.metadata);
    describeTexts(png, info, header_.metadata);
    describeResolution(png, info, header_.metadata);
    describeExif(png, info, header_.metadata);
    header_.metadata.set(numberAttribute("oiio:UnassociatedAlpha", 1));
    const auto orientation = header_.metadata.number("Orientation").value_or(1.0);
    header_.orientation = orientation >= 1.0 && orientation <= 8.0 ? static_cast<int>(orientation) : 1;
  }

  const PictureHeader& header() const override { return header_; }

  void readRows(int y_begin, ChannelRange channels, const host::ImageView& rows) override {
    if (y_begin < next_row_ || !reads_pixels_) {
      reads_pixels_ = true;
      begin();
    }
    while (next_row_ < y_begin) {
      nextRow();
    }
    for (int y = 0; y < rows.size.height; ++y) {
      const png_bytep row = nextRow();
      if (is_deep_) {
        spreadRow(reinterpret_cast<const std::uint16_t*>(row), rows.size.width, channels_, channels, rows.depth,
                  rows.row(y));
      } else {
        spreadRow(row, rows.size.width, channels_, channels, rows.depth, rows.row(y));
      }
    }
  }

 private:
  // Opens the file, and reads what comes before the pixels.
  void begin() {
    reader_.emplace(file_);
    png_structp const png = reader_->png();
    png_infop const info = reader_->info();
    reader_->run([&] {
      if (reads_pixels_) {
        // The metadata has been read already.
        png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_NEVER, nullptr, -1);
      }
      png_read_info(png, info);
    });
    if (reads_pixels_ && png_get_interlace_type(png, info) == PNG_INTERLACE_NONE) {
      const std::uint64_t filter_and_row = 1 + std::uint64_t{png_get_rowbytes(png, info)};
      reader_->unpackPixels(filter_and_row * png_get_image_height(png, info));
    }
    reader_->run([&] {
      // Grey of few bits becomes 8 bits, palettes RGB, transparent colours an alpha.
      png_set_expand(png);
      if constexpr (std::endian::native == std::endian::little) {
        png_set_swap(png);
      }
      passes_ = png_set_interlace_handling(png);
      png_read_update_info(png, info);
    });
    row_bytes_ = png_get_rowbytes(png, info);
    next_row_ = 0;
  }

  png_bytep nextRow() {
    png_structp const png = reader_->png();
    if (passes_ > 1 && next_row_ == 0) {
      readInterlaced();
    }
    if (passes_ > 1) {
      return memory_.get() + row_bytes_ * static_cast<std::size_t>(next_row_++);
    }
    if (next_row_ == 0) {
      memory_ = std::make_unique_for_overwrite<png_byte[]>(row_bytes_);
    }
    png_bytep const row = memory_.get();
    reader_->run([&] { png_read_row(png, row, nullptr); });
    ++next_row_;
    return row;
  }

  // All rows of a picture of which every pass has some.
  void readInterlaced() {
    const auto height = static_cast<std::size_t>(header_.data.height);
    // Not cleared, so that pixels that are missing from the file take no memory.
    memory_ = std::make_unique_for_overwrite<png_byte[]>(row_bytes_ * height);
    std::vector<png_bytep> rows(height);
    for (std::size_t y = 0; y < height; ++y) {
      rows[y] = memory_.get() + row_bytes_ * y;
    }
    png_structp const png = reader_->png();
    png_bytepp const first = rows.data();
    reader_->run([&] { png_read_image(png, first); });
  }

  InputFile file_;
  std::optional<PngReader> reader_;
  PictureHeader header_;
  int channels_ = 0;
  bool is_deep_ = false;  // 16 bits a sample
  int passes_ = 1;
  std::size_t row_bytes_ = 0;
  bool reads_pixels_ = false;  // rather than the header alone
  int next_row_ = 0;
  std::unique_ptr<png_byte[]> memory_;  // one row, or all where they are interlaced
};

}  // namespace

std::unique_ptr<PictureInput> openPngInput(const InputFile& file) {
  return std::make_unique<PngInput>(file);
}

}  // namespace vantorel::cli
