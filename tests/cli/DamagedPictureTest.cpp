// Picture files that are cut short, lie about themselves or ask for too much.
#include <sys/resource.h>
#include <zlib.h>

#include <cstdlib>

#include "PictureFiles.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/ReadLimits.h"
#include "cli/pictures/Truncation.h"

namespace vantorel::cli {
namespace {

std::string bigEndian(std::uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
          static_cast<char>(value)};
}

std::string littleEndian(std::uint32_t value) {
  const std::string bytes = bigEndian(value);
  return {bytes.rbegin(), bytes.rend()};
}

std::string packed(const std::string& text) {
  uLongf size = compressBound(text.size());
  std::string bytes(size, '\0');
  compress(reinterpret_cast<Bytef*>(bytes.data()), &size, reinterpret_cast<const Bytef*>(text.data()), text.size());
  return bytes.substr(0, size);
}

// A PNG's chunk, with the check sum over its type and data.
std::string pngChunk(const std::string& type, const std::string& data) {
  const std::string summed = type + data;
  const uLong sum = crc32(0, reinterpret_cast<const Bytef*>(summed.data()), static_cast<uInt>(summed.size()));
  return bigEndian(static_cast<std::uint32_t>(data.size())) + summed + bigEndian(static_cast<std::uint32_t>(sum));
}

std::string pngOffsetChunk(std::uint32_t x, std::uint32_t y) {
  return pngChunk("oFFs", bigEndian(x) + bigEndian(y) + '\0');
}

constexpr std::size_t kBeginOfPngHeader = 8;
constexpr std::size_t kEndOfPngHeader = 33;

std::string afterPngHeader(std::string png, const std::string& bytes) {
  return png.insert(kEndOfPngHeader, bytes);
}

// What is said of the file; empty where it is read.
std::string faultOf(const std::string& path) try {
  readAt(path, host::Depth::Bits8);
  return "";
} catch (const CommandError& error) {
  return error.text();
}

constexpr long kLittle = 200 * 1024;  // KiB

// The same, where reading it raises the most memory that this process has had by less than that many KiB.
std::string faultWithin(long bound, const std::string& path) {
  const auto peak = [] {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
  };
  const long before = peak();
  const std::string fault = faultOf(path);
  EXPECT_LT(peak() - before, bound) << path;
  return fault;
}

// A PNG's offset once moved its picture out of view, and a GIF's alpha channel, which its reader counts beyond the
// last, once ended the process.
TEST(DamagedPicture, OffsetsWithoutADisplayWindowAndMiscountedChannelsShowTheWholePicture) {
  const TestFolder folder;
  for (const char* name : {"a.png", "a.gif"}) {
    writeFile<std::uint8_t>(folder / name, ImageSpec(2, 1, 4, TypeDesc::UINT8), {10, 20, 30, 255, 40, 50, 60, 255});
  }
  folder.write("a.png", afterPngHeader(contents(folder / "a.png"), pngOffsetChunk(100, 7)));
  for (const char* name : {"a.png", "a.gif"}) {
    const Picture picture = readAt(folder / name, host::Depth::Bits8);
    ASSERT_EQ(picture.pixels.size(), (host::Size{2, 1})) << name;
    EXPECT_EQ(pixel8(picture, 0, 0), (std::vector<int>{10, 20, 30, 255})) << name;
    EXPECT_EQ(pixel8(picture, 1, 0), (std::vector<int>{40, 50, 60, 255})) << name;
  }
}

// A file's own offset once wrapped around 32 bits, and the pixels were written far outside the picture.
TEST(DamagedPicture, OffsetsNearTheEndsOfTheirRangeAreRefused) {
  const TestFolder folder;
  for (const char* name : {"a.png", "a.dpx"}) {
    writeFile(folder / name, ImageSpec(64, 48, 3, TypeDesc::UINT8), std::vector<std::uint8_t>(64 * 48 * 3, 7));
  }
  const std::string png = contents(folder / "a.png");
  const std::string dpx = contents(folder / "a.dpx");
  const auto expect_refused = [&](const char* name, const std::string& bytes) {
    const std::string path = folder / name;
    folder.write(name, bytes);
    EXPECT_NE(faultOf(path), "");
    EXPECT_THROW(probePicture(path), CommandError);
    EXPECT_FALSE(isWholePicture(path, {64, 48}));
  };
  for (const std::uint32_t offset : {0x7FFFFFC0u, 0x7FFFFFFFu, 0x80000001u, 0x60000000u, 0xA0000000u}) {
    for (const auto& [x, y] : {std::pair{offset, 0u}, {0u, offset}}) {
      SCOPED_TRACE(testing::Message() << x << ", " << y);
      expect_refused("a.png", afterPngHeader(png, pngOffsetChunk(x, y)));
      // As the library writes it here, the numbers of a DPX begin with the lowest byte. Offsets of a DPX are not
      // negative, and the library takes those that are for none.
      if (offset < 0x80000000u) {
        constexpr std::size_t kOffsetsOfDpx = 1408;
        expect_refused("a.dpx", std::string(dpx).replace(kOffsetsOfDpx, 8, littleEndian(x) + littleEndian(y)));
      }
    }
  }
}

// A length beyond the file's end, of a chunk or an attribute, once took that much memory before the file was refused.
TEST(DamagedPicture, LengthsBeyondTheEndOfTheFileTakeNoMemory) {
  const TestFolder folder;
  const auto written = [&](const char* name) {
    ImageSpec spec(1, 1, 3, TypeDesc::HALF);
    spec.attribute("comments", "some");
    writeFile<float>(folder / name, spec, {0.5f, 0.5f, 0.5f});
    return contents(folder / name);
  };
  folder.write("a.png", afterPngHeader(written("a.png"), bigEndian(0x70000000) + "tEXt"));
  std::string exr = written("a.exr");
  exr[exr.find("comments") + sizeof "comments" + sizeof "string" + 3] = 0x70;
  folder.write("a.exr", exr);
  std::string dpx = written("a.dpx");
  folder.write("a.dpx", dpx.replace(32, 4, dpx[0] == 'X' ? littleEndian(0x70000000) : bigEndian(0x70000000)));
  for (const char* name : {"a.png", "a.exr", "a.dpx"}) {
    EXPECT_NE(faultWithin(kLittle, folder / name), "") << name;
  }
}

// A few thousand bytes that become millions, and heads of large pictures without the pixels.
TEST(DamagedPicture, MemoryStaysInProportionToTheFile) {
#ifdef __SANITIZE_ADDRESS__
  constexpr long kBound = 20 * kLittle;  // the sanitizer keeps freed memory for a while
#else
  constexpr long kBound = kLittle;
#endif
  const TestFolder folder;
  const auto written = [&](const char* name) {
    ImageSpec spec(8, 8, 3, TypeDesc::UINT8);
    spec.attribute("jpeg:progressive", 1);
    writeFile(folder / name, spec, std::vector<std::uint8_t>(192, 100));
    return contents(folder / name);
  };
  const std::string text = packed(std::string(7900000, 'a'));
  std::string chunks;
  for (const char number : std::string("0123456789ab")) {
    chunks += pngChunk("zTXt", std::string("key") + number + std::string(2, '\0') + text);
  }
  folder.write("texts.png", afterPngHeader(written("texts.png"), chunks));
  EXPECT_EQ(faultWithin(kBound, folder / "texts.png"), "");

  // 30000x30000 pixels, interlaced.
  const std::string head = bigEndian(30000) + bigEndian(30000) + std::string("\x08\x02\0\0\x01", 5);
  folder.write(
      "rows.png",
      written("rows.png").replace(kBeginOfPngHeader, kEndOfPngHeader - kBeginOfPngHeader, pngChunk("IHDR", head)));
  EXPECT_NE(faultWithin(kBound, folder / "rows.png"), "");

  std::string scans = written("scans.jpg");
  const std::size_t frame = scans.find("\xFF\xC2");
  ASSERT_NE(frame, std::string::npos);
  folder.write("scans.jpg", scans.replace(frame + 5, 4, "\x75\x30\x75\x30"));
  EXPECT_NE(faultWithin(kBound, folder / "scans.jpg"), "");
}

// Pixels that are damaged in every layer of their packing are refused, by libpng's own words.
TEST(DamagedPicture, DamagedPixelsOfPngAreRefused) {
  const TestFolder folder;
  const std::string path = folder / "a.png";
  writeFile(path, ImageSpec(8, 8, 3, TypeDesc::UINT8), std::vector<std::uint8_t>(192, 100));
  const std::string whole = contents(path);
  const std::size_t begin = whole.find("IDAT") - 4;
  const std::size_t end = whole.find("IEND") - 4;
  const std::string data = whole.substr(begin + 8, end - begin - 12);
  const std::string size = bigEndian(static_cast<std::uint32_t>(data.size()));
  const std::string odd_check = data.substr(0, data.size() - 1) + char(data.back() ^ 1);
  const std::string odd_filter = packed(std::string(8 * 25, '\x09'));
  for (const auto& [pixels, fault] : {std::pair{size + "IDAT" + data + "abcd", "CRC error"},
                                      {pngChunk("IDAT", odd_check), "incorrect data check"},
                                      {pngChunk("IDAT", data.substr(0, data.size() / 2)), "Not enough image data"},
                                      {pngChunk("IDAT", odd_filter), "bad adaptive filter value"}}) {
    folder.write("a.png", whole.substr(0, begin) + pixels + whole.substr(end));
    EXPECT_NE(faultOf(path).find(fault), std::string::npos) << faultOf(path);
  }
  folder.write("a.png", whole.substr(0, begin) + pngChunk("IDAT", data) + whole.substr(end));
  EXPECT_EQ(faultOf(path), "");
}

// What a file states is refused by the limits, which the environment moves; and a picture around a data window that
// cannot be read takes no memory.
TEST(DamagedPicture, LimitsHoldUntilTheyAreRaised) {
  const TestFolder folder;
  const std::string path = folder / "a.exr";
  const auto write = [&](int width, int height) {
    ImageSpec spec(4, 2, 4, TypeDesc::HALF);
    spec.full_width = width;
    spec.full_height = height;
    writeFile(path, spec, std::vector<float>(32, 0.5f));
  };
  const auto fault = [&](const char* variable, const char* value) {
    ::setenv(variable, value, 1);
    std::string text = faultWithin(kLittle, path);
    ::unsetenv(variable);
    return text;
  };
  write(40000, 30000);
  EXPECT_EQ(fault("VANTOREL_MAX_READ_SECONDS", ""),
            path +
                ": a picture of 40000x30000 has 1200 megapixels and 1100 are read; raise VANTOREL_MAX_MEGAPIXELS to "
                "read it");
  write(20000, 10000);
  folder.cutShort("a.exr", 0.95);
  EXPECT_NE(fault("VANTOREL_MAX_MEGAPIXELS", "200").find("cannot be read"), std::string::npos);

  write(8, 8);
  EXPECT_EQ(fault("VANTOREL_MAX_MEGAPIXELS", "0.000064"), "");
  EXPECT_NE(fault("VANTOREL_MAX_MEGAPIXELS", "0.000063"), "");
  EXPECT_NE(fault("VANTOREL_MAX_READ_SECONDS", "1e-9").find("takes more than 1e-09 seconds"), std::string::npos);
  ::setenv("VANTOREL_MAX_MEGAPIXELS", "-1", 1);
  EXPECT_THROW(readLimits(), CommandError);
  ::unsetenv("VANTOREL_MAX_MEGAPIXELS");
}

TEST(DamagedPicture, WhatIsCutShortIsRefused) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Float);
  for (const char* name : {"a.png", "a.jpg", "a.tif", "a.exr", "a.dpx"}) {
    for (const double share : {0.98, 0.5, 0.1, 0.0}) {
      const std::string path = folder / name;
      writeImage(path, image, outputSamples(formatForOutput("", path), DepthChoice::Auto, SampleType::Float));
      EXPECT_FALSE(isTruncated(path)) << name;
      folder.cutShort(name, share);
      EXPECT_NE(faultOf(path), "") << name << " " << share;
      EXPECT_FALSE(isWholePicture(path, image.size())) << name << " " << share;
    }
  }
}

// The end is looked for in blocks of 64 KiB after the first marker.
TEST(DamagedPicture, EndsOfJpegAreFoundWhereverTheyLie) {
  const TestFolder folder;
  const std::string path = folder / "a.jpg";
  const host::Image image = sample(host::Depth::Bits8);
  writeImage(path, image, SampleType::Bits8);
  const std::string plain = contents(path);
  for (const std::size_t size : {65536u, 65537u, 65538u, 65539u, 65540u, 65541u}) {
    const std::size_t comment = size - plain.size() - 2;  // with the two bytes of its length
    std::string whole = plain;
    whole.insert(2,
                 "\xFF\xFE" + bigEndian(static_cast<std::uint32_t>(comment)).substr(2) + std::string(comment - 2, 'x'));
    ASSERT_EQ(size, whole.size());
    folder.write("a.jpg", whole);
    EXPECT_TRUE(isWholePicture(path, image.size())) << size;
    folder.write("a.jpg", whole.substr(0, size - 1));
    EXPECT_FALSE(isWholePicture(path, image.size())) << size;
  }
}

}  // namespace
}  // namespace vantorel::cli
