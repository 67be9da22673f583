#include <gtest/gtest.h>

#include "cli/colour/ColourDetection.h"
#include "cli/colour/ColourSpace.h"
#include "cli/colour/IccProfile.h"
#include "tests/TestFolder.h"

namespace vantorel::cli {
namespace {

TEST(ColourSpace, ProfilesThatAreWrittenAreReadAsTheSameSpace) {
  for (const char* name : {"sRGB", "linear", "Rec.709", "Display P3", "Adobe RGB", "ProPhoto", "Rec.2020", "ACEScg"}) {
    SCOPED_TRACE(name);
    const auto space = namedSpace(name);
    ASSERT_TRUE(space);
    const auto found = spaceOfIccProfile(iccProfileOf(*space), "picture.png");
    ASSERT_TRUE(found);
    EXPECT_EQ(space->name, found->name);
    EXPECT_EQ(space->rgb->transfer.kind, found->rgb->transfer.kind);
  }
}

TEST(ColourSpace, TheCurvesThatPngChunksCodeAreKnown) {
  struct Case {
    char code;
    Transfer transfer;
  };
  const TestFolder folder;
  for (const Case& c : {Case{1, {TransferKind::Rec709, 1.0}}, Case{4, {TransferKind::Gamma, 2.2}},
                        Case{5, {TransferKind::Gamma, 2.8}}, Case{6, {TransferKind::Rec709, 1.0}},
                        Case{8, {TransferKind::Linear, 1.0}}, Case{13, {TransferKind::Srgb, 1.0}}}) {
    const std::string chunk = std::string("\0\0\0\4cICP\1", 9) + c.code + std::string("\0\1\0\0\0\0", 6);
    folder.write("coded.png", std::string("\x89PNG\r\n\x1A\n") + chunk + std::string("\0\0\0\0IEND\0\0\0\0", 12));
    ColourFacts facts;
    facts.format = "png";
    const FileColour found = detectColour(folder / "coded.png", facts, nullptr);
    ASSERT_TRUE(found.space.rgb);
    EXPECT_EQ(c.transfer.kind, found.space.rgb->transfer.kind) << int{c.code};
    EXPECT_EQ(c.transfer.gamma, found.space.rgb->transfer.gamma) << int{c.code};
  }
}

}  // namespace
}  // namespace vantorel::cli
