// Standard input and output in place of files.
#include <gtest/gtest.h>

#include <filesystem>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

TEST(Pipe, PicturesGoThroughPipesInEveryFormat) {
  const FolderWithCard folder("40x30");
  for (const std::string format : {"png", "jpg", "tif", "exr", "dpx"}) {
    const std::string corners = " --ul 3,2 --lr 36,29";
    const std::string file = "file." + format;
    runWell(folder, "render card.png -o " + file + corners);
    const CommandResult piped =
        run(folder, "render - -o - --format " + format + corners + " > pipe." + format, "cat card.png |");
    EXPECT_EQ(piped.code, 0) << piped.err;
    EXPECT_EQ(difference(folder / file, folder / ("pipe." + format)), 0.0) << format;
  }
  EXPECT_EQ(run(folder, "render card.png --over - -o over.png", "cat card.png |").code, 0);
}

TEST(Pipe, ASequenceFollowsOnAndProgressKeepsOutOfIt) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.dpx --size 40x30");
  runWell(folder, "render card.dpx -o one.dpx");
  EXPECT_EQ(run(folder, "render card.dpx -o - --format dpx --frames 1-3 --progress > all.dpx").code, 0);
  EXPECT_EQ(std::filesystem::file_size(folder / "all.dpx"), 3 * std::filesystem::file_size(folder / "one.dpx"));
}

TEST(Pipe, FaultsNameTheStream) {
  const FolderWithCard folder("400x300");
  const std::string render = "render - -o out.png ";
  expectRefused(folder,
                {
                    {render + "< /dev/null", 3, "standard input: is empty; send a picture"},
                    {render, 3, "standard input: is truncated", "head -c 900 card.png |"},
                    {render, 3, "standard input: cannot be read as a picture", "echo text |"},
                    {render + "--over - < card.png", 2, "--over: cannot be standard input, which LAYER reads"},
                    {"render card.png -o -", 2, "--format: is missing for standard output; give png, jpg"},
                    {"render card.png -o - --format gif", 2, "--format: 'gif' is not known; give png"},
                    {"render card.png -o - --format png --json", 2, "--json: writes to standard output"},
                    {"render card.png -o - --format png --resume", 2, "--resume: cannot check frames"},
                    {"testcard -o - --format png > /dev/full", 3, "standard output: cannot be written to (No space"},
                });
  const CommandResult unread =
      run(folder, "testcard -o - --format dpx > fifo", "mkfifo fifo; head -c 9 fifo > /dev/null &");
  EXPECT_EQ(unread.code, 3);
  EXPECT_NE(unread.err.find("standard output: cannot be written to (Broken pipe)"), std::string::npos) << unread.err;
}

}  // namespace
}  // namespace vantorel::cli
