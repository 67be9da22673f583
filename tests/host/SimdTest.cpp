#include "host/Simd.h"

#include <algorithm>
#include <cstdlib>
#include <optional>

#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// Sets VANTOREL_SIMD while it lives.
class SimdChoice {
 public:
  explicit SimdChoice(const char* name) {
    const char* const before = std::getenv("VANTOREL_SIMD");
    before_ = before != nullptr ? std::optional<std::string>(before) : std::nullopt;
    setenv("VANTOREL_SIMD", name, 1);
  }
  ~SimdChoice() { before_ ? setenv("VANTOREL_SIMD", before_->c_str(), 1) : unsetenv("VANTOREL_SIMD"); }
  SimdChoice(const SimdChoice&) = delete;
  SimdChoice& operator=(const SimdChoice&) = delete;

 private:
  std::optional<std::string> before_;
};

TEST(SimdTest, OneAvailableVariantIsActive) {
  const auto variants = simdVariants();
  EXPECT_EQ(1, std::ranges::count_if(variants, [](const SimdVariant& v) { return v.active && v.available; }));
  EXPECT_EQ(1, std::ranges::count_if(variants, [](const SimdVariant& v) { return v.active; }));
  EXPECT_EQ("scalar", variants.front().name);
  EXPECT_TRUE(variants.front().available);
}

TEST(SimdTest, AChoiceThatCannotBeServedIsNamedAndNoModuleIsLoadedWithIt) {
  {
    const SimdChoice choice("sse9");
    EXPECT_EQ("\"sse9\" is not an instruction set; use scalar, avx2 or avx512", checkSimdChoice().error().message);
    EXPECT_TRUE(isError(Module::load(kEffectPath), ErrorKind::InvalidArgument, "VANTOREL_SIMD"));
  }
  for (const SimdVariant& variant : simdVariants()) {
    const SimdChoice choice(std::string(variant.name).c_str());
    EXPECT_EQ(variant.available, checkSimdChoice().has_value()) << variant.name;
  }
  EXPECT_TRUE((SimdChoice(""), checkSimdChoice()));
}

}  // namespace
}  // namespace vantorel::host
