// PNG by libpng.
#include <png.h>

#include <bit>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/pictures/FormatLibrary.h"
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
    png_ = png_create_read_struct(PNG_LIBPNG_VER_STRING, this, fail, [](png_structp, png_const_charp) {});
    info_ = png_ == nullptr ? nullptr : png_create_info_struct(png_);
    if (info_ == nullptr) {
      png_destroy_read_struct(&png_, nullptr, nullptr);
      throw unreadablePicture(name_, "out of memory");
    }
  }
  ~PngReader() { png_destroy_read_struct(&png_, &info_, nullptr); }
  PngReader(const PngReader&) = delete;
  PngReader& operator=(const PngReader&) = delete;

  png_structp png() const { return png_; }
  png_infop info() const { return info_; }
  std::FILE* file() const { return file_.get(); }

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

  std::string name_;
  std::unique_ptr<std::FILE, CloseFile> file_;
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
    if (y_begin < next_row_) {
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
      png_init_io(png, reader_->file());
      png_read_info(png, info);
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
      return memory_.data() + row_bytes_ * static_cast<std::size_t>(next_row_++);
    }
    memory_.resize(row_bytes_);
    png_bytep const row = memory_.data();
    reader_->run([&] { png_read_row(png, row, nullptr); });
    ++next_row_;
    return row;
  }

  // All rows of a picture of which every pass has some.
  void readInterlaced() {
    const auto height = static_cast<std::size_t>(header_.data.height);
    memory_.resize(row_bytes_ * height);
    std::vector<png_bytep> rows(height);
    for (std::size_t y = 0; y < height; ++y) {
      rows[y] = memory_.data() + row_bytes_ * y;
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
  int next_row_ = 0;
  std::vector<png_byte> memory_;  // one row, or all where they are interlaced
};

}  // namespace

std::unique_ptr<PictureInput> openPngInput(const InputFile& file) {
  return std::make_unique<PngInput>(file);
}

}  // namespace vantorel::cli
