// Files that appear whole or not at all.
#include "cli/pictures/OutputFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <string>
#include <utility>

#include "cli/pictures/FileSink.h"

#include "tests/TestFolder.h"

namespace vantorel::cli {
namespace {

TEST(OutputFile, AnOutputThatIsNotCommittedLeavesNothing) {
  const TestFolder folder;
  folder.write("kept.txt", "old");
  {
    OutputFile file(folder / "kept.txt");
    std::fputs("new", file.stream());
  }
  EXPECT_EQ(contents(folder / "kept.txt"), "old");
  EXPECT_EQ(folder.count(), 1u);

  // Links stay, whether what they lead to exists or not.
  std::filesystem::create_symlink("kept.txt", folder / "live.txt");
  std::filesystem::create_symlink("live.txt", folder / "chain.txt");
  std::filesystem::create_symlink("made.txt", folder / "dangling.txt");
  for (const auto& [link, target] : {std::pair{"chain.txt", "kept.txt"}, std::pair{"dangling.txt", "made.txt"}}) {
    OutputFile file(folder / link);
    std::fputs("new", file.stream());
    file.commit();
    EXPECT_EQ(contents(folder / target), "new") << link;
    EXPECT_TRUE(std::filesystem::is_symlink(folder / link)) << link;
  }
  EXPECT_EQ(folder.count(), 5u);
}

TEST(OutputFile, TemporaryFilesOfKilledProcessesAreRemovedAndOthersKept) {
  const TestFolder folder;
  const OutputFile live(folder / "out.txt");
  const std::string dead = folder / ".out.txt.vantorel-1-2-3.tmp";
  const std::string of_another = folder / ".other.txt.vantorel-1-2-3.tmp";
  folder.write(".out.txt.vantorel-1-2-3.tmp", "half");
  folder.write(".other.txt.vantorel-1-2-3.tmp", "half");
  // By another name of the folder, which has not been listed yet.
  const OutputFile next(folder / "./out.txt");
  EXPECT_FALSE(std::filesystem::exists(dead));
  EXPECT_TRUE(std::filesystem::exists(of_another));
  EXPECT_TRUE(std::filesystem::exists(live.temporaryPath()));
}

TEST(OutputFile, LibrariesReadBackWhatTheyWrote) {
  const TestFolder folder;
  OutputFile file(folder / "out.txt");
  FileSink sink(file);
  std::array<char, 4> read{};
  const auto text = [&] { return std::string(read.data(), read.size()); };
  EXPECT_EQ(sink.write("0123456789", 10), 10u);
  EXPECT_EQ(sink.pread(read.data(), 4, 2), 4u);
  EXPECT_EQ(text(), "2345");
  EXPECT_EQ(sink.tell(), 10);
  EXPECT_EQ(sink.pwrite("ab", 2, 5), 2u);
  EXPECT_EQ(sink.tell(), 10);
  EXPECT_TRUE(sink.seek(4));
  EXPECT_EQ(sink.read(read.data(), 4), 4u);
  EXPECT_EQ(text(), "4ab7");
  EXPECT_EQ(sink.write("cd", 2), 2u);
  EXPECT_EQ(sink.pread(read.data(), 4, 8), 2u);
  EXPECT_EQ(sink.size(), 10u);
  EXPECT_EQ(sink.tell(), 10);
  file.commit();
  EXPECT_EQ(contents(folder / "out.txt"), "01234ab7cd");
}

}  // namespace
}  // namespace vantorel::cli
