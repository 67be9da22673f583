// What an OpenEXR plate holds besides its picture, in and out, by OpenEXR's own library.
#include <OpenEXR/ImfBoxAttribute.h>
#include <OpenEXR/ImfChannelList.h>
#include <OpenEXR/ImfFloatVectorAttribute.h>
#include <OpenEXR/ImfFrameBuffer.h>
#include <OpenEXR/ImfInputFile.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfMultiPartOutputFile.h>
#include <OpenEXR/ImfOutputFile.h>
#include <OpenEXR/ImfOutputPart.h>
#include <OpenEXR/ImfPartType.h>
#include <OpenEXR/ImfStandardAttributes.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <gtest/gtest.h>

#include <map>
#include <numeric>
#include <random>
#include <set>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

using Imath::Box2i;

struct PixelsOfChannel {
  std::vector<char> bytes;
  Imf::Slice slice;
};

// Memory for a channel of that window.
PixelsOfChannel pixelsOf(const Imf::Channel& channel, const Box2i& window) {
  const std::size_t sample = channel.type == Imf::HALF ? 2 : 4;
  const auto width = static_cast<std::size_t>(window.size().x) + 1;
  const auto height = static_cast<std::size_t>(window.size().y) + 1;
  PixelsOfChannel pixels{std::vector<char>(sample * width * height), {}};
  pixels.slice = Imf::Slice::Make(channel.type, pixels.bytes.data(), window, sample, sample * width);
  return pixels;
}

Imf::Header plateHeader(const Box2i& data, const char* name,
                        std::initializer_list<std::pair<const char*, Imf::PixelType>> channels) {
  Imf::Header header(Box2i({10, 20}, {73, 55}), data);
  header.setName(name);
  header.setType(Imf::SCANLINEIMAGE);
  header.compression() = Imf::PIZ_COMPRESSION;
  header.insert("shot", Imf::StringAttribute(name));
  header.insert("lens", Imf::FloatVectorAttribute({1.5f, 2.0f}));
  header.insert("region", Imf::Box2iAttribute(data));
  Imf::addFramesPerSecond(header, Imf::Rational(24000, 1001));
  for (const auto& [channel, type] : channels) {
    header.channels().insert(channel, Imf::Channel(type));
  }
  return header;
}

// 12 channels and two parts, of random bits but for the picture's.
void writePlate(const std::string& path, const Box2i& data) {
  const std::vector<Imf::Header> headers{plateHeader(data, "beauty",
                                                     {{"R", Imf::HALF},
                                                      {"G", Imf::HALF},
                                                      {"B", Imf::HALF},
                                                      {"Z", Imf::FLOAT},
                                                      {"id", Imf::UINT},
                                                      {"glow.R", Imf::HALF},
                                                      {"glow.G", Imf::HALF},
                                                      {"glow.B", Imf::HALF},
                                                      {"normal.X", Imf::FLOAT},
                                                      {"normal.Y", Imf::FLOAT}}),
                                         plateHeader(data, "depth", {{"Z", Imf::FLOAT}, {"mask", Imf::HALF}})};
  Imf::MultiPartOutputFile file(path.c_str(), headers.data(), 2);
  std::mt19937 random(7);
  for (int part = 0; part < 2; ++part) {
    Imf::FrameBuffer buffer;
    std::vector<PixelsOfChannel> memory;
    const Imf::ChannelList& channels = headers[static_cast<std::size_t>(part)].channels();
    for (auto channel = channels.begin(); channel != channels.end(); ++channel) {
      memory.push_back(pixelsOf(channel.channel(), data));
      // Halves and floats of which none is NaN, infinite or so large that it overflows over the picture.
      std::ranges::generate(memory.back().bytes, [&] { return static_cast<char>(random() % 0x38); });
      buffer.insert(channel.name(), memory.back().slice);
    }
    Imf::OutputPart output(file, part);
    output.setFrameBuffer(buffer);
    output.writePixels(data.max.y - data.min.y + 1);
  }
}

// The bits of every channel of a part within the window.
std::map<std::string, std::vector<char>> channelsOf(Imf::MultiPartInputFile& file, int part, const Box2i& window) {
  std::map<std::string, std::vector<char>> read;
  const Imf::Header& header = file.header(part);
  const Box2i whole = header.dataWindow();
  for (auto channel = header.channels().begin(); channel != header.channels().end(); ++channel) {
    const PixelsOfChannel pixels = pixelsOf(channel.channel(), whole);
    Imf::FrameBuffer buffer;
    buffer.insert(channel.name(), pixels.slice);
    Imf::InputPart input(file, part);
    input.setFrameBuffer(buffer);
    input.readPixels(whole.min.y, whole.max.y);
    std::vector<char>& bytes = read[channel.name()];
    for (int y = window.min.y; y <= window.max.y; ++y) {
      const char* const row = pixels.slice.base + y * static_cast<std::ptrdiff_t>(pixels.slice.yStride);
      const auto sample = static_cast<std::ptrdiff_t>(pixels.slice.xStride);
      bytes.insert(bytes.end(), row + window.min.x * sample, row + (window.max.x + 1) * sample);
    }
  }
  return read;
}

std::string bitsOf(const Imf::Attribute& attribute) {
  struct Text : Imf::OStream {
    Text() : OStream("text") {}
    void write(const char bytes[], int count) override { text.append(bytes, static_cast<std::size_t>(count)); }
    std::uint64_t tellp() override { return text.size(); }
    void seekp(std::uint64_t) override {}
    std::string text;
  } stream;
  attribute.writeValueTo(stream, 2);
  return attribute.typeName() + (':' + stream.text);
}

// The names of what differs from the plate: attributes, and channels as "part/name".
std::set<std::string> differences(const std::string& plate_path, const std::string& output_path) {
  std::set<std::string> names;
  Imf::MultiPartInputFile plate(plate_path.c_str());
  Imf::MultiPartInputFile output(output_path.c_str());
  EXPECT_EQ(plate.parts(), output.parts());
  for (int part = 0; part < plate.parts(); ++part) {
    const Imf::Header& before = plate.header(part);
    const Imf::Header& after = output.header(part);
    for (auto attribute = before.begin(); attribute != before.end(); ++attribute) {
      const auto found = after.find(attribute.name());
      if (found == after.end() || bitsOf(attribute.attribute()) != bitsOf(found.attribute())) {
        names.insert(attribute.name());
      }
    }
    const auto old_channels = channelsOf(plate, part, before.dataWindow());
    const auto new_channels = channelsOf(output, part, before.dataWindow());
    for (const auto& [name, bytes] : old_channels) {
      const auto found = new_channels.find(name);
      if (found == new_channels.end() || found->second != bytes) {
        names.insert(before.name() + '/' + name);
      }
    }
  }
  return names;
}

const Box2i kOverscan({4, 12}, {79, 60});

TEST(OpenExrPlate, EverythingButThePictureComesOutAsItWentIn) {
  const FolderWithCard folder("32x24");
  const std::string corners = " --ul -9,-5 --ur 50,3 --ll 5,40 --lr 55,30";
  struct Case {
    const char* options;
    Box2i data;
    std::set<std::string> changed;
  };
  const std::set<std::string> rgb{"beauty/R", "beauty/G", "beauty/B"};
  const std::set<std::string> glow{"beauty/glow.R", "beauty/glow.G", "beauty/glow.B"};
  for (const Case& one :
       {Case{"", kOverscan, rgb}, Case{"--part beauty --layer-name glow", kOverscan, glow},
        // The layer reaches beyond this data window, which grows; the channels stay in their place.
        Case{"", Box2i({20, 30}, {40, 50}), {"beauty/R", "beauty/G", "beauty/B", "dataWindow", "chunkCount"}}}) {
    writePlate(folder / "plate.exr", one.data);
    runWell(folder, "render card.png -o out.exr --over plate.exr " + std::string(one.options) + corners);
    EXPECT_EQ(differences(folder / "plate.exr", folder / "out.exr"), one.changed) << one.options;
  }
}

TEST(OpenExrPlate, OverscanIsDrawnOnAndPackingIsChosen) {
  const TestFolder folder;
  writePlate(folder / "plate.exr", kOverscan);
  runWell(folder, "testcard -o card.png --size 32x24");
  const auto lines = runWell(folder,
                             "render card.png -o out.exr --over plate.exr --compression zips --json "
                             "--ul -6,-8 --ur 70,-8 --ll -6,41 --lr 70,41")
                         .lines();
  EXPECT_EQ(lines.at(0)["origin"], nlohmann::json({-6, -8}));
  EXPECT_EQ(lines.at(0)["size"], nlohmann::json({76, 49}));
  Imf::MultiPartInputFile output((folder / "out.exr").c_str());
  EXPECT_EQ(output.header(0).compression(), Imf::ZIPS_COMPRESSION);
  EXPECT_EQ(output.header(0).channels()["R"].type, Imf::HALF);
  EXPECT_EQ(output.header(0).dataWindow(), kOverscan);
  // The first pixel of the overscan is the card's own, an opaque one, and not the plate's small number.
  EXPECT_GT(float{reinterpret_cast<const Imath::half*>(channelsOf(output, 0, kOverscan)["R"].data())[0]}, 0.2f);
}

// A plate of 32x24 whose channels are all half but one of integers for every second pixel of every second row.
void writeSparse(const std::string& path, const std::vector<std::string>& halves, const std::string& sparse,
                 std::vector<std::uint32_t>& integers) {
  Imf::Header header(32, 24);
  Imf::FrameBuffer buffer;
  std::vector<Imath::half> samples(32 * 24, 0.25f);
  for (const std::string& name : halves) {
    header.channels().insert(name, Imf::Channel(Imf::HALF));
    buffer.insert(name, Imf::Slice(Imf::HALF, reinterpret_cast<char*>(samples.data()), 2, 64));
  }
  header.channels().insert(sparse, Imf::Channel(Imf::UINT, 2, 2));
  buffer.insert(sparse, Imf::Slice(Imf::UINT, reinterpret_cast<char*>(integers.data()), 4, 64, 2, 2));
  Imf::OutputFile file(path.c_str(), header);
  file.setFrameBuffer(buffer);
  file.writePixels(24);
}

TEST(OpenExrPlate, ChannelsOfFewerSamplesPassButMakeNoPicture) {
  const FolderWithCard folder("32x24");
  std::vector<std::uint32_t> integers(16 * 12);
  std::iota(integers.begin(), integers.end(), 0xFFFFFF00u);
  // The alpha of another layer is not that of the picture.
  writeSparse(folder / "plate.exr", {"R", "G", "B", "glow.A"}, "id", integers);
  runWell(folder, "render card.png -o out.exr --over plate.exr --ul 4,4 --ur 20,5 --ll 5,20 --lr 22,21");
  Imf::InputFile output((folder / "out.exr").c_str());
  EXPECT_EQ(output.header().channels().findChannel("A"), nullptr);
  std::vector<std::uint32_t> passed(integers.size());
  Imf::FrameBuffer buffer;
  buffer.insert("id", Imf::Slice(Imf::UINT, reinterpret_cast<char*>(passed.data()), 4, 64, 2, 2));
  output.setFrameBuffer(buffer);
  output.readPixels(0, 23);
  EXPECT_EQ(passed, integers);

  writeSparse(folder / "plate.exr", {"R", "G"}, "B", integers);
  expectRefused(folder, {{"render card.png -o out.exr --over plate.exr", 3,
                          "plate.exr: its channel 'B' does not have a sample for every pixel; resample it first"}});
}

TEST(OpenExrPlate, WhatTheFileDoesNotHoldIsNamed) {
  const TestFolder folder;
  writePlate(folder / "plate.exr", kOverscan);
  EXPECT_EQ(nlohmann::json::parse(runWell(folder, "info --json plate.exr").out)["parts"],
            nlohmann::json({"beauty", "depth"}));
  runWell(folder, "testcard -o card.png --size 32x24");
  const std::string render = "render card.png -o out.exr --over plate.exr ";
  expectRefused(
      folder, {
                  {render + "--part sky", 3, "plate.exr: has no part 'sky'; give --part as beauty, depth, or 0 to 1"},
                  {render + "--part 2", 3, "plate.exr: has no part '2'"},
                  {render + "--layer-name fog", 3, "plate.exr: has no layer 'fog'; give --layer-name as glow, normal"},
                  {render + "--compression lzw", 2, "--compression: OpenEXR files cannot be packed by 'lzw'"},
                  {render + "--compression zip:10", 2, "--compression: '10' is not a level of 'zip'"},
                  {render + "--png-level 2", 2, "--png-level: applies to PNG files, but the output is OpenEXR"},
              });
}

}  // namespace
}  // namespace vantorel::cli
