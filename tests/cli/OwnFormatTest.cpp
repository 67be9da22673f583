// The formats that are read without OpenImageIO, against that library.
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <random>

#include "PictureFiles.h"
#include "TestFolder.h"
#include "cli/pictures/FormatLibrary.h"

namespace vantorel::cli {
namespace {

struct PngKind {
  int colour;
  int bits;
  bool interlaced = false;
  bool has_transparent_colour = false;
};

// A picture of random samples, and chunks of every kind that says something of it.
void writePng(const std::string& path, const PngKind& kind) {
  constexpr int kSide = 33;
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_IHDR(png, info, kSide, kSide, kind.bits, kind.colour, kind.interlaced ? PNG_INTERLACE_ADAM7 : 0, 0, 0);
  std::mt19937 random(7);
  std::vector<png_color> palette(std::size_t{1} << std::min(kind.bits, 8));
  for (png_color& colour : palette) {
    colour = {png_byte(random()), png_byte(random()), png_byte(random())};
  }
  if (kind.colour == PNG_COLOR_TYPE_PALETTE) {
    png_set_PLTE(png, info, palette.data(), int(palette.size()));
  }
  png_byte alphas[2] = {0, 77};
  png_color_16 transparent{0, 1, 1, 1, 1};
  if (kind.has_transparent_colour) {
    png_set_tRNS(png, info, alphas, kind.bits == 1 ? 2 : 1, &transparent);
  }
  if (kind.interlaced) {
    png_set_gAMA(png, info, 1 / 1.8);
    png_set_pHYs(png, info, 2835, 5670, PNG_RESOLUTION_METER);
    png_set_oFFs(png, info, -3, 900, PNG_OFFSET_PIXEL);
    const png_time time{2024, 2, 29, 23, 59, 58};
    png_set_tIME(png, info, &time);
    char keys[3][16] = {"Author", "Description", "Shot"};
    char value[] = "A name";
    png_text texts[3] = {};
    for (int i = 0; i < 3; ++i) {
      texts[i].compression = i == 1 ? PNG_TEXT_COMPRESSION_zTXt : PNG_TEXT_COMPRESSION_NONE;
      texts[i].key = keys[i];
      texts[i].text = value;
      texts[i].text_length = sizeof value - 1;
    }
    png_set_text(png, info, texts, 3);
  }
  png_write_info(png, info);
  std::vector<std::vector<png_byte>> rows(kSide, std::vector<png_byte>(png_get_rowbytes(png, info)));
  std::vector<png_bytep> pointers;
  for (auto& row : rows) {
    for (png_byte& byte : row) {
      byte = png_byte(random());
    }
    pointers.push_back(row.data());
  }
  png_write_image(png, pointers.data());
  png_write_end(png, info);
  png_destroy_write_struct(&png, &info);
  std::fclose(file);
}

// Everything but how a JPEG file is packed and what OpenImageIO derives from a profile.
void expectSameHeader(const PictureHeader& own, const PictureHeader& other) {
  EXPECT_EQ(own.format, other.format);
  EXPECT_EQ(own.data, other.data);
  EXPECT_EQ(own.display, other.display);
  EXPECT_EQ(own.alpha_channel, other.alpha_channel);
  EXPECT_EQ(own.straight_alpha, other.straight_alpha);
  EXPECT_EQ(own.orientation, other.orientation);
  ASSERT_EQ(own.channels.size(), other.channels.size());
  for (std::size_t c = 0; c < own.channels.size(); ++c) {
    EXPECT_EQ(own.channels[c].name, other.channels[c].name);
    EXPECT_EQ(own.channels[c].samples, other.channels[c].samples);
  }
  for (const Attribute& attribute : other.metadata.attributes()) {
    if (attribute.name.starts_with("jpeg:") || attribute.name.starts_with("ICCProfile:")) {
      continue;
    }
    const Attribute* const found = own.metadata.find(attribute.name);
    ASSERT_NE(found, nullptr) << attribute.name;
    EXPECT_EQ(*found, attribute) << attribute.name << " " << found->text << " " << attribute.text;
  }
  for (const Attribute& attribute : own.metadata.attributes()) {
    EXPECT_NE(other.metadata.find(attribute.name), nullptr) << attribute.name;
  }
}

host::Image blank(host::Size size, host::Depth depth) {
  host::Image image = std::move(*host::Image::create(size, depth));
  for (int y = 0; y < size.height; ++y) {
    std::memset(image.view().row(y), 0, host::bytesPerPixel(depth) * static_cast<std::size_t>(size.width));
  }
  return image;
}

void expectSamePicture(const InputFile& file) {
  const auto own = openPictureInput(file);
  const auto other = formatLibrary().open_input(file, "");
  expectSameHeader(own->header(), other->header());
  const host::Size size{own->header().data.width, own->header().data.height};
  const ChannelRange all{0, static_cast<int>(own->header().channels.size())};
  for (const host::Depth depth : {host::Depth::Bits8, host::Depth::Bits16, host::Depth::Float}) {
    host::Image a = blank(size, depth);
    host::Image b = blank(size, depth);
    own->readRows(0, all, a.view());
    other->readRows(0, all, b.view());
    EXPECT_TRUE(samePixels(a, b)) << "depth " << static_cast<int>(depth);
  }
}

TEST(OwnFormat, PngIsReadAsOpenImageIoReadsIt) {
  const TestFolder folder;
  std::vector<PngKind> kinds;
  for (const auto& [colour, most] : {std::pair{PNG_COLOR_TYPE_GRAY, 16},
                                     {PNG_COLOR_TYPE_PALETTE, 8},
                                     {PNG_COLOR_TYPE_RGB, 16},
                                     {PNG_COLOR_TYPE_GA, 16},
                                     {PNG_COLOR_TYPE_RGBA, 16}}) {
    const bool has_few_bits = colour == PNG_COLOR_TYPE_GRAY || colour == PNG_COLOR_TYPE_PALETTE;
    for (int bits = has_few_bits ? 1 : 8; bits <= most; bits *= 2) {
      for (const bool interlaced : {false, true}) {
        kinds.push_back({colour, bits, interlaced, false});
        if ((colour & PNG_COLOR_MASK_ALPHA) == 0) {
          kinds.push_back({colour, bits, interlaced, true});
        }
      }
    }
  }
  for (const PngKind& kind : kinds) {
    SCOPED_TRACE(testing::Message() << "colour type " << kind.colour << ", " << kind.bits << " bits, interlaced "
                                    << kind.interlaced << ", transparent colour " << kind.has_transparent_colour);
    const std::string path = folder / "a.png";
    writePng(path, kind);
    expectSamePicture({path, "a.png"});
  }
}

TEST(OwnFormat, JpegIsReadAsOpenImageIoReadsIt) {
  const TestFolder folder;
  const std::string path = folder / "a.jpg";
  std::mt19937 random(7);
  for (const int channels : {1, 3}) {
    for (const char* subsampling : {"4:2:0", "4:4:4"}) {
      for (const bool is_tagged : {false, true}) {
        SCOPED_TRACE(testing::Message() << channels << " channels, " << subsampling << ", tagged " << is_tagged);
        ImageSpec spec(37, 21, channels, TypeDesc::UINT8);
        spec.attribute("jpeg:subsampling", subsampling);
        if (is_tagged) {
          const std::vector<std::uint8_t> profile(70000, 5);
          spec.attribute("ICCProfile", TypeDesc(TypeDesc::UINT8, static_cast<int>(profile.size())), profile.data());
        }
        std::vector<std::uint8_t> samples(37 * 21 * static_cast<std::size_t>(channels));
        std::ranges::generate(samples, [&] { return static_cast<std::uint8_t>(random()); });
        writeFile(path, spec, samples);
        expectSamePicture({path, "a.jpg"});
      }
    }
  }
}

}  // namespace
}  // namespace vantorel::cli
