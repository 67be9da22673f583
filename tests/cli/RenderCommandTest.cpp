// Stills, the test card and what the effect says of itself, through the built command.
#include <OpenImageIO/imageio.h>
#include <fmt/format.h>
#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "CommandRunner.h"
#include "PictureFiles.h"
#include "PixelFile.h"

namespace vantorel::cli {
namespace {

constexpr const char* kTurned = " --ul 20,10 --ur 180,30 --ll 10,120 --lr 150,140";

TEST(RenderCommand, AnIdentityRenderReproducesTheLayerAtEveryDepthThroughBothProtocols) {
  const FolderWithCard folder("200x150");
  runWell(folder, "testcard -o card.exr --size 200x150");
  for (const std::string protocol : {"smart", "plain"}) {
    for (const std::string depth : {"auto", "8", "16", "float"}) {
      runWell(folder, "render card.png -o same.png --depth " + depth + " --protocol " + protocol);
      // 16-bit files hold v * 257, which as a float is v / 255 but for its last bit.
      EXPECT_LT(difference(folder / "card.png", folder / "same.png"), 1e-7) << depth << " " << protocol;
    }
    // Of an option given twice the later holds.
    runWell(folder, "render card.exr -o first.exr -o same.exr --protocol " + protocol);
    EXPECT_EQ(difference(folder / "card.exr", folder / "same.exr"), 0.0) << protocol;
  }
  for (const std::string samples : {"", " --samples 1"}) {  // the only number there is between centres
    runWell(folder, "render card.exr -o centred.exr --placement centres" + samples);
    EXPECT_EQ(difference(folder / "card.exr", folder / "centred.exr"), 0.0) << samples;
  }
}

TEST(RenderCommand, PathProtocolAndThreadsDoNotChangeThePicture) {
  const FolderWithCard folder("200x150");
  struct Shape {
    const char* corners;
    const char* path;
    const char* warning;
  };
  for (const Shape& shape :
       {Shape{kTurned, "perspective", ""}, Shape{" --ul 20,10 --ur 60,80 --ll 10,120 --lr 150,140", "bilinear",
                                                 "vantorel: the picture was drawn by bilinear mapping, since the "
                                                 "corners do not form a convex quadrilateral\n"}}) {
    const CommandResult told = run(folder, std::string("render card.png -o a.png --json") + shape.corners);
    EXPECT_EQ(told.err, shape.warning);
    const auto lines = told.lines();
    ASSERT_EQ(lines.size(), 1u);
    EXPECT_EQ(lines[0]["path"], shape.path);
    EXPECT_EQ(lines[0]["depth"], 16);  // of an 8-bit file with soft alpha
    EXPECT_EQ(lines[0]["size"], (std::vector<int>{200, 150}));
    EXPECT_EQ(lines[0]["output"], "a.png");
    EXPECT_GT(lines[0]["render_ms"], 0.0);
    const std::string plain = "render card.png -o b.png --protocol plain --threads 1";
    EXPECT_EQ(run(folder, plain + shape.corners).code, 0);
    EXPECT_EQ(difference(folder / "a.png", folder / "b.png"), 0.0) << shape.path;
    EXPECT_GT(difference(folder / "a.png", folder / "card.png"), 0.05);
  }
}

// Every colour under every alpha. At 8 bits those under an alpha of 4 are off by up to 32.
TEST(RenderCommand, AnIdentityKeepsSoftAlphaAtAutomaticDepth) {
  const TestFolder folder;
  const auto write = [&](const std::string& name, bool opaque) {
    PixelFile file = PixelFile::filled({256, 256}, {0, 0, 0, 255});
    for (int alpha = 0; alpha < 256; ++alpha) {
      for (int x = 0; x < 256; ++x) {
        const int colour = alpha == 0 ? 0 : x;
        file.set(x, alpha, {colour, colour, colour, opaque ? 255 : alpha});
      }
    }
    file.write(folder / name);
  };
  write("soft.png", false);
  write("opaque.png", true);
  const auto depth_of = [&](const std::string& arguments) {
    return runWell(folder, "render " + arguments + " --json").lines()[0]["depth"].get<int>();
  };
  EXPECT_EQ(depth_of("soft.png -o same.png"), 16);
  EXPECT_EQ(difference(folder / "soft.png", folder / "same.png"), 0.0);
  EXPECT_EQ(OIIO::ImageInput::open(folder / "same.png")->spec().format, OIIO::TypeDesc::UINT8);
  EXPECT_EQ(depth_of("soft.png -o same.png --depth 8"), 8);
  EXPECT_EQ(depth_of("opaque.png -o same.png"), 8);
  EXPECT_EQ(depth_of("opaque.png --over soft.png -o same.png"), 16);
  for (const auto& [x, y] : {std::pair{0, 0}, {255, 0}, {3, 100}, {255, 255}}) {
    PixelFile file = PixelFile::filled({256, 256}, {9, 9, 9, 255});
    file.set(x, y, {9, 9, 9, 254});
    file.write(folder / "spot.png");
    EXPECT_EQ(depth_of("spot.png -o same.png"), 16) << x << ", " << y;
  }
}

TEST(RenderCommand, FilesArePackedAsAskedFor) {
  const FolderWithCard folder("200x150");
  const auto size_of = [&](const std::string& output, const std::string& options) {
    runWell(folder, "render card.png -o " + output + options);
    return std::filesystem::file_size(folder / output);
  };
  EXPECT_LT(size_of("a.jpg", " --jpeg-quality 1"), size_of("b.jpg", " --jpeg-quality 50"));
  EXPECT_LT(size_of("b.jpg", " --jpeg-quality 50"), size_of("c.jpg", " --jpeg-quality 100"));
  EXPECT_LT(size_of("a.png", " --png-level 9"), size_of("b.png", " --png-level 0"));
  EXPECT_EQ(difference(folder / "a.png", folder / "b.png"), 0.0);
  EXPECT_LT(size_of("a.tif", " --compression zip:9"), size_of("b.tif", " --compression none"));
}

TEST(RenderCommand, FitKeepsThePlaceOfTheOutput) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.exr --size 200x150");
  const std::string corners = " --ul -21.5,10 --ur 180,30 --ll 10,120 --lr 150,140";
  const auto line = runWell(folder, "render card.exr -o fit.exr --fit --json" + corners).lines().at(0);
  const auto input = OIIO::ImageInput::open(folder / "fit.exr");
  ASSERT_TRUE(input);
  const OIIO::ImageSpec spec = input->spec();
  EXPECT_EQ(line["origin"], (std::vector<int>{spec.x, spec.y}));
  EXPECT_LE(spec.x, -22);
  EXPECT_EQ(spec.full_width, 200);
  EXPECT_EQ(spec.full_height, 150);
  const std::string windows = fmt::format("\ndata window    {}x{} at {},{}\ndisplay window 200x150 at 0,0\n",
                                          spec.width, spec.height, spec.x, spec.y);
  EXPECT_NE(runWell(folder, "info fit.exr").out.find(windows), std::string::npos) << windows;
  // Read back in its display window it is the picture of the layer's own size.
  runWell(folder, "render fit.exr -o cropped.exr");
  runWell(folder, "render card.exr -o whole.exr" + corners);
  EXPECT_EQ(difference(folder / "cropped.exr", folder / "whole.exr"), 0.0);

  const auto png = runWell(folder, "render card.exr -o fit.png --fit --json" + corners).lines().at(0);
  EXPECT_EQ(png["origin"], line["origin"]);
  EXPECT_EQ(png["size"], line["size"]);

  // At a quarter of the resolution too every pixel is covered: the edges are rounded outward.
  const auto proxy =
      runWell(folder, "render card.exr -o proxy.exr --fit --json --downsample 4" + corners).lines().at(0);
  for (const std::size_t axis : {0u, 1u}) {
    const int begin = line["origin"][axis];
    const int end = begin + line["size"][axis].get<int>();
    const int proxy_begin = proxy["origin"][axis];
    EXPECT_EQ(begin - 4 * proxy_begin, begin & 3);
    EXPECT_EQ(4 * (proxy_begin + proxy["size"][axis].get<int>()) - end, -end & 3);
    EXPECT_NE(end & 3, 0);
  }
}

TEST(RenderCommand, ProxiesShowTheSamePictureSmaller) {
  const FolderWithCard folder("403x301");
  runWell(folder, "testcard -o plate.png --size 403x301");
  for (const std::string options : {"", " --over plate.png", " --fit"}) {
    const std::string common = options + " --quality high --ul 40,20 --ur 360,60 --ll 20,240 --lr 300,280";
    runWell(folder, "render card.png -o full.exr" + common);
    const auto line = runWell(folder, "render card.png -o half.exr --json --downsample 2" + common).lines().at(0);
    if (options != " --fit") {
      EXPECT_EQ(line["size"], (std::vector<int>{202, 151}));
      // The full picture averaged by twos is near; fine lines and edges differ, since each filters for its own size.
      const std::string shrink = "render full.exr -o shrunk.exr --quality high --downsample 2";
      runWell(folder, shrink);
      EXPECT_LT(difference(folder / "shrunk.exr", folder / "half.exr"), 0.08) << options;
    }
  }
}

TEST(RenderCommand, MetadataGoesAlong) {
  const TestFolder folder;
  ImageSpec spec(4, 4, 3, TypeDesc::UINT8);
  spec.attribute("XResolution", 300.0f);
  spec.attribute("YResolution", 300.0f);
  spec.attribute("ResolutionUnit", "in");
  writeFile(folder / "a.tif", spec, std::vector<std::uint8_t>(48, 128));
  runWell(folder, "render a.tif -o b.tif");
  const auto input = OIIO::ImageInput::open(folder / "b.tif");
  ASSERT_TRUE(input);
  EXPECT_EQ(input->spec().get_float_attribute("XResolution"), 300.0f);
  EXPECT_EQ(input->spec().get_string_attribute("ResolutionUnit"), "in");
}

TEST(RenderCommand, LinearLightBrightensMixesOfBlackAndWhite) {
  const TestFolder folder;
  PixelFile stripes = PixelFile::filled({64, 64}, {0});
  for (int i = 0; i < 64 * 64; ++i) {
    stripes.set(i % 64, i / 64, {i % 2 == 0 ? 0 : 255});
  }
  stripes.write(folder / "a.png");
  const std::string shrink = " --ul 0,0 --ur 16,0 --ll 0,16 --lr 16,16 --size 16x16";
  const auto middle = [&](const std::string& name) { return 255 * PixelFile::read(folder / name).at(8, 8)[0]; };
  runWell(folder, "render a.png -o plain.png" + shrink);
  EXPECT_NEAR(middle("plain.png"), 128, 2);
  runWell(folder, "render a.png -o linear.png --linear" + shrink);
  EXPECT_NEAR(middle("linear.png"), 188, 2);  // half the light in sRGB
  const std::string deep = shrink + " --linear --depth ";
  EXPECT_EQ(runWell(folder, "render a.png -o linear8.png --json" + deep + "8").lines()[0]["depth"], 32);
  EXPECT_EQ(middle("linear8.png"), middle("linear.png"));
  runWell(folder, "render a.png -o linear16.png" + deep + "16");
  EXPECT_EQ(OIIO::ImageInput::open(folder / "linear16.png")->spec().format, OIIO::TypeDesc::UINT16);
}

TEST(RenderCommand, InfoShowsTheModuleAndTheInstructionSets) {
  const TestFolder folder;
  const auto info_under = [&](const std::string& setting) {
    return nlohmann::json::parse(run(folder, "info --json", setting).out);
  };
  const nlohmann::json info = info_under("");
  EXPECT_EQ(info["version"], "2.0");
  EXPECT_EQ(info["capabilities"].size(), 4u);
  ASSERT_EQ(info["parameters"].size(), 4u);
  EXPECT_EQ(info["parameters"][3]["name"], "Lower Right");
  EXPECT_EQ(info["parameters"][3]["default_percent"], (std::vector<double>{100.0, 100.0}));
  ASSERT_EQ(info["simd"].size(), 3u);
  EXPECT_EQ(info_under("export VANTOREL_SIMD=scalar;")["simd"][0],
            (nlohmann::json{{"name", "scalar"}, {"available", true}, {"active", true}}));
  const std::string text = runWell(folder, "info").out;
  for (const char* part :
       {"Upper Left", "module         ", "\nversion        2.0\n", "\nSIMD           scalar", "in use"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part;
  }
  EXPECT_NE(runWell(folder, "--version").out.find("vantorel "), std::string::npos);
}

TEST(RenderCommand, EqualRunsWriteEqualBytes) {
  const TestFolder folder;
  const auto bytes = [&](const std::string& name, const std::string& before) {
    EXPECT_EQ(run(folder, "testcard -o " + name + " --size 64x48", before).code, 0) << name;
    return contents(folder / name);
  };
  for (const std::string name : {"card.tif", "card.exr", "card.dpx", "card.png", "card.jpg"}) {
    const std::string first = bytes(name, "");
    std::this_thread::sleep_for(std::chrono::milliseconds(1100));  // the formats' time stamps count seconds
    EXPECT_EQ(bytes(name, ""), first) << name;
  }
  for (const std::string name : {"card.tif", "card.exr", "card.dpx"}) {
    EXPECT_NE(bytes(name, "SOURCE_DATE_EPOCH=1700000000").find("2023:11:14"), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace vantorel::cli
