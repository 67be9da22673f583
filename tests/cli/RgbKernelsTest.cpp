#include "cli/colour/RgbKernels.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "cli/colour/ColourMatrix.h"
#include "cli/colour/TransferCurve.h"
#include "tests/InstructionSets.h"

namespace vantorel::cli {
namespace {

// Numbers of every kind, most of them such as pictures hold.
std::vector<float> mixedRow(int width) {
  std::mt19937 random(7);
  std::uniform_real_distribution<float> usual(-0.1f, 1.2f);
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const std::vector<float> special{0.0f,  -0.0f,    1.0f,   1e-30f,         -1e-9f,
                                   7e4f,  -7e4f,    1e-42f, kInfinity,      -kInfinity,
                                   65504, 5.96e-8f, -3e-8f, 0x1.fffffep-1f, std::nextafter(65536.0f, 0.0f)};
  std::vector<float> row;
  for (int i = 0; i < 4 * width; ++i) {
    const bool is_special = random() % 5 == 0;
    row.push_back(is_special ? special[random() % special.size()] : usual(random));
  }
  return row;
}

// The bits of a NaN's payload may differ.
void expectSame(const std::vector<float>& expected, const std::vector<float>& actual, const char* set) {
  for (std::size_t i = 0; i < expected.size(); ++i) {
    if (!(std::isnan(expected[i]) && std::isnan(actual[i]))) {
      ASSERT_EQ(std::bit_cast<std::uint32_t>(expected[i]), std::bit_cast<std::uint32_t>(actual[i])) << set << ' ' << i;
    }
  }
}

TEST(RgbKernels, EveryInstructionSetGivesTheScalarBits) {
  const Transfer srgb{TransferKind::Srgb};
  const CurveTable decode([&](double code) { return srgb.decode(code); });
  const CurveTable encode([](double light) { return Transfer{TransferKind::AcesCct}.encode(light); });
  const RgbKernels& scalar = rgbKernels(InstructionSet::Scalar);
  for (const InstructionSet set : availableSets()) {
    const RgbKernels& kernels = rgbKernels(set);
    const char* const name = instructionSetName(set);
    for (const int width : {1, 2, 3, 4, 5, 7, 1001}) {
      const std::vector<float> row = mixedRow(width);
      for (unsigned parts = 0; parts < 8; ++parts) {
        const RgbSteps steps{curveSteps((parts & 1u) != 0 ? &decode : nullptr),
                             (parts & 2u) != 0,
                             {{1.2f, -0.04f, -0.02f, 0}, {-0.22f, 1.04f, -0.08f, 0}, {0.01f, 0.003f, 1.1f, 0}},
                             curveSteps((parts & 4u) != 0 ? &encode : nullptr)};
        std::vector<float> expected = row, actual = row;
        scalar.convert(steps, expected.data(), width);
        kernels.convert(steps, actual.data(), width);
        expectSame(expected, actual, name);
      }
      for (const auto alpha : {&RgbKernels::unpremultiply, &RgbKernels::repremultiply}) {
        std::vector<float> expected = row, actual = row;
        (scalar.*alpha)(expected.data(), width);
        (kernels.*alpha)(actual.data(), width);
        expectSame(expected, actual, name);
      }
      std::vector<float> opaque = row;
      for (std::size_t i = 3; i < opaque.size(); i += 4) {
        opaque[i] = 1.0f;
      }
      EXPECT_TRUE(kernels.is_opaque(opaque.data(), width)) << name;
      opaque.back() = std::nextafter(1.0f, 0.0f);
      EXPECT_FALSE(kernels.is_opaque(opaque.data(), width)) << name;
    }
  }
}

// Within the octaves of half floats by the table, beyond them without it.
TEST(RgbKernels, CurvesAreMetWhateverTheNumber) {
  const Transfer curve{TransferKind::Srgb};
  const CurveTable table([&](double light) { return curve.encode(light); });
  RgbSteps steps;
  steps.encode = curveSteps(&table);
  for (int i = 0; i < 2820; ++i) {
    const auto light = static_cast<float>(1e-12 * std::pow(1.0173, i));  // up to 1e9
    std::vector<float> pixel{light, -light, 0.0f, light};
    rgbKernels(activeInstructionSet()).convert(steps, pixel.data(), 1);
    const double expected = curve.encode(double{light});
    EXPECT_NEAR(expected, double{pixel[0]}, 2e-6 * expected) << light;
    EXPECT_EQ(-pixel[0], pixel[1]) << light;
    EXPECT_EQ(0.0f, pixel[2]);
    EXPECT_EQ(light, pixel[3]);
  }
}

TEST(Primaries, AreUsableOnlyAroundTheirWhite) {
  const Chromaticity red{0.64, 0.33};
  const Chromaticity green{0.3, 0.6};
  const Chromaticity blue{0.15, 0.06};
  EXPECT_TRUE(isUsable({red, green, blue, kD65}));
  for (const Chromaticity& beyond : {Chromaticity{0.1, 0.4}, Chromaticity{0.5, 0.1}, Chromaticity{0.6, 0.6}}) {
    EXPECT_FALSE(isUsable({red, green, blue, beyond})) << beyond.x;
  }
}

}  // namespace
}  // namespace vantorel::cli
