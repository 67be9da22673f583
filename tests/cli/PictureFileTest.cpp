// Picture files of every format, in and out.
#include <algorithm>
#include <cstring>

#include "PictureFiles.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/HalfConversion.h"
#include "cli/pictures/TestCard.h"

namespace vantorel::cli {
namespace {

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
    writeImage(path, image, one.samples);
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
    writeImage(path, image, SampleType::Bits8);
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
  writeImage(path, image, SampleType::Bits8);
  const Picture back = readAt(path, host::Depth::Bits8);
  EXPECT_EQ(pixel8(back, 1, 0), (std::vector<int>{255, 0, 128, 255}));
  EXPECT_EQ(pixel8(back, 0, 0), (std::vector<int>{32, 64, 0, 64}));  // half and white under an alpha of a quarter
}

TEST(PictureFile, ChannelsOfAnyNumberOrderAndAlphaBecomeRgba) {
  const TestFolder folder;
  const struct {
    const char* name;
    std::vector<std::string> channels;
    bool straight_alpha;
    std::vector<float> pixel;  // 0 to 255
    std::vector<int> expected;
  } cases[] = {
      {"grey.png", {"Y"}, false, {77}, {77, 77, 77, 255}},
      {"grey_alpha.png", {"Y", "A"}, true, {200, 51}, {40, 40, 40, 51}},
      {"straight.tif", {"R", "G", "B", "A"}, true, {100, 50, 0, 128}, {50, 25, 0, 128}},
      {"associated.tif", {"R", "G", "B", "A"}, false, {100, 50, 0, 128}, {100, 50, 0, 128}},
      {"odd.exr",
       {"A", "B", "Z", "G", "normal.x", "R", "normal.y"},
       false,
       {255, 51, 9, 102, 5, 153, 5},
       {153, 102, 51, 255}},
      {"scattered.exr", {"A", "B", "C", "D", "G", "R"}, false, {255, 51, 9, 5, 102, 153}, {153, 102, 51, 255}},
      {"masked.tif", {"R", "G", "B", "mask", "A"}, false, {100, 50, 0, 7, 128}, {100, 50, 0, 128}},
      {"pair.exr", {"p.x", "p.y"}, false, {102, 204}, {102, 102, 102, 204}},  // by their position: grey and alpha
      {"nameless.exr", {"a.x", "a.y", "a.z", "b.x", "b.y", "b.z"}, false, {1, 1, 1, 1, 1, 1}, {}},
  };
  for (const auto& c : cases) {
    const std::string path = folder / c.name;
    ImageSpec spec(1, 1, static_cast<int>(c.channels.size()),
                   path.ends_with(".exr") ? TypeDesc::FLOAT : TypeDesc::UINT8);
    spec.channelnames = c.channels;
    spec.alpha_channel = c.channels.back() == "A" ? spec.nchannels - 1 : -1;
    spec.attribute("oiio:UnassociatedAlpha", c.straight_alpha ? 1 : 0);
    std::vector<float> samples = c.pixel;
    std::ranges::for_each(samples, [](float& sample) { sample /= 255.0f; });
    writeFile(path, spec, samples);
    if (c.expected.empty()) {
      EXPECT_THROW(readAt(path, host::Depth::Bits8), CommandError) << c.name;
    } else {
      EXPECT_EQ(pixel8(readAt(path, host::Depth::Bits8), 0, 0), c.expected) << c.name;
    }
  }
  EXPECT_EQ(probePicture(folder / "odd.exr").extra_bytes, 3 * 4);
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

// Many at once, by vector code where the processor has it, are those that are converted one by one.
TEST(HalfConversion, EveryHalfAndFloatsOfAllKindsKeepTheirBits) {
  constexpr std::size_t kCount = 1 << 16;
  std::vector<std::uint16_t> halves(kCount);
  std::vector<float> floats(kCount);
  std::vector<std::uint32_t> bits(kCount);
  for (std::size_t i = 0; i < kCount; ++i) {
    halves[i] = static_cast<std::uint16_t>(i);
    bits[i] = static_cast<std::uint32_t>(i * 65537 + i * i);  // every exponent, NaNs and infinities among them
  }
  fromHalf(halves.data(), kCount, floats.data());
  std::vector<std::uint16_t> converted(kCount);
  toHalf(reinterpret_cast<const std::byte*>(bits.data()), host::Depth::Float, kCount, converted.data());
  for (std::size_t i = 0; i < kCount; ++i) {
    float one = 0.0f;
    fromHalf(&halves[i], 1, &one);
    ASSERT_EQ(std::memcmp(&one, &floats[i], sizeof one), 0) << "half " << i;
    std::uint16_t alone = 0;
    toHalf(reinterpret_cast<const std::byte*>(&bits[i]), host::Depth::Float, 1, &alone);
    ASSERT_EQ(alone, converted[i]) << "float of bits " << bits[i];
  }
  // Rows of integers, longer than what is converted at a time.
  const auto* const bytes = reinterpret_cast<const std::byte*>(bits.data());
  toFloat(bytes, host::Depth::Bits16, kCount, floats.data());
  toHalf(reinterpret_cast<const std::byte*>(floats.data()), host::Depth::Float, kCount, halves.data());
  constexpr std::size_t kPart = kCount - 1000;
  converted.assign(kCount, 77);
  toHalf(bytes, host::Depth::Bits16, kPart, converted.data());
  EXPECT_TRUE(std::equal(halves.begin(), halves.begin() + kPart, converted.begin()));
  EXPECT_EQ(1000, std::count(converted.begin() + kPart, converted.end(), 77)) << "written past the end";
}

TEST(TestCard, ItsCentreLinesAndCircleLieInTheMiddle) {
  host::Image card = host::testing::dirty({400, 300}, host::Depth::Bits8);
  drawTestCard(card.view());
  const auto is_white = [&](int x, int y) {
    const auto* channel = reinterpret_cast<const std::uint8_t*>(card.view().pixel(x, y));
    return channel[0] == 255 && channel[1] == 255 && channel[2] == 255;
  };
  EXPECT_TRUE(is_white(200, 20) && is_white(200, 280) && is_white(30, 150) && is_white(370, 150));
  EXPECT_FALSE(is_white(180, 20) || is_white(220, 280) || is_white(30, 140) || is_white(370, 160));
  // The circle, of 0.46 times the height, is met 96 pixels above and below the middle in this column.
  for (const int y : {150 - 96, 150 + 96}) {
    EXPECT_TRUE(is_white(100, y - 1) || is_white(100, y)) << y;
    EXPECT_FALSE(is_white(100, y - 6) || is_white(100, y + 6)) << y;
  }
}

}  // namespace
}  // namespace vantorel::cli
