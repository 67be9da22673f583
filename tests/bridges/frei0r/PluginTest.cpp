// The filter through its C interface, as programs load it.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <thread>
#include <vector>

#include "host/Alpha.h"
#include "tests/bridges/frei0r/PluginTesting.h"
#include "tests/host/HostTesting.h"

namespace vantorel::frei0r {
namespace {

constexpr host::Size kSize{96, 64};
constexpr host::Corners kTrapezoid{{20.0, 10.25}, {76.0, 10.25}, {-8.5, 60.0}, {99.75, 60.0}};

std::uint8_t* channels(Pixels& pixels) {
  return reinterpret_cast<std::uint8_t*>(pixels.data());
}

Pixels noise(bool opaque) {
  const host::Image image = host::testing::noise(kSize, host::Depth::Bits8);
  Pixels pixels;
  for (int y = 0; y < kSize.height; ++y) {
    const auto* row = reinterpret_cast<const std::uint32_t*>(image.view().row(y));
    pixels.insert(pixels.end(), row, row + kSize.width);
  }
  for (std::uint32_t& pixel : pixels) {
    pixel |= opaque ? 0xFF000000 : 0;
  }
  return pixels;
}

// What the embedded host draws, with straight alpha on both sides.
Pixels expected(Pixels layer, const host::Corners& corners, host::Quality quality, host::Size size = kSize) {
  const int count = static_cast<int>(layer.size());
  host::premultiplyRow(channels(layer), count);
  Pixels out(layer.size());
  const auto view = [size](Pixels& pixels) {
    return host::ImageView{reinterpret_cast<std::byte*>(pixels.data()), 4 * size.width, size, host::Depth::Bits8};
  };
  host::Instance instance = host::testing::instanceWith(host::testing::checkedEffect(), corners);
  host::FrameOptions options;
  options.quality = quality;
  EXPECT_TRUE(
      instance.render(host::asConst(view(layer)), {0, 0, size.width, size.height}, view(out), options).has_value());
  host::unpremultiplyRow(channels(out), count);
  return out;
}

TEST(Frei0r, DrawsWhatTheEmbeddedHostDraws) {
  const Plugin plugin;
  Instance instance(plugin, kSize);
  instance.setCorners(kTrapezoid);
  constexpr const char* kNames[] = {"standard", "high", "best"};
  for (const bool opaque : {true, false}) {
    for (int quality = 0; quality < 3; ++quality) {
      instance.setQuality(kNames[quality]);
      instance.setQuality("none of them");
      EXPECT_EQ(instance.draw(noise(opaque)), expected(noise(opaque), kTrapezoid, host::Quality(quality)))
          << kNames[quality] << opaque;
    }
    Pixels in_place = noise(opaque);
    instance.update(in_place.data(), in_place.data());
    EXPECT_EQ(in_place, expected(noise(opaque), kTrapezoid, host::Quality::Best));
  }
}

TEST(Frei0r, DrawsTheSmallestSizesAnd8K) {
  const Plugin plugin;
  for (const host::Size size : {host::Size{1, 1}, {8, 8}, {9, 5}, {7680, 4320}}) {
    const double width = size.width;
    const double height = size.height;
    const host::Corners corners{
        {0.25 * width, -0.125 * height}, {0.75 * width, 0.125 * height}, {0, height}, {1.5 * width, height}};
    // Rows of one colour each, for large pictures of noise take long to make.
    Pixels layer(static_cast<std::size_t>(size.width) * static_cast<std::size_t>(size.height));
    for (std::size_t i = 0; i < layer.size(); ++i) {
      layer[i] = 0x9E3779B1u * static_cast<std::uint32_t>(i / static_cast<std::size_t>(size.width) + 1);
    }
    Instance instance(plugin, size);
    instance.setQuality("standard");
    instance.setCorners(corners);
    EXPECT_TRUE(instance.draw(layer) == expected(layer, corners, host::Quality::Standard, size))
        << size.width << "x" << size.height;
  }
}

TEST(Frei0r, LeavesThePictureAsItIsOnItsOwnCorners) {
  const Plugin plugin;
  Instance instance(plugin, kSize);
  EXPECT_EQ(instance.draw(noise(true)), noise(true));
  constexpr double kPrinted[] = {0.333333, 0.333333, 0.666667, 0.333333, 0.333333, 0.666667, 0.666667, 0.666667};
  for (int i = 0; i < 8; ++i) {
    instance.setNumber(i, kPrinted[i]);
  }
  EXPECT_EQ(instance.draw(noise(true)), noise(true));
}

TEST(Frei0r, FadesAndFillsTheOutside) {
  const Plugin plugin;
  Instance instance(plugin, kSize);
  const Pixels white(std::size_t{96} * 64, 0xFFFFFFFF);
  instance.setCorners({{0, 0}, {48, 0}, {0, 64}, {48, 64}});
  instance.setNumber(9, 0.5);
  Pixels out = instance.draw(white);
  EXPECT_EQ(out[96 * 32 + 20], 0x80FFFFFFu);
  EXPECT_EQ(out[96 * 32 + 80], 0u);
  instance.setNumber(10, 1.0);
  out = instance.draw(white);
  EXPECT_EQ(out[96 * 32 + 20], 0xFF808080u);
  EXPECT_EQ(out[96 * 32 + 80], 0xFF000000u);
  instance.setNumber(9, std::nan(""));
  EXPECT_EQ(instance.draw(white), Pixels(white.size(), 0xFF000000));
}

TEST(Frei0r, DrawsNothingOnCornersThatCannotBe) {
  const Plugin plugin;
  Instance instance(plugin, kSize);
  const double infinity = std::numeric_limits<double>::infinity();
  for (const double bad : {std::nan(""), infinity, -infinity, 1e9, -1e300}) {
    for (int coordinate = 0; coordinate < 8; ++coordinate) {
      instance.setCorners(kTrapezoid);
      instance.setNumber(coordinate, bad);
      EXPECT_EQ(instance.draw(noise(true)), Pixels(noise(true).size(), 0)) << bad;
    }
  }
  for (int i = 0; i < 8; ++i) {
    instance.setNumber(i, 0.5);
  }
  EXPECT_EQ(instance.draw(noise(true)), Pixels(noise(true).size(), 0)) << "all corners in one point";
  instance.set(-1, nullptr);
  instance.set(99, nullptr);
  instance.set(8, nullptr);
  const auto construct = plugin.find<f0r_instance_t(unsigned, unsigned)>("f0r_construct");
  for (const auto& [width, height] : {std::pair{0u, 8u}, {8u, 0u}, {0xFFFFFFFFu, 8u}}) {
    EXPECT_EQ(construct(width, height), nullptr) << width << "x" << height;
  }
}

TEST(Frei0r, TellsItsParametersAndTheirValues) {
  const Plugin plugin;
  f0r_plugin_info_t info{};
  plugin.find<void(f0r_plugin_info_t*)>("f0r_get_plugin_info")(&info);
  EXPECT_EQ(info.plugin_type, F0R_PLUGIN_TYPE_FILTER);
  EXPECT_EQ(info.color_model, F0R_COLOR_MODEL_RGBA8888);
  ASSERT_EQ(info.num_params, 11);
  const auto construct = plugin.find<f0r_instance_t(unsigned, unsigned)>("f0r_construct");
  const auto get = plugin.find<void(f0r_instance_t, void*, int)>("f0r_get_param_value");
  const auto set = plugin.find<void(f0r_instance_t, const void*, int)>("f0r_set_param_value");
  const f0r_instance_t instance = construct(16, 16);
  for (int i = 0; i < info.num_params; ++i) {
    f0r_param_info_t parameter{};
    plugin.find<void(f0r_param_info_t*, int)>("f0r_get_param_info")(&parameter, i);
    ASSERT_NE(parameter.name, nullptr);
    EXPECT_GT(std::strlen(parameter.explanation), 10u) << parameter.name;
    if (parameter.type == F0R_PARAM_STRING) {
      const char* const given = "best";
      const char* got = nullptr;
      set(instance, &given, i);
      get(instance, &got, i);
      EXPECT_STREQ(got, given);
    } else {
      const double given = parameter.type == F0R_PARAM_BOOL ? 1.0 : 0.25 + i;
      double got = -1.0;
      set(instance, &given, i);
      get(instance, &got, i);
      EXPECT_EQ(got, given) << parameter.name;
    }
  }
  plugin.find<void(f0r_instance_t)>("f0r_destruct")(instance);
}

TEST(Frei0r, DrawsOnSeveralThreadsAndIsLoadedAgain) {
  const Pixels still = expected(noise(false), kTrapezoid, host::Quality::High);
  for (int round = 0; round < 3; ++round) {
    const Plugin plugin;
    constexpr int kThreads = 4;
    std::vector<std::jthread> threads;
    threads.reserve(kThreads);
    for (int t = 0; t < kThreads; ++t) {
      threads.emplace_back([&] {
        for (int i = 0; i < 10; ++i) {
          Instance instance(plugin, kSize);
          instance.setCorners(kTrapezoid);
          EXPECT_EQ(instance.draw(noise(false)), still);
        }
      });
    }
  }
}

}  // namespace
}  // namespace vantorel::frei0r
