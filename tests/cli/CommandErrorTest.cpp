// What the command says to bad input: the exit code, the one shape of its messages, and nothing left behind.
#include <gtest/gtest.h>

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iterator>
#include <regex>
#include <sstream>
#include <string>

#include "CommandRunner.h"
#include "cli/base/CommandError.h"
#include "cli/commands/CommandLine.h"

namespace vantorel::cli {
namespace {

// As expectRefused, but within this process, which takes far less time.
void expectRefusedInProcess(const TestFolder& folder, const std::vector<BadCall>& calls) {
  const std::filesystem::path before = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  const std::size_t count = folder.count();
  for (const BadCall& call : calls) {
    std::istringstream stream("vantorel " + call.arguments);
    const std::vector<std::string> words{std::istream_iterator<std::string>(stream), {}};
    std::vector<const char*> arguments;
    arguments.reserve(words.size());
    for (const std::string& word : words) {
      arguments.push_back(word == "''" ? "" : word.c_str());
    }
    try {
      runCommandLine(static_cast<int>(arguments.size()), arguments.data());
      ADD_FAILURE() << call.arguments << " is taken";
    } catch (const CommandError& error) {
      EXPECT_EQ(static_cast<int>(error.code()), call.code) << call.arguments << "\n" << error.text();
      EXPECT_NE(error.text().find(call.message), std::string::npos) << call.arguments << "\n" << error.text();
      EXPECT_EQ(error.text().find('\n'), std::string::npos) << error.text();
    }
    EXPECT_EQ(folder.count(), count) << call.arguments << " left something behind";
  }
  std::filesystem::current_path(before);
}

TEST(CommandError, Arguments) {
  const FolderWithCard folder("64x48");
  const std::string still = "render card.png -o out.png ";
  const std::string sequence = "render card.png -o out.#.png ";
  expectRefusedInProcess(
      folder,
      {
          {"", 2, "no command"},
          {"rendr", 2, "did you mean 'render'"},
          {"--versoin", 2, "did you mean '--version'"},
          {"render", 2, "LAYER: is missing"},
          {"render card.png", 2, "--output: is missing"},
          {still + "other.png", 2, "other.png: unexpected argument"},
          {still + "--qualty high", 2, "--qualty: unknown option of 'render'; did you mean '--quality'?"},
          {still + "--edges", 2, "--edges: has no value; give one"},
          {still + "--quality finest", 2, "--quality: 'finest' is not known; give one of best, high, standard"},
          {still + "--ul ''", 2, "--ul: '' is not a position"},
          {"render card.png -o=none/out.png", 3, "none/out.png: the folder 'none'"},
          {"render card.png -o=", 2, "--output: is an empty file name"},
          {still + "--ul 1,nan", 2, "--ul: 'nan' is not finite"},
          {still + "--lr 1,x", 2, "--lr: 'x' is not a number"},
          {still + "--ur 32768,0", 2, "--ur: 32768 pixels is outside"},
          {still + "--ur 99999%,0", 2, "--ur: "},
          {still + "--size 100000x100000", 1, "--size: a picture of 100000x100000 at 16 bits needs 74.5 GiB"},
          {"render card.png -o out.exr --size 2147483647x2147483647 --depth float", 1, "bits needs 64.0 EiB of memory"},
          {still + "--size 10x10 --fit", 2, "--fit: cannot be given together with --size"},
          {still + "--over card.png --size 10x10", 2, "--size: 10x10 is not the plate's size, 64x48"},
          {still + "--over card.png --fit", 2, "--fit: cannot be given together with --over"},
          {still + "--corners track.csv --ul 1,1", 2, "--ul: cannot be given together with --corners"},
          {still + "--corners-gap 3", 2, "--corners-gap: applies to the corners file"},
          {"testcard -o out.png --size 1000001x1", 2, "PNG holds 1000000 in a side"},
          {still + "--downsample 0", 2, "--downsample"},
          {still + "--crop 1,2,3", 2, "--crop: '1,2,3' is not a crop; give how much to cut from the left, the top"},
          {still + "--crop 0,-1,0,0", 2, "--crop: '-1' is negative"},
          {still + "--crop 0,0,1.5,0", 2, "--crop: '1.5' is not a whole number of pixels"},
          {still + "--crop 30,0,34,0", 2, "--crop: leaves nothing of the layer, which is 64x48 pixels"},
          {still + "--crop 0,50%,0,60%", 2, "--crop: leaves nothing of the layer, which is 64x48 pixels"},
          {still + "--opacity 1.5", 2, "--opacity: '1.5' is not a share; give a number from 0 to 1"},
          {still + "--opacity nan", 2, "--opacity: 'nan' is not a share"},
          {still + "--alpha soft", 2,
           "--alpha-layer: 'soft' is not known; give one of straight, premultiplied, ignore"},
          {still + "--feather -1", 2, "--feather: '-1' is not a number from 0 to 32768"},
          {still + "--feather 2 --shutter 180", 2, "--feather: cannot be given together with --shutter"},
          {still + "--shutter 721", 2, "--shutter: '721' is not a number from 0 to 720"},
          {still + "--shutter 180 --placement centres", 2, "--shutter: needs --placement outline"},
          {still + "--shutter-samples 0", 2, "--shutter-samples: '0' is not a whole number from 1 to 1024"},
          {still + "--matte none.png", 3, "none.png: does not exist"},
          {still + "--matte card.png --size 65x48", 3, "card.png: its size is 64x48, the output's is 65x48"},
          {still + "--matte card.png --fit", 2, "--fit: cannot be given together with --matte"},
          {still + "--threads 0", 2, "--threads"},
          {still + "--fps 0 --frames 1", 2, "--fps"},
          {sequence + "--frames 5-1", 2, "--frames: '5-1' ends before it starts"},
          {sequence + "--frames 1-2147483647 --fps 29.97", 2, "--frames: the time of frame 2147483647 at this --fps"},
          {still + "--frames 1-2", 2, "--output: 'out.png' has no placeholder for the frame number"},
          {"render card.png -o out.%s.png --frames 1-2", 2,
           "--output: 'out.%s.png' has a % that is not a frame number"},
          {"render card.%04d.png -o out.png", 2, "LAYER: 'card.%04d.png' stands for a sequence"},
          {"render card.png -o out.jpg --size 65501x8", 2, "--output: 'out.jpg' would have 65501x8 pixels"},
          {"render card.png -o out.gif", 2, "--output: 'out.gif' has the unknown format '.gif'"},
          {"testcard --size 8x8", 2, "--output: is missing"},
          {"testcard -o out.png --size 1000000x1000000", 1, "--size: 1000000x1000000 needs 3.6 TiB"},
      });
}

TEST(CommandError, InputsAreNotReplacedUnlessToldTo) {
  const FolderWithCard folder("64x48");
  for (const char* name : {"plate.png", "plate.1.png", "plate.2.png"}) {
    std::filesystem::copy_file(folder / "card.png", folder / name);
  }
  std::filesystem::create_symlink("card.png", folder / "soft.png");
  std::filesystem::create_hard_link(folder / "plate.png", folder / "hard.png");
  std::filesystem::create_symlink("loop.png", folder / "loop.png");
  expectRefusedInProcess(
      folder, {
                  {"render card.png -o card.png", 2, "--output: 'card.png' is the layer"},
                  {"render card.png -o soft.png", 2, "--output: 'soft.png' is the layer, 'card.png'"},
                  {"render card.png --over plate.png -o ./hard.png", 2, "'./hard.png' is the plate, 'plate.png'"},
                  {"render card.png --over plate.#.png -o plate.%d.png --frames 2-9", 2, "'plate.2.png' is the plate"},
                  {"render card.png --over plate.2.png -o plate.%d.png --frames 1-9", 2, "'plate.2.png' is the plate"},
                  {"render card.png -o loop.png", 3, "loop.png: is a link that leads back to itself"},
              });
  runWell(folder, "render card.png -o card.png --overwrite");
}

TEST(CommandError, Files) {
  const FolderWithCard folder("64x48");
  runWell(folder, "testcard -o short.png --size 640x480");
  folder.cutShort("short.png", 0.7);
  runWell(folder, "testcard -o spoilt.png --size 640x480");
  folder.damage("spoilt.png", 0.5);
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  folder.write("secret.png", "");
  folder.write("secret.csv", "");
  for (const char* name : {"secret.png", "secret.csv"}) {
    std::filesystem::permissions(folder / name, std::filesystem::perms::none);
  }
  // Root may read everything.
  const std::string other = geteuid() == 0 ? "setpriv --reuid=65534 --clear-groups" : "";
  folder.write("text.png", "no picture at all");
  folder.write("track.csv", "1,0,0,60,0,0,40,60,forty\n");
  folder.write("a,b.csv", "1,100000%,0,9,0,0,9,9,9\n");  // a comma of the name's own
  std::filesystem::create_directory(folder / "folder.png");
  const std::string still = " -o out.png ";
  expectRefusedInProcess(
      folder, {
                  {"render none.png" + still, 3, "none.png: does not exist"},
                  {"render folder.png" + still, 3, "folder.png: is a folder; give a picture file"},
                  {"render card.png --over none.png" + still, 3, "none.png: does not exist"},
                  {"render card.png --corners none.csv" + still, 3, "none.csv: does not exist"},
                  {"render card.png --corners track.csv" + still, 3, "track.csv: line 1: lry: 'forty' is not a number"},
                  {"render card.png --corners a,b.csv" + still, 3, "a,b.csv: line 1: frame 1: "},
                  {"render card.png --corners folder.png" + still, 3, "folder.png: is a folder"},
                  {"render card.png -o none/out.png", 3, "none/out.png: the folder 'none' does not exist"},
                  {"render card.png -o card.png/out.png", 3, "'card.png' is not a folder"},
                  {"render card.png -o folder.png", 3, "folder.png: exists and is not a regular file"},
                  {"render card.png --module none.so" + still, 3, "none.so: does not exist"},
                  {"render card.png --module card.png" + still, 1, "card.png: cannot be loaded"},
                  {"info --module text.png", 1, "text.png: cannot be loaded"},
              });
  expectRefused(
      folder,
      {
          {"render text.png" + still, 3, "text.png: cannot be read as a picture"},
          {"render short.png" + still, 3, "short.png: is truncated"},
          {"render spoilt.png" + still, 3, "spoilt.png: "},
          {"render secret.png" + still, 3, "secret.png: cannot be opened (Permission denied)", other},
          {"render card.png --corners secret.csv" + still, 3, "secret.csv: cannot be opened (Permission", other},
          {"render card.png --over short.png" + still, 3, "short.png: is truncated"},
          {"render card.png" + still, 2, "VANTOREL_SIMD: \"mmx\" is not", "export VANTOREL_SIMD=mmx;"},
          // What a full disk gives: every write beyond the limit fails.
          {"testcard -o out.png", 3, "out.png: cannot be written (File too large); raise the limit", "ulimit -f 8;"},
          {"testcard -o out.jpg", 3, "out.jpg: cannot be written", "ulimit -f 8;"},
          {"testcard -o out.tif", 3, "out.tif: cannot be written", "ulimit -f 8;"},
          {"testcard -o out.exr", 3, "out.exr: cannot be written", "ulimit -f 8;"},
          {"testcard -o out.dpx", 3, "out.dpx: cannot be written", "ulimit -f 8;"},
      });
}

TEST(CommandError, AFailureKeepsTheOldPicture) {
  const TestFolder folder;
  runWell(folder, "testcard -o out.png --size 64x48");
  runWell(folder, "testcard -o copy.png --size 64x48");
  EXPECT_EQ(run(folder, "testcard -o out.png", "ulimit -f 8;").code, 3);
  EXPECT_EQ(difference(folder / "out.png", folder / "copy.png"), 0.0);
  // In place, the layer is read whole before it is replaced.
  EXPECT_EQ(run(folder, "render out.png -o out.png --overwrite --ul 50%,50%").code, 0);
  EXPECT_GT(difference(folder / "out.png", folder / "copy.png"), 0.0);
  EXPECT_EQ(folder.count(), 2u);
}

// Libraries that start threads as they are loaded once ended the process before it could say anything.
TEST(CommandError, NoThreadsAreAMessageToo) {
  const TestFolder folder;
  // The limit does not hold for root, and counts every process of a user: this one has no other.
  // A leak sanitizer needs a process of its own.
  const std::string alone = std::string("export ASAN_OPTIONS=$ASAN_OPTIONS:detect_leaks=0; ulimit -p 1; ") +
                            (geteuid() == 0 ? "setpriv --reuid=$((60000 + $$ % 5000)) --clear-groups" : "");
  std::filesystem::permissions(folder.path(), std::filesystem::perms::all);
  const std::string with_one_more = std::regex_replace(alone, std::regex("ulimit -p 1"), "ulimit -p 2");
  const std::string fault = "cannot start a thread (Resource temporarily unavailable); raise the limits on processes";
  expectRefused(folder, {{"testcard -o card.png", 1, fault, alone}});
  // The rows of pictures make do with the threads that there are.
  EXPECT_EQ(run(folder, "testcard -o card.png", with_one_more).code, 0);
}

TEST(CommandError, StandardOutputThatCannotBeWrittenEndsTheRun) {
  const FolderWithCard folder("64x48");
  for (const std::string arguments : {"info", "info --json", "render card.png -o out.#.png --json --frames 1-9"}) {
    const CommandResult result = run(folder, arguments + " > /dev/full");
    EXPECT_EQ(result.code, 3) << arguments;
    EXPECT_NE(result.err.find("standard output: cannot be written to"), std::string::npos) << result.err;
  }
}

}  // namespace
}  // namespace vantorel::cli
