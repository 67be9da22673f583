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

// The check sum of a PNG's chunk, over its type and data.
std::uint32_t pngCheckSum(const std::string& bytes) {
  return static_cast<std::uint32_t>(
      crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size())));
}

std::string bigEndian(std::uint32_t value) {
  return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
          static_cast<char>(value)};
}

std::string pngChunk(const std::string& type, const std::string& data) {
  return bigEndian(static_cast<std::uint32_t>(data.size())) + type + data + bigEndian(pngCheckSum(type + data));
}

std::string pngOffsetChunk(std::uint32_t x, std::uint32_t y) {
  return pngChunk("oFFs", bigEndian(x) + bigEndian(y) + '\0');
}

constexpr std::size_t kEndOfPngHeader = 33;

// A PNG's offset once moved its picture out of view, and a GIF's alpha channel, which its reader counts beyond the
// last, once ended the process.
TEST(DamagedPicture, OffsetsWithoutADisplayWindowAndMiscountedChannelsShowTheWholePicture) {
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
TEST(DamagedPicture, OffsetsNearTheEndsOfTheirRangeAreRefused) {
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
TEST(DamagedPicture, LengthsBeyondTheEndOfTheFileTakeNoMemory) {
  const TestFolder folder;
  for (const char* name : {"a.png", "a.exr", "a.dpx"}) {
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
  std::string dpx = contents(folder / "a.dpx");
  dpx.replace(32, 4, dpx[0] == 'X' ? std::string("\0\0\0\x70", 4) : bigEndian(0x70000000));
  std::ofstream(folder / "a.dpx", std::ios::binary) << dpx;
  for (const char* name : {"a.png", "a.exr", "a.dpx"}) {
    EXPECT_LT(peakGrowthOf([&] { EXPECT_THROW(readAt(folder / name, host::Depth::Bits8), CommandError); }), kLittle)
        << name;
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
  for (const char* name : {"texts.png", "rows.png", "scans.jpg"}) {
    ImageSpec spec(8, 8, 3, TypeDesc::UINT8);
    spec.attribute("jpeg:progressive", 1);
    writeFile<std::uint8_t>(folder / name, spec, std::vector<std::uint8_t>(192, 100));
  }
  const auto replace = [&](const char* name, std::size_t at, const std::string& bytes, std::size_t count) {
    std::string file = contents(folder / name);
    std::ofstream(folder / name, std::ios::binary) << file.replace(at, count, bytes);
  };

  std::vector<Bytef> packed(10000);
  uLongf size = packed.size();
  compress2(packed.data(), &size, std::vector<Bytef>(7900000, 'a').data(), 7900000, 9);
  const std::string text(reinterpret_cast<const char*>(packed.data()), size);
  std::string chunks;
  for (int i = 0; i < 12; ++i) {
    chunks += pngChunk("zTXt", std::string("key") + char('0' + i) + std::string(2, '\0') + text);
  }
  replace("texts.png", kEndOfPngHeader, chunks, 0);
  EXPECT_LT(peakGrowthOf([&] { readAt(folder / "texts.png", host::Depth::Bits8); }), kBound);

  // 30000x30000 pixels, interlaced.
  const std::string head = "IHDR" + bigEndian(30000) + bigEndian(30000) + std::string("\x08\x02\0\0\x01", 5);
  replace("rows.png", 12, head + bigEndian(pngCheckSum(head)), kEndOfPngHeader - 12);
  EXPECT_LT(peakGrowthOf([&] { EXPECT_THROW(readAt(folder / "rows.png", host::Depth::Bits8), CommandError); }), kBound);

  const std::size_t frame = contents(folder / "scans.jpg").find("\xFF\xC2");
  ASSERT_NE(frame, std::string::npos);
  replace("scans.jpg", frame + 5, "\x75\x30\x75\x30", 4);
  EXPECT_LT(peakGrowthOf([&] { EXPECT_THROW(readAt(folder / "scans.jpg", host::Depth::Bits8), CommandError); }),
            kBound);
}

// Pixels that are damaged in every layer of their packing are refused, by libpng's own words.
TEST(DamagedPicture, DamagedPixelsOfPngAreRefused) {
  const TestFolder folder;
  const std::string path = folder / "a.png";
  writeFile<std::uint8_t>(path, ImageSpec(8, 8, 3, TypeDesc::UINT8), std::vector<std::uint8_t>(192, 100));
  const std::string whole = contents(path);
  const std::size_t begin = whole.find("IDAT") - 4;
  const std::size_t end = whole.find("IEND") - 4;
  const std::string data = whole.substr(begin + 8, end - begin - 12);
  const auto faultOf = [&](const std::string& pixels) -> std::string {
    std::ofstream(path, std::ios::binary) << whole.substr(0, begin) << pixels << whole.substr(end);
    try {
      readAt(path, host::Depth::Bits8);
    } catch (const CommandError& error) {
      return error.text();
    }
    return "none";
  };
  const std::string odd_check = data.substr(0, data.size() - 1) + char(data.back() ^ 1);
  const std::string rows(8 * 25, '\x09');
  std::vector<Bytef> packed(1000);
  uLongf size = packed.size();
  compress(packed.data(), &size, reinterpret_cast<const Bytef*>(rows.data()), rows.size());
  const std::string odd_filter(reinterpret_cast<const char*>(packed.data()), size);

  EXPECT_EQ(faultOf(pngChunk("IDAT", data)), "none");
  EXPECT_NE(faultOf(bigEndian(static_cast<std::uint32_t>(data.size())) + "IDAT" + data + "abcd").find("CRC error"),
            std::string::npos);
  EXPECT_NE(faultOf(pngChunk("IDAT", odd_check)).find("incorrect data check"), std::string::npos);
  EXPECT_NE(faultOf(pngChunk("IDAT", data.substr(0, data.size() / 2))).find("Not enough image data"),
            std::string::npos);
  EXPECT_NE(faultOf(pngChunk("IDAT", odd_filter)).find("bad adaptive filter value"), std::string::npos);
}

// What a file states is refused by the limits, which the environment moves; and a picture around a data window that
// cannot be read takes no memory.
TEST(DamagedPicture, LimitsHoldUntilTheyAreRaised) {
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

TEST(DamagedPicture, WhatIsCutShortIsRefused) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Float);
  for (const char* name : {"a.png", "a.jpg", "a.tif", "a.exr", "a.dpx"}) {
    for (const double share : {0.98, 0.5, 0.1, 0.0}) {
      const std::string path = folder / name;
      writeImage(path, image, outputSamples(formatForOutput("", path), DepthChoice::Auto, SampleType::Float));
      EXPECT_FALSE(isTruncated(path)) << name;
      folder.cutShort(name, share);
      EXPECT_THROW(readAt(path, host::Depth::Bits8), CommandError) << name << " " << share;
      EXPECT_FALSE(isWholePicture(path, image.size())) << name << " " << share;
    }
  }
}

}  // namespace
}  // namespace vantorel::cli
