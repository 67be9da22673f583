#include "host/module/StringTable.h"

#include "host/module/Translations.h"
#include "support/PF_HostRecords.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

TEST(TranslationsTest, ReadsKeyedLinesAndNamesALineWithoutAKey) {
  const auto read = parseTranslations("\xEF\xBB\xBF# German\r\n\r\na/b=Oben = links\r\nc=\nc=zwei\n", "de.txt");
  ASSERT_TRUE(read);
  EXPECT_EQ((Translations{{"a/b", "Oben = links"}, {"c", "zwei"}}), *read);
  for (const char* const text : {"a=b\nnothing\n", "a=b\n=text"}) {
    EXPECT_TRUE(isError(parseTranslations(text, "de.txt"), ErrorKind::InvalidArgument, "de.txt", "line 2"));
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

TEST(StringTableTest, GivesTranslatedAndDefaultTextsAndNothingBeyondTheTable) {
  FX_StringRow rows[] = {{"k/0=one#{cr}%d", {}}, {"k/1=two", {}}, {"no key", {}}, {nullptr, {}}, {"k/4=never", {}}};
  const FX_StringHeader header{"FX", 5, rows, 0};
  const auto table = StringTable::read(&header, {{"k/1", "zwei"}, {"k/9", "unused"}});
  ASSERT_TRUE(table);
  EXPECT_EQ("one#{cr}%d", table->text(0));
  EXPECT_EQ("zwei", table->text(1));
  EXPECT_EQ("no key", table->text(2));
  for (const int row : {3, 4, 5, -1, 1 << 30}) {
    EXPECT_EQ("", table->text(row));
  }
  const auto refused = StringTable::read(&header, {{"k/0", "eins %s"}});
  EXPECT_TRUE(isError(refused, ErrorKind::InvalidArgument, "translation of k/0"));
}

TEST(StringTableTest, RefusesInvalidHeaders) {
  FX_StringRow rows[] = {{nullptr, {}}};
  const FX_StringHeader headers[] = {
      {"FXX", 1, rows, 0}, {nullptr, 1, rows, 0}, {"FX", 4097, rows, 0}, {"FX", 1, nullptr, 0}};
  for (const FX_StringHeader& header : headers) {
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

}  // namespace
}  // namespace vantorel::host
