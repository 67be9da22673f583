// What formats hold beside the picture: attributes and further channels.
#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfMatrixAttribute.h>
#include <OpenEXR/ImfRationalAttribute.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <gtest/gtest.h>

#include "PictureFiles.h"
#include "cli/pictures/CommonMetadata.h"
#include "cli/pictures/ExtraChannels.h"
#include "cli/pictures/FileRecord.h"
#include "cli/pictures/OpenExrAttributes.h"
#include "cli/pictures/PngText.h"

namespace vantorel::cli {
namespace {

template <typename Number, std::size_t kCount>
Attribute numbers(const char* name, const char* type, const std::array<Number, kCount>& values) {
  const auto* const bytes = reinterpret_cast<const std::byte*>(values.data());
  return {name, type, {}, {bytes, bytes + sizeof values}};
}

// Writes a picture of 8 bits with these attributes in the format of the name.
void writeWith(const Metadata& metadata, const std::string& path) {
  const host::Image image = sample(host::Depth::Bits8);
  const ImageFormat& format = formatForOutput("", path);
  OutputPicture picture = describe(image, outputSamples(format, DepthChoice::Auto, SampleType::Bits8));
  picture.metadata = std::make_shared<const Metadata>(metadata);
  picture.settings = 42;
  writePicture(path, format, picture, {});
}

constexpr const char* kXmp =
    "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'>"
    "<rdf:Description xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Label='Take 3'/></rdf:RDF></x:xmpmeta>";

// What cameras, scanners and editors state, with values that each format gives back as they are.
Metadata statedByAll() {
  Metadata all;
  for (const auto& [name, text] : {std::pair{"GPS:LatitudeRef", "N"},
                                   {"GPS:LongitudeRef", "W"},
                                   {"IPTC:City", "Rome"},
                                   {"Make", "Maker"},
                                   {"Model", "Camera"},
                                   {"Exif:LensModel", "Lens"},
                                   {"Copyright", "somebody"},
                                   {"DateTime", "2020:01:02 03:04:05"},
                                   {"Exif:DateTimeOriginal", "2019:01:02 03:04:05"},
                                   {"ResolutionUnit", "in"},
                                   {"XML:com.adobe.xmp", kXmp}}) {
    all.set(textAttribute(name, text));
  }
  for (const auto& [name, number] : {std::pair{"GPS:Altitude", 100.5f},
                                     {"XResolution", 300.0f},
                                     {"YResolution", 300.0f},
                                     {"FNumber", 2.8f},
                                     {"Exif:FocalLength", 35.0f}}) {
    all.set(numberAttribute(name, number));
  }
  all.set(numberAttribute("GPS:AltitudeRef", 0));
  all.set(numberAttribute("Exif:PhotographicSensitivity", 800));
  all.set(numbers<float, 3>("GPS:Latitude", "float[3]", {48, 30, 15}));
  all.set(numbers<float, 3>("GPS:Longitude", "float[3]", {12, 15, 0}));
  all.set(numbers<std::int32_t, 2>("FramesPerSecond", "rational2i", {24000, 1001}));
  all.set(numbers<std::uint32_t, 2>("smpte:TimeCode", "timecode", {0x01020304, 0}));
  all.set(numbers<std::int32_t, 7>("smpte:KeyCode", "keycode", {1, 2, 3, 4, 5, 6, 64}));
  return all;
}

void expectSameAttribute(const Metadata& before, const Metadata& after, const std::string& name) {
  ASSERT_NE(after.find(name), nullptr) << name;
  EXPECT_EQ(before.text(name), after.text(name)) << name;
  EXPECT_EQ(before.floats(name), after.floats(name)) << name;
  if (const Attribute& one = *before.find(name); one.type == "rational2i" || one.type == "keycode") {
    EXPECT_EQ(one.bytes, after.find(name)->bytes) << name;
  }
  // PNG counts whole pixels to the metre, and DPX and OpenEXR floats.
  EXPECT_NEAR(before.number(name).value_or(0.0), after.number(name).value_or(0.0), 1e-3) << name;
}

TEST(Metadata, AttributesPassAsFarAsTheFormatHoldsThem) {
  const TestFolder folder;
  using Names = std::vector<std::string>;
  const Names exif{"GPS:LatitudeRef",
                   "GPS:Latitude",
                   "GPS:LongitudeRef",
                   "GPS:Longitude",
                   "GPS:Altitude",
                   "Make",
                   "Model",
                   "Exif:LensModel",
                   "Copyright",
                   "DateTime",
                   "FNumber",
                   "Exif:FocalLength",
                   "Exif:DateTimeOriginal",
                   "Exif:PhotographicSensitivity"};
  const Names packets{"IPTC:City", "XResolution", "YResolution", "ResolutionUnit", "XML:com.adobe.xmp"};
  const Names film{"FramesPerSecond", "smpte:TimeCode"};
  const std::pair<const char*, std::vector<Names>> held[] = {{"a.jpg", {exif, packets}},
                                                             {"a.tif", {exif, packets}},
                                                             {"a.png", {exif, packets}},
                                                             {"a.exr", {exif, packets, film, {"smpte:KeyCode"}}},
                                                             {"a.dpx", {{"Model", "Copyright", "DateTime"}, film}}};
  const auto write = [&](const char* name, const Metadata& metadata) {
    writeWith(metadata, folder / name);
    EXPECT_EQ(checkRecord(folder / name, 42), RecordState::Matches) << name;
    return *readAt(folder / name, host::Depth::Bits8).metadata;
  };
  const Metadata all = statedByAll();
  for (const auto& [first, first_names] : held) {
    const Metadata once = write(first, all);
    for (const auto& [second, second_names] : held) {
      SCOPED_TRACE(std::string("by ") + first + " into " + second);
      const Metadata twice = write(second, once);
      for (const Names& names : first_names) {
        for (const std::string& name : names) {
          const bool is_held = std::ranges::any_of(
              second_names, [&](const Names& others) { return std::ranges::find(others, name) != others.end(); });
          if (is_held) {
            expectSameAttribute(all, twice, name);
          }
        }
      }
    }
  }
  Metadata position;
  for (const char* name : {"GPS:Latitude", "GPS:LatitudeRef"}) {
    position.set(*all.find(name));
  }
  position.set(numberAttribute("GPS:ImgDirection", -3.0f));  // which TIFF's unsigned fractions cannot say
  const Metadata tiff = write("a.tif", position);
  expectSameAttribute(position, tiff, "GPS:Latitude");
  for (const char* name : {"GPS:ImgDirection", "GPS:Altitude", "GPS:Speed", "GPS:Longitude"}) {
    EXPECT_EQ(nullptr, tiff.find(name)) << name;
  }
  Metadata whole_rate;
  whole_rate.set(numbers<std::int32_t, 2>("FramesPerSecond", "rational2i", {24, 1}));
  expectSameAttribute(whole_rate, write("a.exr", write("a.dpx", whole_rate)), "FramesPerSecond");
}

// What OpenEXR's own library and OpenImageIO write, under names that other formats do not have.
TEST(Metadata, AttributesTakeTheNamesThatFormatsHaveInCommon) {
  const TestFolder folder;
  ImageSpec spec(2, 1, 3, TypeDesc::HALF);
  spec.attribute("latitude", -33.5f);
  spec.attribute("longitude", 151.25f);
  spec.attribute("altitude", -4.0f);
  spec.attribute("isoSpeed", 400.0f);
  spec.attribute("cameraMake", "Maker");
  writeFile<float>(folder / "a.exr", spec, std::vector<float>(6, 0.5f));
  const Metadata exr = *readAt(folder / "a.exr", host::Depth::Float).metadata;
  EXPECT_EQ(exr.text("GPS:LatitudeRef") + exr.text("GPS:LongitudeRef") + exr.text("Make"), "SEMaker");
  EXPECT_EQ(exr.floats("GPS:Latitude"), (std::vector<float>{33, 30, 0}));
  EXPECT_EQ(exr.floats("GPS:Longitude"), (std::vector<float>{151, 15, 0}));
  EXPECT_EQ(exr.number("GPS:AltitudeRef"), 1.0);
  Metadata high;
  high.set(numberAttribute("altitude", 4));
  useCommonNames(high);
  EXPECT_EQ(high.number("GPS:AltitudeRef"), 0.0);
  EXPECT_EQ(high.number("GPS:Altitude"), 4.0);
  EXPECT_EQ(exr.number("Exif:PhotographicSensitivity"), 400.0);

  // A unit of EXIF's beside a density of JFIF's that has none, and the orientation in a packet of a turned picture.
  ImageSpec photo(2, 1, 3, TypeDesc::UINT8);
  photo.attribute("XResolution", 300.0f);
  photo.attribute("ResolutionUnit", "cm");
  photo.attribute("Orientation", 6);
  writeFile<std::uint8_t>(folder / "a.jpg", photo, std::vector<std::uint8_t>(6, 100));
  const Picture upright = readAt(folder / "a.jpg", host::Depth::Bits8);
  EXPECT_EQ(upright.pixels.size(), (host::Size{1, 2}));
  EXPECT_EQ(upright.metadata->find("Orientation"), nullptr);
  EXPECT_EQ(upright.metadata->text("ResolutionUnit"), "cm");
}

// The library of JPEG once ended the process here.
TEST(Metadata, AttributesThatAreTooLongAreNamed) {
  const TestFolder folder;
  Metadata metadata;
  metadata.set(textAttribute("Copyright", "somebody"));
  metadata.set(textAttribute("ImageDescription", std::string(70000, 'x')));
  try {
    writeWith(metadata, folder / "a.jpg");
    ADD_FAILURE() << "was written";
  } catch (const CommandError& error) {
    EXPECT_EQ(error.code(), ExitCode::FileFailed);
    EXPECT_NE(error.text().find("its attribute 'ImageDescription' has 70000 bytes"), std::string::npos) << error.text();
  }
  EXPECT_EQ(folder.count(), 0U);
  // A profile may be longer, since it is divided.
  Metadata profiled;
  profiled.set({"ICCProfile", "uint8[70000]", {}, std::vector<std::byte>(70000)});
  writeWith(profiled, folder / "a.jpg");
  EXPECT_EQ(readAt(folder / "a.jpg", host::Depth::Bits8).metadata->find("ICCProfile")->bytes.size(), 70000u);
}

TEST(Metadata, OpenExrHasThePositionInDegreesAndMatricesAsMatrices) {
  const std::array<float, 16> values{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16};
  Metadata metadata;
  metadata.set(numbers<float, 3>("GPS:Latitude", "float[3]", {48, 30, 36}));
  metadata.set(textAttribute("GPS:LatitudeRef", "S"));
  metadata.set(numbers<float, 3>("GPS:Longitude", "float[3]", {9, 15, 0}));
  metadata.set(textAttribute("GPS:LongitudeRef", "E"));
  metadata.set(numberAttribute("GPS:Altitude", 120.5f));
  metadata.set(numberAttribute("GPS:AltitudeRef", 1));
  metadata.set(numbers("worldToCamera", "matrix", values));
  metadata.set(numbers<std::int32_t, 2>("captureRate", "rational", {24, 0}));
  Imf::Header header;
  addAttributes(header, metadata);
  ASSERT_TRUE(Imf::hasLatitude(header) && Imf::hasLongitude(header) && Imf::hasAltitude(header));
  EXPECT_FLOAT_EQ(-48.51f, Imf::latitude(header));
  EXPECT_FLOAT_EQ(9.25f, Imf::longitude(header));
  EXPECT_FLOAT_EQ(-120.5f, Imf::altitude(header));
  const auto* const written = header.findTypedAttribute<Imf::M44fAttribute>("worldToCamera");
  ASSERT_NE(nullptr, written);
  EXPECT_TRUE(std::equal(values.begin(), values.end(), written->value().getValue()));
  const auto* const rate = header.findTypedAttribute<Imf::RationalAttribute>("captureRate");
  ASSERT_NE(nullptr, rate);
  EXPECT_EQ(1u, rate->value().d);  // 0 is not one that can be read
}

TEST(Metadata, JpegHasItsDensityInTheUnitThatIsStated) {
  const TestFolder folder;
  for (const char* unit : {"in", "cm"}) {
    Metadata metadata;
    metadata.set(textAttribute("ResolutionUnit", unit));
    metadata.set(numberAttribute("XResolution", 118.0f));
    writeWith(metadata, folder / "card.jpg");
    const std::string jfif = contents(folder / "card.jpg").substr(0, 20);
    EXPECT_EQ(std::string(unit) == "in" ? 1 : 2, jfif[13]) << unit;
    EXPECT_EQ(118, jfif[15]) << unit;
  }
}

TEST(Metadata, PngHasTheDensitiesThatItCanHold) {
  const TestFolder folder;
  for (const auto& [x, y] : {std::pair{300.0f, 150.0f}, {1e8f, 300.0f}, {300.0f, 1e8f}}) {
    Metadata metadata;
    metadata.set(textAttribute("ResolutionUnit", "in"));
    metadata.set(numberAttribute("XResolution", x));
    metadata.set(numberAttribute("YResolution", y));
    writeWith(metadata, folder / "card.png");
    const auto read = readAt(folder / "card.png", host::Depth::Bits8).metadata;
    EXPECT_EQ(std::max(x, y) < 1e8f, read->find("XResolution") != nullptr) << x << ", " << y;
  }
}

TEST(Metadata, ExifInAPngTextIsReadFromItsHexadecimalDigits) {
  EXPECT_EQ("MM*", exifOfText("\nexif\n 9\n457869660000\n4d4D2A\n"));
  EXPECT_EQ("", exifOfText("\nexif\n 9\n"));
  EXPECT_EQ("", exifOfText("\nexif\n 3\n4d4d2a\n"));
}

TEST(Metadata, FurtherChannelsKeepTheirSamplesInAnotherWindow) {
  Imf::ChannelList channels;
  channels.insert("id", Imf::Channel(Imf::UINT));
  channels.insert("ry", Imf::Channel(Imf::HALF, 2, 2));
  const Imath::Box2i window({-5, -4}, {4, 3});
  // The address of the sample of a pixel.
  const auto at = [](const Imf::Slice& slice, int x, int y) {
    return slice.base + (x / slice.xSampling) * static_cast<std::ptrdiff_t>(slice.xStride) +
           (y / slice.ySampling) * static_cast<std::ptrdiff_t>(slice.yStride);
  };
  const auto value = [](int x, int y) { return static_cast<std::uint16_t>(1000 + 16 * y + x); };
  const ExtraChannels from(channels, window);
  Imf::FrameBuffer buffer;
  from.addTo(buffer);
  for (int y = window.min.y; y <= window.max.y; ++y) {
    for (int x = window.min.x; x <= window.max.x; ++x) {
      *reinterpret_cast<std::uint32_t*>(at(buffer["id"], x, y)) = value(x, y);
      if (x % 2 == 0 && y % 2 == 0) {
        *reinterpret_cast<std::uint16_t*>(at(buffer["ry"], x, y)) = value(x, y);
      }
    }
  }
  for (const Imath::Box2i& other : {Imath::Box2i({-3, -3}, {9, 2}), Imath::Box2i({-9, -6}, {-2, 8}),
                                    Imath::Box2i({1, 1}, {3, 3}), Imath::Box2i({6, 0}, {8, 4})}) {
    const ExtraChannels moved = from.in(other);
    Imf::FrameBuffer copies;
    moved.addTo(copies);
    for (int y = other.min.y; y <= other.max.y; ++y) {
      for (int x = other.min.x; x <= other.max.x; ++x) {
        const std::uint16_t expected = window.intersects(Imath::V2i(x, y)) ? value(x, y) : 0;
        EXPECT_EQ(expected, *reinterpret_cast<std::uint32_t*>(at(copies["id"], x, y))) << x << ", " << y;
        if (x % 2 == 0 && y % 2 == 0) {
          EXPECT_EQ(expected, *reinterpret_cast<std::uint16_t*>(at(copies["ry"], x, y))) << x << ", " << y;
        }
      }
    }
  }
}

}  // namespace
}  // namespace vantorel::cli
