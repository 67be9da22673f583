// The formats that are read without OpenImageIO, against that library.
#include <OpenEXR/ImfBoxAttribute.h>
#include <OpenEXR/ImfDoubleAttribute.h>
#include <OpenEXR/ImfFloatVectorAttribute.h>
#include <OpenEXR/ImfIntAttribute.h>
#include <OpenEXR/ImfMatrixAttribute.h>
#include <OpenEXR/ImfThreading.h>
#include <OpenEXR/ImfVecAttribute.h>
#include <gtest/gtest.h>
#include <png.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <random>

#include "ExrFiles.h"
#include "PictureFiles.h"
#include "cli/pictures/CodecThreads.h"
#include "cli/pictures/FormatLibrary.h"
#include "cli/pictures/PixelVisit.h"
#include "cli/pictures/PlainExif.h"
#include "tests/TestFolder.h"

namespace vantorel::cli {
namespace {

struct PngKind {
  int colour;
  int bits;
  bool interlaced = false;
  bool has_transparent_colour = false;
};

// A picture of random samples, and chunks of every kind that says something of it.
void writePng(const std::string& path, const PngKind& kind, png_uint_32 side = 33, png_uint_32 bytes_in_chunk = 8192) {
  std::FILE* const file = std::fopen(path.c_str(), "wb");
  png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
  png_infop info = png_create_info_struct(png);
  png_init_io(png, file);
  png_set_compression_buffer_size(png, bytes_in_chunk);
  png_set_IHDR(png, info, side, side, kind.bits, kind.colour, kind.interlaced ? PNG_INTERLACE_ADAM7 : 0, 0, 0);
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
  std::vector<std::vector<png_byte>> rows(side, std::vector<png_byte>(png_get_rowbytes(png, info)));
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
  EXPECT_EQ(own.tile.width, other.tile.width);
  EXPECT_EQ(own.tile.height, other.tile.height);
  EXPECT_EQ(own.alpha_channel, other.alpha_channel);
  EXPECT_EQ(own.straight_alpha, other.straight_alpha);
  EXPECT_EQ(own.orientation, other.orientation);
  ASSERT_EQ(own.channels.size(), other.channels.size());
  for (std::size_t c = 0; c < own.channels.size(); ++c) {
    EXPECT_EQ(own.channels[c].name, other.channels[c].name);
    EXPECT_EQ(own.channels[c].samples, other.channels[c].samples);
  }
  for (const Attribute& attribute : other.metadata.attributes()) {
    const auto begins = [&](const char* prefix) { return attribute.name.starts_with(prefix); };
    if (begins("jpeg:") || begins("ICCProfile:") || begins("openexr:") || begins("oiio:sub") || begins("oiio:up") ||
        begins("oiio:sample") || begins("compression") || begins("textureformat") || attribute.type == "string[2]") {
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

void withoutAlpha(host::Image& image) {
  withChannelOf(image.view().depth, [&](auto channel) {
    forPixels<decltype(channel)>(image.view(), [](auto* pixel, int, int) { pixel[3] = 0; });
  });
}

void expectSamePicture(const InputFile& file, const std::string& part = "") {
  const auto own = openPictureInput(file, part);
  const auto other = formatLibrary().open_input(file, part);
  expectSameHeader(own->header(), other->header());
  const host::Size size{own->header().data.width, own->header().data.height};
  const int channels = static_cast<int>(own->header().channels.size());
  for (const host::Depth depth : {host::Depth::Bits8, host::Depth::Bits16, host::Depth::Float}) {
    for (int first = 0; first < channels; first += 4) {
      const ChannelRange range{first, std::min(first + 4, channels)};
      host::Image a = blank(size, depth);
      host::Image b = blank(size, depth);
      own->readRows(0, range, a.view());
      other->readRows(0, range, b.view());
      if (channels == 3) {
        // What stands in the place of an alpha that is not read is anything.
        withoutAlpha(a);
        withoutAlpha(b);
      }
      EXPECT_TRUE(samePixels(a, b)) << "depth " << static_cast<int>(depth) << ", channels from " << first;
    }
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

// Rows that cross the limits of what is unpacked in one piece, in chunks of all sizes.
TEST(OwnFormat, PngOfManyChunksIsReadAsOpenImageIoReadsIt) {
  const TestFolder folder;
  const std::string path = folder / "a.png";
  for (const png_uint_32 bytes : {6u, 100u, 8193u, 65536u, 1000000u}) {
    SCOPED_TRACE(testing::Message() << bytes << " bytes in a chunk");
    writePng(path, {PNG_COLOR_TYPE_PALETTE, 4}, 600, bytes);
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
          spec.attribute("IPTC:City", "Basel");
          spec.attribute("Exif:FNumber", 2.8f);
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

void addAllAttributes(Imf::Header& header) {
  Imf::addOwner(header, "the owner");
  Imf::addComments(header, "some comments");
  Imf::addCapDate(header, "2024:02:29 23:59:58");
  Imf::addExpTime(header, 0.02f);
  Imf::addAperture(header, 2.8f);
  Imf::addXDensity(header, 72.0f);
  Imf::addTimeCode(header, Imf::TimeCode(1, 2, 3, 4, true, false, false, false, false, false, 9));
  Imf::addKeyCode(header, Imf::KeyCode(1, 2, 3, 4, 5, 6, 64));
  Imf::addFramesPerSecond(header, Imf::Rational(24000, 1001));
  Imf::addWorldToCamera(header, Imath::M44f());
  Imf::addChromaticities(header, Imf::Chromaticities());
  Imf::addEnvmap(header, Imf::ENVMAP_LATLONG);
  Imf::addMultiView(header, {"left", "right"});
  header.pixelAspectRatio() = 2.0f;
  header.insert("none", Imf::StringAttribute(""));
  header.insert("Orientation", Imf::IntAttribute(3));
  header.insert("double", Imf::DoubleAttribute(3.5));
  header.insert("floats", Imf::FloatVectorAttribute({1.0f, 2.0f, 3.0f}));
  header.insert("box", Imf::Box2iAttribute(Imath::Box2i({1, 2}, {3, 4})));
  header.insert("boxf", Imf::Box2fAttribute(Imath::Box2f({1, 2}, {3, 4})));
  header.insert("m33", Imf::M33dAttribute(Imath::M33d(1, 2, 3, 4, 5, 6, 7, 8, 9)));
  header.insert("v2", Imf::V2iAttribute({1, 2}));
  header.insert("v3", Imf::V3fAttribute({1, 2, 3}));
  for (const unsigned denominator : {4u, 0x80000002u}) {
    Imf::Rational rational;
    rational.n = -6;
    rational.d = denominator;
    header.insert("rational" + std::to_string(denominator), Imf::RationalAttribute(rational));
  }
}

TEST(OwnFormat, OpenExrIsReadAsOpenImageIoReadsIt) {
  const TestFolder folder;
  const std::string path = folder / "a.exr";
  std::vector<std::vector<ExrPart>> files;
  for (int compression = Imf::NO_COMPRESSION; compression < Imf::NUM_COMPRESSION_METHODS; ++compression) {
    for (const int levels : {kInRows, int{Imf::ONE_LEVEL}, int{Imf::MIPMAP_LEVELS}, int{Imf::RIPMAP_LEVELS}}) {
      files.push_back({{.compression = static_cast<Imf::Compression>(compression), .levels = levels}});
    }
  }
  using enum Imf::PixelType;
  std::vector<ExrChannel> many{{"Z", FLOAT}, {"id", UINT}};
  for (const char* name : {"R", "r", "Green", "Y", "alpha", "AR", "GA", "Depth", "zback", "glow.B", "glow.R",
                           "glow.sub.B", "glow-.R", ".R"}) {
    many.push_back({name});
  }
  for (const auto& channels :
       std::vector<std::vector<ExrChannel>>{{{"Y"}},
                                            {{"Y"}, {"A", FLOAT}},
                                            {{"R", FLOAT}, {"G", FLOAT}, {"B", FLOAT}},
                                            {{"R"}, {"G", FLOAT}, {"B", UINT}, {"A"}},
                                            {{"R", UINT}, {"G", UINT}, {"B", UINT}},
                                            {{"X"}, {"Y", FLOAT}, {"Z", FLOAT}, {"A"}, {"v.x"}, {"v.Y"}, {"v.z"}},
                                            many}) {
    files.push_back({{.channels = channels}});
    files.push_back({{.channels = channels, .levels = Imf::ONE_LEVEL}});
  }
  constexpr int kFar = 1 << 29;
  for (const Imath::Box2i& data :
       {Imath::Box2i({-9, -5}, {50, 80}), {{5, 7}, {5, 7}}, {{kFar - 40, -kFar}, {kFar - 1, 9 - kFar}}}) {
    files.push_back({{.data = data, .display = {{3, 4}, {30, 50}}}});
    files.push_back({{.levels = Imf::ONE_LEVEL, .data = data, .display = data}});
  }
  for (auto& parts : files) {
    ExrPart& part = parts.front();
    part.describe = addAllAttributes;
    SCOPED_TRACE(testing::Message() << "compression " << part.compression << ", levels " << part.levels << ", "
                                    << part.channels.size() << " channels, first row " << part.data.min.y);
    writeExr(path, parts);
    expectSamePicture({path, "a.exr"});
  }
  writeExr(path,
           {{.name = "part 1", .view = "left"},
            {.levels = Imf::ONE_LEVEL, .name = "part 2", .view = "right"},
            {.channels = {{"Z", FLOAT}}, .compression = Imf::PIZ_COMPRESSION, .name = "part 3", .view = "right"}});
  for (const char* part : {"0", "1", "2", "part 3"}) {
    SCOPED_TRACE(part);
    expectSamePicture({path, "a.exr"}, part);
  }
  EXPECT_EQ(openPictureInput({path, "a.exr"})->header().views, (std::vector<std::string>{"left", "right", "right"}));
}

TEST(OwnFormat, ExifThatIsCutOffIsNotReadInPart) {
  Metadata stated;
  stated.set(textAttribute("Make", "A maker"));
  const std::string block = writePlainExif(stated).value();
  EXPECT_EQ(readPlainExif(block)->text("Make"), "A maker");
  for (std::size_t size = 0; size < block.size(); ++size) {
    EXPECT_FALSE(readPlainExif(block.substr(0, size))) << size;
  }
  std::string elsewhere = block;
  elsewhere[8 + 2 + 8 + 3] = '\x7F';  // the value's place, beyond the end
  EXPECT_FALSE(readPlainExif(elsewhere));
}

TEST(OwnFormat, OpenExrCompressesAtTheLevelThatIsAskedFor) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Float);
  const auto size_with = [&](const char* name, std::optional<double> level) {
    OutputPicture picture = describe(image, SampleType::Float);
    picture.encoding.compression = {name, level};
    writePicture(folder / "a.exr", formatForOutput("", "a.exr"), picture, {});
    return std::filesystem::file_size(folder / "a.exr");
  };
  EXPECT_LT(size_with("zip", 9.0), size_with("zip", 1.0));
  EXPECT_LT(size_with("dwaa", 200.0), size_with("dwaa", {}));
  EXPECT_LT(size_with("dwaa", {}), size_with("dwaa", 1.0));
}

TEST(OwnFormat, OpenExrStartsNoMoreThreadsThanAllowed) {
  const int before = Imf::globalThreadCount();
  limitCodecThreads(1, true);
  startOpenExrThreads();
  EXPECT_EQ(0, Imf::globalThreadCount());  // the caller alone
  limitCodecThreads(3, true);
  startOpenExrThreads();
  EXPECT_EQ(3, Imf::globalThreadCount());
  limitCodecThreads(3, false);
  startOpenExrThreads();
  EXPECT_EQ(0, Imf::globalThreadCount());
  Imf::setGlobalThreadCount(before);
}

}  // namespace
}  // namespace vantorel::cli
