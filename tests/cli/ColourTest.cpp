// Colour spaces through the built command, against LittleCMS, which the command uses for none of these conversions.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>
#include <lcms2.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#include "CommandRunner.h"
#include "PictureFiles.h"
#include "PixelFile.h"

namespace vantorel::cli {
namespace {

using Profile = std::shared_ptr<void>;

constexpr cmsCIExyY kD65{0.3127, 0.3290, 1.0};
constexpr cmsCIExyYTRIPLE kRec709{{0.64, 0.33, 1.0}, {0.30, 0.60, 1.0}, {0.15, 0.06, 1.0}};
constexpr cmsCIExyYTRIPLE kP3{{0.68, 0.32, 1.0}, {0.265, 0.69, 1.0}, {0.15, 0.06, 1.0}};
constexpr cmsCIExyYTRIPLE kAdobe{{0.64, 0.33, 1.0}, {0.21, 0.71, 1.0}, {0.15, 0.06, 1.0}};
constexpr cmsCIExyYTRIPLE kAp1{{0.713, 0.293, 1.0}, {0.165, 0.83, 1.0}, {0.128, 0.044, 1.0}};
constexpr cmsCIExyY kAcesWhite{0.32168, 0.33767, 1.0};

// `gamma` 0 stands for the curve of sRGB.
Profile profileOf(const cmsCIExyYTRIPLE& primaries, double gamma, const cmsCIExyY& white = kD65) {
  const std::array<double, 5> srgb{2.4, 1.0 / 1.055, 0.055 / 1.055, 1.0 / 12.92, 0.04045};
  cmsToneCurve* const curve =
      gamma == 0.0 ? cmsBuildParametricToneCurve(nullptr, 4, srgb.data()) : cmsBuildGamma(nullptr, gamma);
  cmsToneCurve* const curves[] = {curve, curve, curve};
  Profile profile(cmsCreateRGBProfile(&white, &primaries, curves), cmsCloseProfile);
  cmsFreeToneCurve(curve);
  return profile;
}

std::vector<unsigned char> bytesOf(const Profile& profile) {
  cmsUInt32Number size = 0;
  cmsSaveProfileToMem(profile.get(), nullptr, &size);
  std::vector<unsigned char> bytes(size);
  cmsSaveProfileToMem(profile.get(), bytes.data(), &size);
  return bytes;
}

Profile named(const Profile& profile, const char* name) {
  const std::unique_ptr<cmsMLU, decltype(&cmsMLUfree)> text(cmsMLUalloc(nullptr, 1), cmsMLUfree);
  cmsMLUsetASCII(text.get(), "en", "US", name);
  cmsWriteTag(profile.get(), cmsSigProfileDescriptionTag, text.get());
  return profile;
}

std::array<float, 3> converted(std::array<float, 3> colour, const Profile& from, const Profile& to) {
  const cmsHTRANSFORM transform = cmsCreateTransform(from.get(), TYPE_RGB_FLT, to.get(), TYPE_RGB_FLT,
                                                     INTENT_RELATIVE_COLORIMETRIC, cmsFLAGS_NOOPTIMIZE);
  cmsDoTransform(transform, colour.data(), colour.data(), 1);
  cmsDeleteTransform(transform);
  return colour;
}

struct Tags {
  std::vector<unsigned char> icc{};
  std::vector<float> chromaticities{};
  std::string space{};
};

// The pixels of an RGBA picture with straight alpha as they are, in a file of another kind. OpenEXR gets floats.
void writeTagged(const std::string& path, const PixelFile& pixels, const Tags& tags) {
  const bool is_exr = path.ends_with(".exr");
  OIIO::ImageSpec spec(pixels.size().width, pixels.size().height, path.ends_with(".jpg") ? 3 : 4,
                       is_exr ? OIIO::TypeDesc::FLOAT : OIIO::TypeDesc::UINT8);
  spec.attribute("oiio:UnassociatedAlpha", is_exr ? 0 : 1);
  if (!tags.icc.empty()) {
    spec.attribute("ICCProfile", OIIO::TypeDesc(OIIO::TypeDesc::UINT8, static_cast<int>(tags.icc.size())),
                   tags.icc.data());
  }
  if (!tags.chromaticities.empty()) {
    spec.attribute("chromaticities", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 8), tags.chromaticities.data());
  }
  if (!tags.space.empty()) {
    spec.attribute("oiio:ColorSpace", tags.space);
  }
  std::vector<float> samples;
  for (int y = 0; y < spec.height; ++y) {
    for (int x = 0; x < spec.width; ++x) {
      const std::vector<double> pixel = pixels.at(x, y);
      for (std::size_t c = 0; c < static_cast<std::size_t>(spec.nchannels); ++c) {
        samples.push_back(static_cast<float>(pixel[c] * (is_exr && c < 3 ? pixel[3] : 1.0)));
      }
    }
  }
  writeFile(path, spec, samples);
}

// A config of ACES spaces; `rule` is for names that hold "_cg".
void writeConfig(const TestFolder& folder, const std::string& name, const std::string& rule = "ACEScg") {
  folder.write(name,
               "ocio_profile_version: 2\nroles: {default: ACES2065-1, scene_linear: ACEScg, aces_interchange: "
               "ACES2065-1}\nfile_rules:\n  - !<Rule> {name: Named, colorspace: " +
                   rule +
                   ", pattern: \"*_cg*\", extension: \"*\"}\n  - !<Rule> {name: Default, colorspace: default}\n"
                   "displays:\n  d:\n    - !<View> {name: v, colorspace: ACEScg}\ncolorspaces:\n"
                   "  - !<ColorSpace> {name: ACES2065-1}\n"
                   "  - !<ColorSpace> {name: doubled, to_scene_reference: !<MatrixTransform> "
                   "{matrix: [2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 2, 0, 0, 0, 0, 1]}}\n"
                   "  - !<ColorSpace> {name: camera, to_scene_reference: !<ExponentTransform> "
                   "{value: [2.2, 2.2, 2.2, 1]}}\n"
                   "  - !<ColorSpace>\n    name: ACEScg\n"
                   "    to_scene_reference: !<MatrixTransform> {matrix: [0.6954522414, 0.1406786965, 0.1638690622,"
                   " 0, 0.0447945634, 0.8596711185, 0.0955343182, 0, -0.0055258826, 0.0040252103, 1.0015006723,"
                   " 0, 0, 0, 0, 1]}\n");
}

TEST(Colour, LayersOfAllSpacesComeOutAsTheReferenceHasThem) {
  const FolderWithCard folder("96x54");
  const PixelFile card = PixelFile::read(folder / "card.png");
  writeConfig(folder, "aces.ocio");
  const Profile srgb = profileOf(kRec709, 0.0);
  const Profile linear = profileOf(kRec709, 1.0);
  struct Layer {
    const char* file;
    Profile profile;
    Tags tags;
    const char* options;
  };
  const Profile adobe = profileOf(kAdobe, 563.0 / 256.0);
  const Profile p3 = profileOf(kP3, 0.0);
  const std::vector<Layer> layers{
      {"srgb.png", srgb, {}, ""},
      {"adobe.png", adobe, {bytesOf(adobe)}, ""},
      {"p3.png", p3, {bytesOf(p3)}, ""},
      {"linear.exr", linear, {}, ""},
      {"acescg.exr", profileOf(kAp1, 1.0, kAcesWhite), {}, " --ocio aces.ocio --colorspace-layer ACEScg"},
      {"tagged.exr",
       profileOf(kAp1, 1.0, kAcesWhite),
       {{}, {0.713f, 0.293f, 0.165f, 0.83f, 0.128f, 0.044f, 0.32168f, 0.33767f}},
       ""},
  };
  const PixelFile grey = PixelFile::filled(card.size(), {60, 120, 40, 255});
  writeTagged(folder / "plate.png", grey, {});
  writeTagged(folder / "plate.exr", grey, {});
  for (const Layer& layer : layers) {
    writeTagged(folder / layer.file, card, layer.tags);
    for (const bool over_linear : {false, true}) {
      const std::string kind = over_linear ? "exr" : "png";
      runWell(folder, "render " + std::string(layer.file) + " -o out." + kind + " --over plate." + kind +
                          (over_linear ? " --colorspace-over linear" : "") + layer.options);
      const PixelFile out = PixelFile::read(folder / ("out." + kind));
      double worst = 0.0;
      for (int y = 0; y < card.size().height; ++y) {
        for (int x = 0; x < card.size().width; ++x) {
          const std::vector<double> pixel = card.at(x, y);
          const std::array<float, 3> colour =
              converted({static_cast<float>(pixel[0]), static_cast<float>(pixel[1]), static_cast<float>(pixel[2])},
                        layer.profile, over_linear ? linear : srgb);
          for (std::size_t c = 0; c < 3; ++c) {
            double expected = colour[c] * pixel[3] + grey.at(x, y)[c] * (1.0 - pixel[3]);
            expected = over_linear ? expected : std::clamp(expected, 0.0, 1.0);
            worst = std::max(worst, std::abs(out.at(x, y)[c] - expected));
          }
        }
      }
      EXPECT_LE(worst, 1.0 / 255.0) << layer.file << " over " << kind;
      RecordProperty(std::string(layer.file) + " over " + kind, std::to_string(worst * 255.0));
    }
  }
}

TEST(Colour, EqualSpacesKeepEveryBit) {
  const FolderWithCard folder("96x54");
  const PixelFile card = PixelFile::read(folder / "card.png");
  writeTagged(folder / "profile.jpg", card, {bytesOf(profileOf(kRec709, 0.0))});
  const std::string render = "render card.png -o out.png --over profile.jpg --ul 10,7 --lr 80,44 --json";
  EXPECT_EQ(runWell(folder, render).lines()[0]["depth"], run(folder, render + " --raw").lines()[0]["depth"]);
  EXPECT_EQ(run(folder, render + " --raw -o raw.png").code, 0);
  EXPECT_EQ(difference(folder / "out.png", folder / "raw.png"), 0.0);
  EXPECT_NE(run(folder, render + " --raw").err.find("(--raw)"), std::string::npos);
}

// The colour space that `info` reports for the file, and why.
std::string told(const TestFolder& folder, const std::string& file, const std::string& options = "") {
  const nlohmann::json told = nlohmann::json::parse(runWell(folder, "info --json " + file + options).out);
  return told["colour_space"].get<std::string>() + " by " + told["colour_space_by"].get<std::string>();
}

TEST(Colour, FilesAreInWhatTheyStateAndElseInWhatIsUsual) {
  const TestFolder folder;
  const PixelFile pixels = PixelFile::filled({4, 4}, {10, 20, 30, 255});
  writeConfig(folder, "aces.ocio");
  const std::vector<float> ap0{0.7347f, 0.2653f, 0.0f, 1.0f, 0.0001f, -0.077f, 0.32168f, 0.33767f};
  struct Case {
    const char* file;
    Tags tags;
    const char* options;
    const char* expected;
  };
  for (const Case& c : {
           Case{"plain.jpg", {}, "", "sRGB by"},
           {"profile.jpg", {bytesOf(profileOf(kP3, 0.0))}, "", "Display P3 by its ICC profile"},
           {"profile.tif", {bytesOf(profileOf(kAdobe, 2.2))}, "", "Adobe RGB by its ICC profile"},
           {"chunk.png", {{}, {}, "sRGB"}, "", "sRGB by its sRGB chunk"},
           {"gamma.png", {{}, {}, "Linear"}, "", "linear by its gAMA"},
           {"plain.exr", {}, "", "linear by the convention of OpenEXR"},
           {"aces.exr", {{}, ap0}, "", "ACES2065-1 by its chromaticities"},
           {"scan.dpx", {{}, {}, "KodakLog"}, "", "Cineon by its transfer characteristic"},
           {"named.tif", {bytesOf(named(profileOf(kP3, 1.3), "X"))}, "", "X by its ICC profile"},
           {"nameless.tif", {bytesOf(named(profileOf(kP3, 1.3), ""))}, "", "unnamed by its ICC profile"},
           {"plain.exr", {}, " --ocio aces.ocio", "ACEScg by the config's role scene_linear"},
           {"shot_cg.exr", {}, " --ocio aces.ocio", "ACEScg by its name"},
           {"shot_cg.jpg", {bytesOf(profileOf(kP3, 0.0))}, " --ocio aces.ocio", "Display P3 by its ICC profile"},
       }) {
    writeTagged(folder / c.file, pixels, c.tags);
    EXPECT_EQ(told(folder, c.file, c.options).rfind(c.expected, 0), 0u) << told(folder, c.file, c.options);
  }
  // A cICP chunk, which goes before all others: BT.2020 primaries, linear.
  std::string png = contents(folder / "chunk.png");
  const std::string chunk("\0\0\0\4cICP\x09\x08\0\1\0\0\0\0", 16);
  constexpr std::size_t kHeaderEnd = 33;
  folder.write("coded.png", png.insert(kHeaderEnd, chunk));
  EXPECT_EQ(told(folder, "coded.png"), "linear Rec.2020 by its cICP chunk");
}

TEST(Colour, OutputsAreInWhatTheirFormatHoldsAndSaySo) {
  const TestFolder folder;
  const PixelFile pixels = PixelFile::filled({8, 8}, {200, 100, 50, 255});
  writeTagged(folder / "p3.png", pixels, {bytesOf(profileOf(kP3, 0.0))});
  writeTagged(folder / "plain.exr", pixels, {});
  struct Case {
    const char* command;
    const char* output;
    const char* expected;
  };
  for (const Case& c : {
           Case{"p3.png", "kept.png", "Display P3 by its ICC profile"},
           {"p3.png", "light.exr", "linear P3 by its chromaticities"},
           {"p3.png --linear", "linear.png", "Display P3 by its ICC profile"},
           {"p3.png --colorspace-out srgb", "srgb.png", "sRGB by its sRGB chunk"},
           {"p3.png --colorspace-out rec2020", "wide.jpg", "Rec.2020 by its ICC profile"},
           {"p3.png --colorspace-out acescg", "cg.exr", "ACEScg by its chromaticities"},
           {"plain.exr", "seen.jpg", "sRGB by"},
           {"plain.exr", "kept.tif", "linear by the convention of float samples"},
           {"plain.exr --over p3.png", "over.png", "Display P3 by its ICC profile"},
           {"p3.png --colorspace-layer adobergb", "said.tif", "Adobe RGB by its ICC profile"},
           {"p3.png --colorspace-out cineon", "scan.dpx", "Cineon by its transfer characteristic"},
       }) {
    runWell(folder, "render " + std::string(c.command) + " -o " + c.output);
    EXPECT_EQ(told(folder, c.output).rfind(c.expected, 0), 0u) << c.output << ": " << told(folder, c.output);
  }
  // OpenEXR gets linear light: a linear space of a config as it is, and any other in the config's scene-linear one.
  writeConfig(folder, "aces.ocio");
  const auto written = [&](const std::string& options) {
    EXPECT_EQ(run(folder, "render p3.png -o light.exr " + options).code, 0);
    return PixelFile::read(folder / "light.exr").at(2, 2)[0];
  };
  written("--ocio aces.ocio --colorspace-layer ACEScg");
  std::array<float, 8> primaries{};
  OIIO::ImageInput::open(folder / "light.exr")
      ->spec()
      .getattribute("chromaticities", OIIO::TypeDesc(OIIO::TypeDesc::FLOAT, 8), primaries.data());
  const std::array<float, 6> ap1{0.713f, 0.293f, 0.165f, 0.83f, 0.128f, 0.044f};
  for (std::size_t i = 0; i < ap1.size(); ++i) {
    EXPECT_NEAR(primaries[i], ap1[i], 0.01) << i;  // adapted from D60 to D65
  }
  const double raw = written("--raw");
  EXPECT_EQ(written("--ocio aces.ocio --colorspace-layer doubled"), raw);
  EXPECT_GT(std::abs(written("--ocio aces.ocio --colorspace-layer camera") - raw), 0.02);
  // Without that role, linear light of the usual primaries.
  const std::string role = "scene_linear: ACEScg, ";
  std::string config = contents(folder / "aces.ocio");
  folder.write("bare.ocio", config.erase(config.find(role), role.size()));
  written("--ocio bare.ocio --colorspace-layer camera");
  EXPECT_EQ(told(folder, "light.exr").rfind("linear by its chromaticities", 0), 0u) << told(folder, "light.exr");
  runWell(folder, "render p3.png -o light.exr");
  // There and back again, from 8 bits to half and back.
  runWell(folder, "render light.exr -o back.png --colorspace-out 'Display P3' --depth 8");
  EXPECT_LE(difference(folder / "back.png", folder / "p3.png"), 0.5 / 255.0);
}

TEST(Colour, WhatCannotBeConvertedIsRefusedAndNothingWritten) {
  const TestFolder folder;
  const PixelFile pixels = PixelFile::filled({4, 4}, {10, 20, 30, 255});
  std::vector<unsigned char> broken = bytesOf(profileOf(kP3, 0.0));
  std::fill(broken.begin() + 4, broken.begin() + 140, 0xEE);
  writeTagged(folder / "plain.tif", pixels, {});
  writeTagged(folder / "broken.tif", pixels, {broken});
  folder.write("broken.ocio", "ocio_profile_version: 2\nroles: [");
  writeConfig(folder, "aces.ocio");
  const std::string render = "render plain.tif -o out.tif ";
  const std::string profile_is_broken = "vantorel: broken.tif: its ICC profile is broken";
  expectRefused(folder,
                {
                    {render + "--ocio none.ocio", 3, "vantorel: none.ocio: given by --ocio, "},
                    {render + "--ocio broken.ocio", 3, "vantorel: broken.ocio: given by --ocio, "},
                    {render, 3, "vantorel: none.ocio: given by $OCIO, ", "OCIO=none.ocio; export OCIO;"},
                    {render + "--colorspace-layer sRBG", 2, "--colorspace-layer: 'sRBG' is not a known colour space"},
                    {render + "--ocio aces.ocio --colorspace-out sRBG", 2, "--colorspace-out: 'sRBG' is neither"},
                    {render + "--colorspace-over srgb", 2, "--colorspace-over: applies to the plate"},
                    {render + "--raw --linear", 2, "--raw: cannot be given together with --linear"},
                    {render + "--raw --ocio aces.ocio", 2, "--raw: cannot be given together with --ocio"},
                    {"render broken.tif -o out.tif", 3, profile_is_broken},
                    {render + "--over broken.tif", 3, profile_is_broken},
                });
  // Said or left alone, the broken profile is no matter.
  runWell(folder, "render broken.tif -o out.tif --colorspace-layer srgb");
  EXPECT_EQ(run(folder, "render broken.tif -o out.tif --raw").code, 0);
}

TEST(Colour, ResumingLooksAtTheConfigToo) {
  const TestFolder folder;
  writeTagged(folder / "plain.exr", PixelFile::filled({4, 4}, {10, 20, 30, 255}), {});
  writeConfig(folder, "aces.ocio");
  const std::string render = "render plain.exr -o out.png --resume --json";
  const std::string set = "OCIO=aces.ocio; export OCIO;";
  const auto renders = [&](const std::string& before) { return run(folder, render, before).lines().size(); };
  EXPECT_EQ(renders(""), 1u);
  EXPECT_EQ(renders(""), 0u);
  EXPECT_EQ(renders(set), 1u);
  EXPECT_EQ(renders(set), 0u);
  writeConfig(folder, "aces.ocio", "ACES2065-1");
  EXPECT_EQ(renders(set), 1u);
}

}  // namespace
}  // namespace vantorel::cli
