// Files that appear whole or not at all.
#include "cli/pictures/OutputFile.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <utility>

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

}  // namespace
}  // namespace vantorel::cli
