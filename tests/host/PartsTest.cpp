// The host's small parts, each by itself.
#include <cmath>
#include <cstring>
#include <limits>

#include "host/Animation.h"
#include "host/Downsample.h"
#include "host/frames/FrameParameters.h"
#include "host/module/HandleStore.h"
#include "host/module/StringTable.h"
#include "host/module/Translations.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(AnimatedPointTest, InterpolatesBetweenKeysAndHoldsOutside) {
  const std::vector<AnimatedPoint::Key> keys{{2.0, {10, 0}}, {1.0, {0, 100}}, {2.0, {20, 0}}};
  const AnimatedPoint linear(keys, Interpolation::Linear);
  EXPECT_EQ((Point{0, 100}), linear.at(-5.0));
  EXPECT_EQ((Point{0, 100}), linear.at(1.0));
  EXPECT_EQ((Point{5, 75}), linear.at(1.25));
  EXPECT_EQ((Point{20, 0}), linear.at(2.0)) << "of two keys at one time the later in the list wins";
  EXPECT_EQ((Point{20, 0}), linear.at(99.0));
  const AnimatedPoint held(keys, Interpolation::Hold);
  EXPECT_EQ((Point{0, 100}), held.at(1.999));
  EXPECT_EQ((Point{20, 0}), held.at(2.0));
  EXPECT_EQ((Point{0, 0}), AnimatedPoint().at(1.0));
  EXPECT_EQ((Point{3, 4}), AnimatedPoint(Point{3, 4}).at(-1.0));
}

TEST(ParameterTest, PixelsBecomeNearestFixedPointNumbers) {
  EXPECT_EQ(98304, fixedFromPixels(1.5));
  EXPECT_EQ(-98304, fixedFromPixels(-1.5));
  EXPECT_EQ(1, fixedFromPixels(0.6 / 65536));
  EXPECT_EQ(std::numeric_limits<std::int32_t>::max(), fixedFromPixels(32767.9999999));
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), fixedFromPixels(-1e300));
  EXPECT_EQ(std::numeric_limits<std::int32_t>::min(), fixedFromPixels(std::nan("")));
}

TEST(TranslationsTest, ReadsKeyedLinesAndNamesTheLineThatIsNone) {
  const auto read = parseTranslations("\xEF\xBB\xBF# German\r\n\r\na/b=Oben = links\r\nc=\nc=zwei\n", "de.txt");
  ASSERT_TRUE(read);
  EXPECT_EQ((Translations{{"a/b", "Oben = links"}, {"c", "zwei"}}), *read);
  for (const char* const text : {"a=b\nnothing\n", "a=b\n=text"}) {
    const auto refused = parseTranslations(text, "de.txt");
    ASSERT_FALSE(refused);
    EXPECT_EQ("de.txt", refused.error().input);
    EXPECT_NE(std::string::npos, refused.error().message.find("line 2"));
  }
}

TEST(TranslationsTest, PlaceholdersAreComparedByWhatTheyTakeFromTheArguments) {
  using List = std::vector<std::string>;
  EXPECT_EQ((List{"ld", "ld"}), printfPlaceholders("v%ld.%-05.3ld 100%%"));
  EXPECT_EQ((List{"**s"}), printfPlaceholders("%*.*s"));
  EXPECT_NE(printfPlaceholders("%d"), printfPlaceholders("%1$d"));
  EXPECT_NE(printfPlaceholders("%d"), printfPlaceholders("%"));
  EXPECT_NE(printfPlaceholders("%d %s"), printfPlaceholders("%s %d"));
}

struct Row {
  const char* text;
  std::uint64_t work[3];
};
struct Header {
  const char* tag;
  std::uint64_t count;
  const Row* rows;
  std::uint64_t reserved;
};

TEST(StringTableTest, GivesTranslatedAndDefaultTextsAndNothingBeyondTheTable) {
  const Row rows[] = {{"k/0=one#{cr}%d", {}}, {"k/1=two", {}}, {"no key", {}}, {nullptr, {}}, {"k/4=never", {}}};
  const Header header{"FX", 5, rows, 0};
  const auto table = StringTable::read(&header, {{"k/1", "zwei"}, {"k/9", "unused"}});
  ASSERT_TRUE(table);
  EXPECT_EQ("one#{cr}%d", table->text(0));
  EXPECT_EQ("zwei", table->text(1));
  EXPECT_EQ("no key", table->text(2));
  for (const int row : {3, 4, 5, -1, 1 << 30}) {
    EXPECT_EQ("", table->text(row));
  }
  const auto refused = StringTable::read(&header, {{"k/0", "eins %s"}});
  ASSERT_FALSE(refused);
  EXPECT_NE(std::string::npos, refused.error().input.find("k/0"));
}

TEST(StringTableTest, RefusesHeadersThatAreNone) {
  const Row rows[] = {{nullptr, {}}};
  const Header headers[] = {{"FXX", 1, rows, 0}, {nullptr, 1, rows, 0}, {"FX", 4097, rows, 0}, {"FX", 1, nullptr, 0}};
  for (const Header& header : headers) {
    EXPECT_FALSE(StringTable::read(&header, {}));
  }
  EXPECT_FALSE(StringTable::read(nullptr, {}));
}

TEST(StringTableTest, CutsTextsBetweenCharactersAndBreaksLines) {
  EXPECT_EQ("Grü", cutToBytes("Grün", 4));
  EXPECT_EQ("Gr", cutToBytes("Grün", 3));
  EXPECT_EQ("Grün", cutToBytes("Grün", 5));
  EXPECT_EQ("", cutToBytes("\xE2\x82\xAC", 2));
  EXPECT_EQ("a\n\nb", withLineBreaks("a#{cr}#{cr}b"));
}

TEST(HandleStoreTest, GivesZeroedBlocksThroughHandlesAndKnowsItsOwn) {
  HandleStore store;
  const PF_Handle handle = store.allocate(8);
  ASSERT_NE(nullptr, handle);
  EXPECT_EQ(0, std::memcmp(*handle, "\0\0\0\0\0\0\0\0", 8));
  void* stranger = nullptr;
  EXPECT_FALSE(store.release(&stranger));
  EXPECT_EQ(nullptr, store.allocate(~std::uint64_t{0}));
  EXPECT_TRUE(store.release(handle));
  EXPECT_FALSE(store.release(handle));
  EXPECT_TRUE(store.release(nullptr));
  EXPECT_EQ(0u, store.count());
}

TEST(DownsampleTest, AveragesBlocksWithTransparencyBeyondTheEdges) {
  Image layer = testing::dirty({3, 3}, Depth::Bits8);
  for (int i = 0; i < 9; ++i) {
    const std::uint8_t v = static_cast<std::uint8_t>(10 * (i + 1));
    const std::uint8_t pixel[4] = {v, 255, 0, 1};
    std::memcpy(layer.view().pixel(i % 3, i / 3), pixel, 4);
  }
  Image scaled = testing::dirty({2, 2}, Depth::Bits8);
  downsample(asConst(layer.view()), 2, BlockEdges::Transparent, scaled.view());
  const std::uint8_t expected[2][8] = {{30, 255, 0, 1, 23, 128, 0, 1}, {38, 128, 0, 1, 23, 64, 0, 0}};
  EXPECT_EQ(0, std::memcmp(expected[0], scaled.view().row(0), 8));
  EXPECT_EQ(0, std::memcmp(expected[1], scaled.view().row(1), 8));

  for (const Depth depth : {Depth::Bits16, Depth::Float}) {
    Image picture = testing::noise({8, 8}, depth);
    Image same = testing::dirty({8, 8}, depth);
    downsample(asConst(picture.view()), 1, BlockEdges::Transparent, same.view());
    EXPECT_TRUE(testing::samePixels(asConst(picture.view()), asConst(same.view())));
  }
}

TEST(ImageTest, RefusesSizesThatItCannotHold) {
  EXPECT_EQ(ErrorKind::InvalidArgument, Image::create({0, 5}, Depth::Bits8).error().kind);
  EXPECT_EQ(ErrorKind::InvalidArgument, Image::create({5, -1}, Depth::Float).error().kind);
  EXPECT_EQ(ErrorKind::InvalidArgument, Image::create({1 << 28, 1}, Depth::Float).error().kind);
  const auto image = Image::create({5, 3}, Depth::Bits16);
  ASSERT_TRUE(image);
  EXPECT_EQ(0u, reinterpret_cast<std::uintptr_t>(image->view().row(2)) % Image::kRowAlignment);
}

}  // namespace
}  // namespace vantorel::host
