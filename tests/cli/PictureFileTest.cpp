// Picture files of every format, in and out.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <cmath>
#include <cstring>
#include <fstream>
#include <iterator>
#include <numeric>
#include <utility>

#include "TestFolder.h"
#include "cli/base/CommandError.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/ImageReader.h"
#include "cli/pictures/ImageWriter.h"
#include "cli/pictures/ReadLimits.h"
#include "cli/pictures/Truncation.h"

namespace vantorel::cli {
namespace {

using OIIO::ImageOutput;
using OIIO::ImageSpec;
using OIIO::TypeDesc;

template <typename Channel>
void writeFile(const std::string& path, const ImageSpec& spec, const std::vector<Channel>& data) {
  const auto output = ImageOutput::create(path);
  ASSERT_TRUE(output && output->open(path, spec)) << path << OIIO::geterror();
  ASSERT_TRUE(output->write_image(OIIO::BaseTypeFromC<Channel>::value, data.data())) << output->geterror();
  ASSERT_TRUE(output->close());
}

Picture readAt(const std::string& path, host::Depth depth) {
  return readPicture(path, depth, {});
}

std::vector<int> pixel8(const Picture& picture, int x, int y) {
  const auto* channel = reinterpret_cast<const std::uint8_t*>(picture.pixels.view().pixel(x, y));
  return {channel, channel + 4};
}

// A picture with partly transparent pixels of every kind.
host::Image sample(host::Depth depth) {
  host::Image image = std::move(*host::Image::create({19, 300}, depth));
  for (int y = 0; y < 300; ++y) {
    for (int x = 0; x < 19; ++x) {
      for (int c = 0; c < 4; ++c) {
        const double alpha = x < 9 ? 1.0 : (x - 9) / 10.0;
        const double value = c == 3 ? alpha : alpha * std::fmod(0.013 * x + 0.0031 * y + 0.3 * c, 1.0);
        std::byte* channel = image.view().pixel(x, y) + host::bytesPerPixel(depth) / 4 * static_cast<std::size_t>(c);
        if (depth == host::Depth::Bits8) {
          *reinterpret_cast<std::uint8_t*>(channel) = static_cast<std::uint8_t>(value * 255 + 0.5);
        } else if (depth == host::Depth::Bits16) {
          *reinterpret_cast<std::uint16_t*>(channel) = static_cast<std::uint16_t>(value * 65535 + 0.5);
        } else {
          *reinterpret_cast<float*>(channel) = static_cast<float>(static_cast<int>(value * 1024)) / 1024.0f;
        }
      }
    }
  }
  return image;
}

OutputPicture describe(const host::Image& image, SampleType samples) {
  OutputPicture picture;
  picture.pixels = image.view();
  picture.frame = image.size();
  picture.window = {0, 0, image.size().width, image.size().height};
  picture.samples = samples;
  return picture;
}

bool samePixels(const host::Image& a, const host::Image& b) {
  bool same = a.size() == b.size() && a.depth() == b.depth();
  for (int y = 0; same && y < a.size().height; ++y) {
    same = std::memcmp(a.view().row(y), b.view().row(y),
                       host::bytesPerPixel(a.depth()) * static_cast<std::size_t>(a.size().width)) == 0;
  }
  return same;
}

TEST(PictureFile, EveryFormatGivesBackWhatItHolds) {
  const TestFolder folder;
  struct Case {
    const char* name;
    host::Depth depth;
    SampleType samples;
  };
  using enum SampleType;
  for (const Case& one : {Case{"a.png", host::Depth::Bits8, Bits8}, Case{"b.png", host::Depth::Bits16, Bits16},
                          Case{"a.tif", host::Depth::Bits8, Bits8}, Case{"b.tif", host::Depth::Bits16, Bits16},
                          Case{"c.tif", host::Depth::Float, Float}, Case{"a.exr", host::Depth::Float, Half},
                          Case{"b.exr", host::Depth::Float, Float}}) {
    const host::Image image = sample(one.depth);
    const std::string path = folder / one.name;
    writePicture(path, formatForOutput("", path), describe(image, one.samples), {});
    const Picture back = readAt(path, one.depth);
    EXPECT_TRUE(samePixels(image, back.pixels)) << one.name;
    EXPECT_TRUE(back.info.has_alpha);
    EXPECT_EQ(back.info.samples, one.samples) << one.name;
    EXPECT_TRUE(isWholePicture(path, image.size()));
    EXPECT_FALSE(isWholePicture(path, {19, 299}));
  }
}

TEST(PictureFile, FormatsWithoutAlphaHoldThePictureOverBlack) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Bits8);
  for (const char* name : {"a.dpx", "a.jpg"}) {
    const std::string path = folder / name;
    writePicture(path, formatForOutput("", path), describe(image, SampleType::Bits8), {});
    const Picture back = readAt(path, host::Depth::Bits8);
    EXPECT_FALSE(back.info.has_alpha);
    const auto* written = reinterpret_cast<const std::uint8_t*>(image.view().pixel(14, 100));
    const std::vector<int> read = pixel8(back, 14, 100);
    // JPEG rounds, and shares colour between neighbours.
    const int tolerance = std::string(name) == "a.dpx" ? 0 : 16;
    for (std::size_t c = 0; c < 3; ++c) {
      EXPECT_NEAR(read[c], written[c], tolerance) << name;
    }
    EXPECT_EQ(read[3], 255);
  }
}

TEST(PictureFile, FloatsAreQuantisedAfterDividingByAlpha) {
  const TestFolder folder;
  host::Image image = std::move(*host::Image::create({2, 1}, host::Depth::Float));
  const float values[8] = {0.125f, 0.5f, std::nanf(""), 0.25f, 2.0f, -1.0f, 0.5f, 1.0f};
  std::memcpy(image.view().data, values, sizeof values);
  const std::string path = folder / "a.png";
  writePicture(path, formatForOutput("", path), describe(image, SampleType::Bits8), {});
  const auto input = OIIO::ImageInput::open(path);
  std::uint8_t bytes[8] = {};
  ASSERT_TRUE(input->read_image(0, 0, 0, 4, TypeDesc::UINT8, bytes));
  const Picture back = readAt(path, host::Depth::Bits8);
  EXPECT_EQ(pixel8(back, 1, 0), (std::vector<int>{255, 0, 128, 255}));
  EXPECT_EQ(pixel8(back, 0, 0), (std::vector<int>{32, 64, 0, 64}));  // half and white under an alpha of a quarter
}

TEST(PictureFile, GreyAndExtraChannelsAndOddOrdersBecomeRgba) {
  const TestFolder folder;
  writeFile<std::uint8_t>(folder / "grey.png", ImageSpec(1, 1, 1, TypeDesc::UINT8), {77});
  EXPECT_EQ(pixel8(readAt(folder / "grey.png", host::Depth::Bits8), 0, 0), (std::vector<int>{77, 77, 77, 255}));

  ImageSpec grey_alpha(1, 1, 2, TypeDesc::UINT8);
  grey_alpha.channelnames = {"Y", "A"};
  grey_alpha.alpha_channel = 1;
  grey_alpha.attribute("oiio:UnassociatedAlpha", 1);
  writeFile<std::uint8_t>(folder / "greyalpha.png", grey_alpha, {200, 51});
  EXPECT_EQ(pixel8(readAt(folder / "greyalpha.png", host::Depth::Bits8), 0, 0), (std::vector<int>{40, 40, 40, 51}));

  ImageSpec odd(1, 1, 7, TypeDesc::FLOAT);
  odd.channelnames = {"A", "B", "Z", "G", "normal.x", "R", "normal.y"};
  writeFile<float>(folder / "odd.exr", odd, {1.0f, 0.2f, 9.0f, 0.4f, 5.0f, 0.6f, 5.0f});
  EXPECT_EQ(pixel8(readAt(folder / "odd.exr", host::Depth::Bits8), 0, 0), (std::vector<int>{153, 102, 51, 255}));

  ImageSpec pair(1, 1, 2, TypeDesc::FLOAT);
  pair.channelnames = {"p.x", "p.y"};  // by their position: grey and alpha
  writeFile<float>(folder / "pair.exr", pair, {0.4f, 0.8f});
  EXPECT_EQ(pixel8(readAt(folder / "pair.exr", host::Depth::Bits8), 0, 0), (std::vector<int>{102, 102, 102, 204}));

  ImageSpec nameless(1, 1, 6, TypeDesc::FLOAT);
  nameless.channelnames = {"a.x", "a.y", "a.z", "b.x", "b.y", "b.z"};
  writeFile<float>(folder / "nameless.exr", nameless, std::vector<float>(6, 0.5f));
  EXPECT_THROW(readAt(folder / "nameless.exr", host::Depth::Bits8), CommandError);
}

TEST(PictureFile, AssociatedAlphaIsTakenAsItIs) {
  const TestFolder folder;
  for (const bool unassociated : {false, true}) {
    ImageSpec spec(1, 1, 4, TypeDesc::UINT8);
    if (unassociated) {
      spec.attribute("oiio:UnassociatedAlpha", 1);
    }
    writeFile<std::uint8_t>(folder / "a.tif", spec, {100, 50, 0, 128});
    EXPECT_EQ(pixel8(readAt(folder / "a.tif", host::Depth::Bits8), 0, 0),
              unassociated ? (std::vector<int>{50, 25, 0, 128}) : (std::vector<int>{100, 50, 0, 128}));
  }
}

TEST(PictureFile, DataWindowsLieInTheirDisplayWindow) {
  const TestFolder folder;
  ImageSpec spec(4, 3, 4, TypeDesc::HALF);
  spec.x = -2;
  spec.y = 8;
  spec.full_x = 1;
  spec.full_y = 7;
  spec.full_width = 8;
  spec.full_height = 3;
  std::vector<float> data(4 * 4 * 3);
  for (std::size_t i = 0; i < data.size(); ++i) {
    const std::size_t pixel = i / 4;
    data[i] = static_cast<float>(pixel) / 16.0f;
  }
  for (const bool tiled : {false, true}) {
    if (tiled) {
      spec.tile_width = spec.tile_height = 2;
    }
    const std::string path = folder / (tiled ? "tiles.exr" : "lines.exr");
    writeFile(path, spec, data);
    const Picture picture = readAt(path, host::Depth::Float);
    ASSERT_EQ(picture.pixels.size(), (host::Size{8, 3}));
    const auto at = [&](int x, int y) { return *reinterpret_cast<const float*>(picture.pixels.view().pixel(x, y)); };
    // The data's column 3 is the display's column 0, its row 0 the display's row 1.
    EXPECT_EQ(at(0, 1), 3.0f / 16.0f) << path;
    EXPECT_EQ(at(0, 2), 7.0f / 16.0f);
    EXPECT_EQ(at(0, 0), 0.0f);
    EXPECT_EQ(at(1, 1), 0.0f);
  }

  const host::Image image = sample(host::Depth::Float);
  OutputPicture output = describe(image, SampleType::Float);
  output.window = {-5, -7, 14, 293};
  output.frame = {10, 20};
  const std::string path = folder / "out.exr";
  writePicture(path, formatForOutput("", path), output, {});
  const Picture cropped = readAt(path, host::Depth::Float);
  ASSERT_EQ(cropped.pixels.size(), output.frame);
  EXPECT_EQ(std::memcmp(cropped.pixels.view().pixel(0, 0), image.view().pixel(5, 7), 16 * 10), 0);
}

// The check sum of a PNG's chunk, over its type and data.
std::uint32_t pngCheckSum(const std::string& bytes) {
  std::uint32_t sum = 0xFFFFFFFF;
  for (const char byte : bytes) {
    sum ^= static_cast<unsigned char>(byte);
    for (int bit = 0; bit < 8; ++bit) {
      sum = (sum & 1) != 0 ? sum >> 1 ^ 0xEDB88320 : sum >> 1;
    }
  }
  return ~sum;
}

std::string bigEndian(std::uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
          static_cast<char>(value)};
}

std::string contents(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string pngOffsetChunk(std::uint32_t x, std::uint32_t y) {
  const std::string chunk = "oFFs" + bigEndian(x) + bigEndian(y) + '\0';
  return bigEndian(9) + chunk + bigEndian(pngCheckSum(chunk));
}

constexpr std::size_t kEndOfPngHeader = 33;

// A PNG's offset once moved its picture out of view, and a GIF's alpha channel, which its reader counts beyond the
// last, once ended the process.
TEST(PictureFile, OffsetsWithoutADisplayWindowAndMiscountedChannelsShowTheWholePicture) {
  const TestFolder folder;
  const std::vector<std::uint8_t> data{10, 20, 30, 255, 40, 50, 60, 255};
  for (const char* name : {"a.png", "a.gif"}) {
    writeFile(folder / name, ImageSpec(2, 1, 4, TypeDesc::UINT8), data);
  }
  const std::string png = contents(folder / "a.png");
  std::ofstream(folder / "a.png", std::ios::binary)
      << png.substr(0, kEndOfPngHeader) << pngOffsetChunk(100, 7) << png.substr(kEndOfPngHeader);
  for (const char* name : {"a.png", "a.gif"}) {
    const Picture picture = readAt(folder / name, host::Depth::Bits8);
    ASSERT_EQ(picture.pixels.size(), (host::Size{2, 1})) << name;
    EXPECT_EQ(pixel8(picture, 0, 0), (std::vector<int>{10, 20, 30, 255})) << name;
    EXPECT_EQ(pixel8(picture, 1, 0), (std::vector<int>{40, 50, 60, 255})) << name;
  }
}

// A file's own offset once wrapped around 32 bits, and the pixels were written far outside the picture.
TEST(PictureFile, OffsetsNearTheEndsOfTheirRangeAreRefused) {
  const TestFolder folder;
  const std::vector<std::uint8_t> data(64 * 48 * 3, 7);
  const std::string png = folder / "a.png";
  const std::string dpx = folder / "a.dpx";
  const ImageSpec spec(64, 48, 3, TypeDesc::UINT8);
  writeFile(png, spec, data);
  writeFile(dpx, spec, data);
  const std::string whole_png = contents(png);
  const std::string whole_dpx = contents(dpx);
  const auto expect_refused = [](const std::string& path, std::uint32_t offset) {
    EXPECT_THROW(readAt(path, host::Depth::Bits8), CommandError) << path << " " << offset;
    EXPECT_THROW(probePicture(path), CommandError) << path << " " << offset;
    EXPECT_FALSE(isWholePicture(path, {64, 48})) << path << " " << offset;
  };
  for (const std::uint32_t offset : {0x7FFFFFC0u, 0x7FFFFFFFu, 0x80000001u, 0x60000000u, 0xA0000000u}) {
    for (const bool horizontal : {true, false}) {
      std::ofstream(png, std::ios::binary)
          << whole_png.substr(0, kEndOfPngHeader)
          << (horizontal ? pngOffsetChunk(offset, 0) : pngOffsetChunk(0, offset)) << whole_png.substr(kEndOfPngHeader);
      expect_refused(png, offset);

      // As the library writes it here, the numbers of a DPX begin with the lowest byte. Offsets of a DPX are not
      // negative, and the library takes those that are for none.
      if (offset < 0x80000000u) {
        constexpr std::size_t kOffsetOfDpx = 1408;
        const std::string bytes = bigEndian(offset);
        std::string moved = whole_dpx;
        moved.replace(kOffsetOfDpx + (horizontal ? 0 : 4), 4, std::string(bytes.rbegin(), bytes.rend()));
        std::ofstream(dpx, std::ios::binary) << moved;
        expect_refused(dpx, offset);
      }
    }
  }
}

TEST(PictureFile, RecordsTellSettingsAndDamage) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Float);
  for (const char* name : {"a.png", "a.jpg", "a.tif", "a.exr", "a.dpx"}) {
    const std::string path = folder / name;
    const ImageFormat& format = formatForOutput("", path);
    OutputPicture picture = describe(image, outputSamples(format, DepthChoice::Auto, SampleType::Float));
    picture.settings = 42;
    writePicture(path, format, picture, {});
    EXPECT_NO_THROW(readAt(path, host::Depth::Float)) << name;
    EXPECT_EQ(checkRecord(path, 42), RecordState::Matches) << name;
    EXPECT_EQ(checkRecord(path, 43), RecordState::OtherSettings) << name;
    for (const double share : {0.0, 0.3, 0.6, 0.999}) {
      folder.damage(name, share);
      EXPECT_EQ(checkRecord(path, 42), RecordState::Damaged) << name << " " << share;
      folder.damage(name, share);
    }
    folder.cutShort(name, 0.9999);
    EXPECT_NE(checkRecord(path, 42), RecordState::Matches) << name;
  }
  folder.write("text.png", "no picture");
  EXPECT_EQ(checkRecord(folder / "text.png", 42), RecordState::Absent);
  EXPECT_EQ(checkRecord(folder / "none.png", 42), RecordState::Absent);
}

// Names of attributes, with values that each format gives back as they are.
TEST(PictureFile, AttributesPassAsFarAsTheFormatHoldsThem) {
  const TestFolder folder;
  ImageSpec spec(2, 1, 3, TypeDesc::UINT8);
  const float latitude[3] = {48, 30, 15};
  spec.attribute("GPS:Latitude", TypeDesc(TypeDesc::FLOAT, 3), latitude);
  spec.attribute("GPS:LatitudeRef", "N");
  spec.attribute("IPTC:City", "Rome");
  spec.attribute("Make", "Camera");
  spec.attribute("Copyright", "somebody");
  spec.attribute("DateTime", "2020:01:02 03:04:05");
  spec.attribute("Exif:DateTimeOriginal", "2019:01:02 03:04:05");
  spec.attribute("XResolution", 300.0f);
  spec.attribute("YResolution", 300.0f);
  spec.attribute("ResolutionUnit", "in");
  spec.attribute("dc:creator", "author");
  spec.attribute("Orientation", 6);
  writeFile<std::uint8_t>(folder / "from.jpg", spec, std::vector<std::uint8_t>(6, 100));
  const Picture from = readAt(folder / "from.jpg", host::Depth::Bits8);

  using Names = std::vector<const char*>;
  const std::pair<const char*, Names> held[] = {
      {"to.jpg",
       {"GPS:Latitude", "GPS:LatitudeRef", "IPTC:City", "Make", "Copyright", "DateTime", "Exif:DateTimeOriginal",
        "XResolution", "ResolutionUnit"}},
      {"to.tif", {"Make", "Copyright", "DateTime", "Exif:DateTimeOriginal", "XResolution", "ResolutionUnit"}},
      {"to.png", {"IPTC:City", "Make", "Copyright", "DateTime"}},
      {"to.dpx", {"Copyright", "DateTime"}},
      {"to.exr", {"GPS:Latitude", "IPTC:City", "Copyright", "DateTime", "XResolution"}}};
  for (const auto& [name, attributes] : held) {
    const std::string path = folder / name;
    const ImageFormat& format = formatForOutput("", path);
    OutputPicture picture = describe(from.pixels, outputSamples(format, DepthChoice::Auto, SampleType::Bits8));
    picture.metadata = from.metadata;
    writePicture(path, format, picture, {});
    const Picture back = readAt(path, host::Depth::Bits8);
    EXPECT_EQ(back.pixels.size(), (host::Size{1, 2})) << name << ": upright, once";
    for (const char* attribute : attributes) {
      const Attribute* const before = from.metadata->find(attribute);
      const Attribute* const after = back.metadata->find(attribute);
      ASSERT_TRUE(before != nullptr && after != nullptr) << name << " " << attribute;
      EXPECT_EQ(before->text, after->text) << name << " " << attribute;
      EXPECT_EQ(before->bytes, after->bytes) << name << " " << attribute;
    }
  }
}

// The library of JPEG once ended the process here.
TEST(PictureFile, AttributesThatAreTooLongAreNamed) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Bits8);
  OutputPicture picture = describe(image, SampleType::Bits8);
  Metadata metadata;
  metadata.set(textAttribute("Copyright", "somebody"));
  metadata.set(textAttribute("ImageDescription", std::string(70000, 'x')));
  picture.metadata = std::make_shared<const Metadata>(metadata);
  const std::string path = folder / "a.jpg";
  try {
    writePicture(path, formatForOutput("", path), picture, {});
    ADD_FAILURE() << "was written";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::FileFailed);
    EXPECT_NE(error.text().find("its attribute 'ImageDescription' has 70000 bytes"), std::string::npos) << error.text();
  }
  EXPECT_EQ(folder.count(), 0U);
}

TEST(PictureFile, CameraOrientationsAreTurnedUpright) {
  const TestFolder folder;
  // Stored as 1 2 3 / 4 5 6, by orientation 1 to 8.
  const std::vector<std::vector<int>> upright = {{1, 2, 3, 4, 5, 6}, {3, 2, 1, 6, 5, 4}, {6, 5, 4, 3, 2, 1},
                                                 {4, 5, 6, 1, 2, 3}, {1, 4, 2, 5, 3, 6}, {4, 1, 5, 2, 6, 3},
                                                 {6, 3, 5, 2, 4, 1}, {3, 6, 2, 5, 1, 4}};
  for (int orientation = 1; orientation <= 8; ++orientation) {
    ImageSpec spec(3, 2, 1, TypeDesc::UINT8);
    spec.attribute("Orientation", orientation);
    writeFile<std::uint8_t>(folder / "a.tif", spec, {1, 2, 3, 4, 5, 6});
    const Picture picture = readAt(folder / "a.tif", host::Depth::Bits8);
    const host::Size size = orientation < 5 ? host::Size{3, 2} : host::Size{2, 3};
    ASSERT_EQ(picture.pixels.size(), size);
    ASSERT_EQ(probePicture(folder / "a.tif").size, size);
    std::vector<int> read;
    for (int y = 0; y < size.height; ++y) {
      for (int x = 0; x < size.width; ++x) {
        read.push_back(pixel8(picture, x, y)[0]);
      }
    }
    EXPECT_EQ(read, upright[static_cast<std::size_t>(orientation - 1)]) << "orientation " << orientation;
  }
}

constexpr long kLittle = 200 * 1024;  // KiB

// By how many KiB the function raises the most memory that this process has had.
template <typename Function>
long peakGrowthOf(Function function) {
  const auto peak = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  const long before = peak();
  function();
  return peak() - before;
}

// A length beyond the file's end, of a chunk or an attribute, once took that much memory before the file was refused.
TEST(PictureFile, LengthsBeyondTheEndOfTheFileTakeNoMemory) {
  const TestFolder folder;
  for (const char* name : {"a.png", "a.exr"}) {
    ImageSpec spec(1, 1, 3, TypeDesc::HALF);
    spec.attribute("comments", "some");
    writeFile<float>(folder / name, spec, {0.5f, 0.5f, 0.5f});
  }
  std::string png = contents(folder / "a.png");
  png.insert(kEndOfPngHeader, bigEndian(0x70000000) + "tEXt");
  std::ofstream(folder / "a.png", std::ios::binary) << png;
  std::string exr = contents(folder / "a.exr");
  const std::size_t length = exr.find("comments") + sizeof "comments" + sizeof "string";
  exr[length + 3] = 0x70;
  std::ofstream(folder / "a.exr", std::ios::binary) << exr;
  for (const char* name : {"a.png", "a.exr"}) {
    EXPECT_LT(peakGrowthOf([&] { EXPECT_THROW(readAt(folder / name, host::Depth::Bits8), CommandError); }), kLittle)
        << name;
  }
}

// What a file states is refused by the limits, which the environment moves; and a picture around a data window that
// cannot be read takes no memory.
TEST(PictureFile, LimitsHoldUntilTheyAreRaised) {
  const TestFolder folder;
  ImageSpec spec(4, 2, 4, TypeDesc::HALF);
  spec.full_width = 40000;
  spec.full_height = 30000;
  const std::string path = folder / "a.exr";
  writeFile(path, spec, std::vector<float>(32, 0.5f));
  const auto fault = [&](const char* variable, const char* value) {
    ::setenv(variable, value, 1);
    std::string text;
    try {
      readAt(path, host::Depth::Bits8);
    } catch (const CommandError& error) {
      text = error.text().substr(path.size() + 2);
    }
    ::unsetenv(variable);
    return text;
  };
  EXPECT_EQ(fault("VANTOREL_MAX_READ_SECONDS", ""),
            "a picture of 40000x30000 has 1200 megapixels and 1100 are read; raise VANTOREL_MAX_MEGAPIXELS to read it");
  spec.full_width = 20000;
  spec.full_height = 10000;
  writeFile(path, spec, std::vector<float>(32, 0.5f));
  folder.cutShort("a.exr", 0.95);
  EXPECT_LT(peakGrowthOf(
                [&] { EXPECT_NE(fault("VANTOREL_MAX_MEGAPIXELS", "200").find("cannot be read"), std::string::npos); }),
            kLittle);

  spec.full_width = spec.full_height = 8;
  writeFile(path, spec, std::vector<float>(32, 0.5f));
  EXPECT_EQ(fault("VANTOREL_MAX_MEGAPIXELS", "0.000064"), "");
  EXPECT_NE(fault("VANTOREL_MAX_MEGAPIXELS", "0.000063"), "");
  EXPECT_NE(fault("VANTOREL_MAX_READ_SECONDS", "1e-9").find("takes more than 1e-09 seconds"), std::string::npos);
  ::setenv("VANTOREL_MAX_MEGAPIXELS", "-1", 1);
  EXPECT_THROW(readLimits(), CommandError);
  ::unsetenv("VANTOREL_MAX_MEGAPIXELS");
}

TEST(PictureFile, WhatIsCutShortIsRefused) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Float);
  for (const char* name : {"a.png", "a.jpg", "a.tif", "a.exr", "a.dpx"}) {
    for (const double share : {0.98, 0.5, 0.1, 0.0}) {
      const std::string path = folder / name;
      writePicture(path, formatForOutput("", path),
                   describe(image, outputSamples(formatForOutput("", path), DepthChoice::Auto, SampleType::Float)), {});
      EXPECT_FALSE(isTruncated(path)) << name;
      folder.cutShort(name, share);
      EXPECT_THROW(readAt(path, host::Depth::Bits8), CommandError) << name << " " << share;
      EXPECT_FALSE(isWholePicture(path, image.size())) << name << " " << share;
    }
  }
}

}  // namespace
}  // namespace vantorel::cli
