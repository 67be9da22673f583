// What formats hold beside the picture, where a whole file does not show it.
#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfMatrixAttribute.h>
#include <OpenEXR/ImfRationalAttribute.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfThreading.h>
#include <gtest/gtest.h>

#include "PictureFiles.h"
#include "cli/pictures/CodecThreads.h"
#include "cli/pictures/ExtraChannels.h"
#include "cli/pictures/OpenExrAttributes.h"
#include "cli/pictures/PngText.h"

namespace vantorel::cli {
namespace {

template <typename Value>
Attribute attribute(const char* name, const char* type, const Value& value) {
  const auto* bytes = reinterpret_cast<const std::byte*>(&value);
  return {name, type, "", {bytes, bytes + sizeof value}};
}

TEST(Metadata, OpenExrHasThePositionInDegreesAndMatricesAsMatrices) {
  const std::array<float, 3> latitude{48, 30, 36};
  const std::array<float, 3> longitude{9, 15, 0};
  const Imath::M44f matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
  Metadata metadata;
  metadata.set(attribute("GPS:Latitude", "float[3]", latitude));
  metadata.set(textAttribute("GPS:LatitudeRef", "S"));
  metadata.set(attribute("GPS:Longitude", "float[3]", longitude));
  metadata.set(textAttribute("GPS:LongitudeRef", "E"));
  metadata.set(numberAttribute("GPS:Altitude", 120.5f));
  metadata.set(numberAttribute("GPS:AltitudeRef", 1));
  metadata.set(attribute("worldToCamera", "matrix", matrix));
  metadata.set(attribute("captureRate", "rational", std::array<std::int32_t, 2>{24, 0}));
  Imf::Header header;
  addAttributes(header, metadata);
  ASSERT_TRUE(Imf::hasLatitude(header) && Imf::hasLongitude(header) && Imf::hasAltitude(header));
  EXPECT_FLOAT_EQ(-48.51f, Imf::latitude(header));
  EXPECT_FLOAT_EQ(9.25f, Imf::longitude(header));
  EXPECT_FLOAT_EQ(-120.5f, Imf::altitude(header));
  const auto* const written = header.findTypedAttribute<Imf::M44fAttribute>("worldToCamera");
  ASSERT_NE(nullptr, written);
  EXPECT_EQ(matrix, written->value());
  const auto* const rate = header.findTypedAttribute<Imf::RationalAttribute>("captureRate");
  ASSERT_NE(nullptr, rate);
  EXPECT_EQ(1u, rate->value().d);  // 0 is not one that can be read
}

TEST(Metadata, JpegHasItsDensityInTheUnitThatIsStated) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Bits8);
  for (const char* unit : {"in", "cm"}) {
    Metadata metadata;
    metadata.set(textAttribute("ResolutionUnit", unit));
    metadata.set(numberAttribute("XResolution", 118.0f));
    OutputPicture picture = describe(image, SampleType::Bits8);
    picture.metadata = std::make_shared<Metadata>(metadata);
    writePicture(folder / "card.jpg", formatForOutput("", "card.jpg"), picture, {});
    const std::string jfif = contents(folder / "card.jpg").substr(0, 20);
    EXPECT_EQ(std::string(unit) == "in" ? 1 : 2, jfif[13]) << unit;
    EXPECT_EQ(118, jfif[15]) << unit;
  }
}

TEST(Metadata, TiffHasOfAPositionWhatIsStatedAlone) {
  const TestFolder folder;
  const host::Image image = sample(host::Depth::Bits8);
  Metadata metadata;
  metadata.set(textAttribute("GPS:LatitudeRef", "N"));
  metadata.set(attribute("GPS:Latitude", "float[3]", std::array<float, 3>{48, 30, 36}));
  metadata.set(numberAttribute("GPS:ImgDirection", -3.0f));  // which its unsigned fractions cannot say
  OutputPicture picture = describe(image, SampleType::Bits8);
  picture.metadata = std::make_shared<Metadata>(metadata);
  writePicture(folder / "card.tif", formatForOutput("", "card.tif"), picture, {});
  const auto read = readAt(folder / "card.tif", host::Depth::Bits8).metadata;
  EXPECT_NE(nullptr, read->find("GPS:Latitude"));
  for (const char* name : {"GPS:ImgDirection", "GPS:Altitude", "GPS:Speed", "GPS:Longitude"}) {
    EXPECT_EQ(nullptr, read->find(name)) << name;
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

TEST(Metadata, OpenExrStartsNoMoreThreadsThanAllowed) {
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
