// What an OpenEXR plate holds besides its picture, in and out, by OpenEXR's own library.
#include <OpenEXR/ImfBoxAttribute.h>
#include <OpenEXR/ImfFloatVectorAttribute.h>
#include <OpenEXR/ImfInputPart.h>
#include <OpenEXR/ImfMultiPartInputFile.h>
#include <OpenEXR/ImfStringAttribute.h>
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "CommandRunner.h"
#include "ExrFiles.h"

namespace vantorel::cli {
namespace {

using Imath::Box2i;

void describePlate(Imf::Header& header) {
  header.insert("shot", Imf::StringAttribute(header.name()));
  header.insert("lens", Imf::FloatVectorAttribute({1.5f, 2.0f}));
  header.insert("region", Imf::Box2iAttribute(header.dataWindow()));
  Imf::addFramesPerSecond(header, Imf::Rational(24000, 1001));
}

// Halves and floats of these bits are small, and none is NaN or infinite.
constexpr std::uint32_t kSmall = 0x37373737;

// 12 channels and two parts.
void writePlate(const std::string& path, const Box2i& data) {
  using enum Imf::PixelType;
  const ExrPart depth{.channels = {{"Z", FLOAT}, {"mask"}},
                      .compression = Imf::PIZ_COMPRESSION,
                      .data = data,
                      .display = {{10, 20}, {73, 55}},
                      .name = "depth",
                      .describe = describePlate};
  ExrPart beauty = depth;
  beauty.name = "beauty";
  beauty.channels = {{"R"},      {"G"},      {"B"},      {"Z", FLOAT},        {"id", UINT},
                     {"glow.R"}, {"glow.G"}, {"glow.B"}, {"normal.X", FLOAT}, {"normal.Y", FLOAT}};
  writeExr(path, {beauty, depth}, kSmall);
}

// The bits of every channel of a part within the window.
std::map<std::string, std::vector<char>> channelsOf(Imf::MultiPartInputFile& file, int part, const Box2i& window) {
  std::map<std::string, std::vector<char>> read;
  const Imf::Header& header = file.header(part);
  const Box2i whole = header.dataWindow();
  const auto width = static_cast<std::size_t>(whole.size().x + 1);
  const auto height = static_cast<std::size_t>(whole.size().y + 1);
  for (auto each = header.channels().begin(); each != header.channels().end(); ++each) {
    const Imf::Channel& channel = each.channel();
    const std::size_t sample = channel.type == Imf::HALF ? 2 : 4;
    std::vector<char> memory(sample * width * height);
    const auto slice = Imf::Slice::Make(channel.type, memory.data(), whole, sample, sample * width, channel.xSampling,
                                        channel.ySampling);
    Imf::FrameBuffer buffer;
    buffer.insert(each.name(), slice);
    Imf::InputPart input(file, part);
    input.setFrameBuffer(buffer);
    input.readPixels(whole.min.y, whole.max.y);
    const auto at = [&](int x, int y) {
      return slice.base + y / channel.ySampling * static_cast<std::ptrdiff_t>(slice.yStride) +
             x / channel.xSampling * static_cast<std::ptrdiff_t>(slice.xStride);
    };
    std::vector<char>& bytes = read[each.name()];
    for (int y = window.min.y; y <= window.max.y; y += channel.ySampling) {
      bytes.insert(bytes.end(), at(window.min.x, y), at(window.max.x, y) + sample);
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
  const FolderWithCard folder("32x24");
  writePlate(folder / "plate.exr", kOverscan);
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

  runWell(folder, "render card.png -o small.exr --over plate.exr --ul 4,4 --ur 40,5 --ll 5,30 --lr 42,29");
  Imf::MultiPartInputFile plate((folder / "plate.exr").c_str());
  Imf::MultiPartInputFile small((folder / "small.exr").c_str());
  for (const Box2i& beside :
       {Box2i({4, 12}, {79, 21}), Box2i({4, 52}, {79, 60}), Box2i({4, 12}, {11, 60}), Box2i({60, 12}, {79, 60})}) {
    EXPECT_EQ(channelsOf(plate, 0, beside), channelsOf(small, 0, beside)) << beside.min.x << ", " << beside.min.y;
  }
}

TEST(OpenExrPlate, TheChannelsOfThePictureKeepTheirNames) {
  const FolderWithCard folder("32x24");
  const Box2i whole({0, 0}, {31, 23});
  for (const std::string layer : {"", "fg."}) {
    for (const std::vector<std::string>& names : {std::vector<std::string>{"a", "b", "g", "r"}, {"B", "G", "R"}}) {
      ExrPart part{.channels = {}, .data = whole, .display = whole, .name = "plate"};
      std::set<std::string> expected;
      for (const std::string& name : names) {
        part.channels.push_back({layer + name});
        expected.insert("plate/" + layer + name);
      }
      writeExr(folder / "plate.exr", {part}, kSmall);
      runWell(folder,
              "render card.png -o out.exr --over plate.exr" + std::string(layer.empty() ? "" : " --layer-name fg"));
      EXPECT_EQ(differences(folder / "plate.exr", folder / "out.exr"), expected);
      Imf::MultiPartInputFile output((folder / "out.exr").c_str());
      std::set<std::string> written;
      for (const auto& channel : channelsOf(output, 0, whole)) {
        written.insert("plate/" + channel.first);
      }
      EXPECT_EQ(expected, written);
    }
  }
}

TEST(OpenExrPlate, ChannelsOfFewerSamplesPassButMakeNoPicture) {
  const FolderWithCard folder("32x24");
  const Box2i whole({0, 0}, {31, 23});
  ExrPart part{.channels = {{"R"}, {"G"}, {"B"}, {"glow.A"}, {"id", Imf::UINT, 2}},
               .data = whole,
               .display = whole,
               .name = "plate"};
  writeExr(folder / "plate.exr", {part}, kSmall);
  runWell(folder, "render card.png -o out.exr --over plate.exr --ul 4,4 --ur 20,5 --ll 5,20 --lr 22,21");
  EXPECT_EQ(differences(folder / "plate.exr", folder / "out.exr"),
            (std::set<std::string>{"plate/R", "plate/G", "plate/B"}));
  // The alpha of another layer is not that of the picture.
  const Imf::MultiPartInputFile output((folder / "out.exr").c_str());
  EXPECT_EQ(output.header(0).channels().findChannel("A"), nullptr);

  part.channels = {{"R"}, {"G"}, {"B", Imf::UINT, 2}};
  writeExr(folder / "plate.exr", {part}, kSmall);
  expectRefused(folder, {{"render card.png -o out.exr --over plate.exr", 3,
                          "plate.exr: its channel 'B' does not have a sample for every pixel; resample it first"}});
}

TEST(OpenExrPlate, WhatTheFileDoesNotHoldIsNamed) {
  const FolderWithCard folder("32x24");
  writePlate(folder / "plate.exr", kOverscan);
  EXPECT_EQ(nlohmann::json::parse(runWell(folder, "info --json plate.exr").out)["parts"],
            nlohmann::json({"beauty", "depth"}));
  runWell(folder, "testcard -o one.exr --size 8x8");
  EXPECT_EQ(nlohmann::json::parse(runWell(folder, "info --json one.exr").out)["parts"], nlohmann::json::array());
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
