// Picture files of every format, in and out.
#include <numeric>

#include "PictureFiles.h"
#include "cli/pictures/FileRecord.h"

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

}  // namespace
}  // namespace vantorel::cli
