// Sequences, keyframes and plates through the built command.
#include <gtest/gtest.h>

#include <chrono>
#include <regex>
#include <set>
#include <string>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

// A card, a plate that differs from it, and keyframes that move the corners from frame 1 to frame 5.
struct Shot : FolderWithCard {
  Shot() : FolderWithCard("80x60") {
    runWell(*this, "testcard -o big.png --size 160x120");
    for (int frame = 1; frame <= 5; ++frame) {
      runWell(*this, "render big.png -o plate." + std::to_string(frame) + ".jpg --ul 0," + std::to_string(frame));
    }
    write("track.csv", "1,0,0,60,0,0,40,60,40\n5,40,20,120,10,30,80,130,90\n");
  }
};

constexpr const char* kShot = "render card.png -o out.%02d.png --frames 1-5 --corners track.csv --over plate.#.jpg";

std::string outputName(int frame) {
  return (frame < 10 ? "out.0" : "out.") + std::to_string(frame) + ".png";
}

std::set<int> framesOf(const CommandResult& result) {
  std::set<int> frames;
  for (const nlohmann::json& line : result.lines()) {
    frames.insert(line["frame"].get<int>());
  }
  return frames;
}

TEST(SequenceCommand, EveryFrameIsTheStillOfItsTime) {
  const Shot folder;
  const CommandResult drawn = runWell(folder, std::string(kShot) + " --json --threads 2");
  EXPECT_EQ(framesOf(drawn), (std::set<int>{1, 2, 3, 4, 5}));
  for (const nlohmann::json& line : drawn.lines()) {
    EXPECT_EQ(line["output"], outputName(line["frame"]));
  }
  // Half way between the keys the corners are half way too.
  runWell(folder, "render card.png -o still.png --over plate.3.jpg --ul 20,10 --ur 90,5 --ll 15,60 --lr 95,65");
  EXPECT_EQ(difference(folder / "still.png", folder / outputName(3)), 0.0);
  // The frame rate moves frames and keys alike.
  runWell(folder, "render card.png -o still.png --over plate.3.jpg --corners track.csv --frames 3 --fps 23.976");
  EXPECT_EQ(difference(folder / "still.png", folder / outputName(3)), 0.0);
}

TEST(SequenceCommand, LayerSequencesGoOverAStillPlateAndStepsAreKept) {
  const Shot folder;
  runWell(folder, "render plate.%d.jpg -o out.%02d.png --frames 1-5x2 --over big.png --ul 10,10 --lr 100,80");
  runWell(folder, "render plate.5.jpg -o still.png --over big.png --ul 10,10 --lr 100,80");
  EXPECT_EQ(difference(folder / "still.png", folder / outputName(5)), 0.0);
  EXPECT_FALSE(std::filesystem::exists(folder / outputName(2)));
}

// The frames of the lines, and that standard error says all of that.
std::set<int> resumed(const TestFolder& folder, const std::string& shot, const std::vector<std::string>& said) {
  const CommandResult result = run(folder, shot + " --resume --json");
  EXPECT_EQ(result.code, 0) << result.err;
  for (const std::string& text : said) {
    EXPECT_NE(result.err.find(text), std::string::npos) << text << "\n" << result.err;
  }
  return framesOf(result);
}

TEST(SequenceCommand, InputsStartAndEndWhereTheOptionsSay) {
  const Shot folder;
  const std::string base = "render plate.%d.jpg --over big.png --ul 10,10 --lr 100,80 ";
  const auto shows = [&](int frame, int plate) {
    runWell(folder,
            "render plate." + std::to_string(plate) + ".jpg -o still.png --over big.png --ul 10,10 --lr 100,80");
    EXPECT_EQ(difference(folder / "still.png", folder / outputName(frame)), 0.0) << frame << " shows " << plate;
  };
  const std::string late = base + "-o out.%02d.png --frames 8-16x2 --layer-start 7 ";
  runWell(folder, late + "--layer-end hold");
  shows(8, 2);
  EXPECT_EQ(difference(folder / "out.14.png", folder / "out.16.png"), 0.0);
  // What a frame shows is recorded: the frames that loop has as hold has them are kept.
  EXPECT_EQ(resumed(folder, late + "--layer-end loop", {}), (std::set<int>{12, 14}));
  shows(14, 3);
  EXPECT_NE(run(folder, late + "--frames 10-20 --layer-end stop").err.find("the layer ends at frame 11"),
            std::string::npos);
  EXPECT_FALSE(std::filesystem::exists(folder / "out.20.png"));
  // The plate and the corners, and a still of the same frame.
  runWell(folder,
          "render card.png -o out.%02d.png --frames 3 --over plate.%d.jpg --over-start -1 --corners track.csv "
          "--corners-start 0");
  EXPECT_NE(
      run(folder, "render card.png -o still.png --corners track.csv").err.find("the still shows frame 0, and --at"),
      std::string::npos);
  runWell(folder, "render card.png -o still.png --over plate.5.jpg --corners track.csv --at 4");
  EXPECT_EQ(difference(folder / "still.png", folder / outputName(3)), 0.0);
  // The files that are protected are those that are shown.
  EXPECT_EQ(run(folder, "render card.png -o plate.5.jpg --frames 3 --over plate.%d.jpg --over-start -1").code, 2);
  EXPECT_EQ(run(folder, base + "-o out.png --layer-start 3").code, 2);
  EXPECT_EQ(run(folder, "render none.%d.jpg -o out.%d.png --frames 1-2 --layer-start 3").code, 3);
}

TEST(SequenceCommand, ResumeRendersWhatIsMissingOldDamagedOrMadeInAnotherWay) {
  namespace fs = std::filesystem;
  const Shot folder;
  runWell(folder, kShot);
  fs::remove(folder / outputName(1));
  folder.damage(outputName(2), 0.5);
  folder.cutShort(outputName(3), 0.5);
  // The plate of frame 4 is newer than its output.
  fs::last_write_time(folder / "plate.4.jpg", fs::last_write_time(folder / outputName(4)) + std::chrono::seconds(1));
  EXPECT_EQ(resumed(folder, kShot,
                    {"vantorel: skipped 1 of 5 frames", "rendered again, damaged: frames 2-3\n",
                     "rendered again, older than the inputs: frame 4\n"}),
            (std::set<int>{1, 2, 3, 4}));

  fs::last_write_time(folder / "plate.4.jpg", fs::last_write_time(folder / "plate.5.jpg"));
  // A picture of another format, of another hand, of another frame, and all others as they were.
  const auto later = fs::file_time_type::clock::now() + std::chrono::seconds(2);
  runWell(folder, std::string(kShot) + " --frames 1 -o other.jpg");
  fs::rename(folder / "other.jpg", folder / outputName(1));
  fs::copy_file(folder / outputName(3), folder / outputName(4), fs::copy_options::overwrite_existing);
  folder.write(outputName(2), "not a picture of this command's");
  for (int frame = 1; frame <= 5; ++frame) {
    fs::last_write_time(folder / outputName(frame), later);
  }
  EXPECT_EQ(
      resumed(folder, kShot, {"made with other options: frames 1, 4\n", "without a record of how they were made"}),
      (std::set<int>{1, 2, 4}));
  // What does not change pictures changes nothing; one other option changes all.
  EXPECT_EQ(resumed(folder, std::string(kShot) + " --threads 1 --protocol plain", {"skipped 5"}), std::set<int>{});
  EXPECT_EQ(
      resumed(folder, std::string(kShot) + " --quality standard", {"made with other options: frames 1-5\n"}).size(),
      5u);
  // Other keyframes change all, and newer ones make every frame old.
  const auto track_time = fs::last_write_time(folder / "track.csv");
  folder.write("track.csv", "1,1,0,60,0,0,40,60,40\n5,41,20,120,10,30,80,130,90\n");
  fs::last_write_time(folder / "track.csv", track_time);
  EXPECT_EQ(
      resumed(folder, std::string(kShot) + " --quality standard", {"made with other options: frames 1-5\n"}).size(),
      5u);
  fs::last_write_time(folder / "track.csv", later + std::chrono::hours(1));
  EXPECT_EQ(resumed(folder, std::string(kShot) + " --quality standard", {"older than the inputs: frames 1-5"}).size(),
            5u);
}

TEST(SequenceCommand, FramesOfTheBilinearPathAreToldOnce) {
  const FolderWithCard folder("80x60");
  // The lower right corner goes inside the triangle of the others and comes out again.
  folder.write("track.csv", "1,0,0,79,0,0,59,79,59\n3,0,0,79,0,0,59,20,15\n5,0,0,79,0,0,59,79,59\n");
  EXPECT_EQ(run(folder, "render card.png -o out.#.png --frames 1-5 --corners track.csv").err,
            "vantorel: frame 3 was drawn by bilinear mapping and the others in perspective, since the corners do not "
            "form a convex quadrilateral; the picture jumps where the mapping changes\n");
}

TEST(SequenceCommand, ABrokenFrameStopsTheRunOrIsListed) {
  const Shot folder;
  folder.cutShort("plate.3.jpg", 0.6);
  const CommandResult stopped = run(folder, std::string(kShot) + " --threads 1");
  EXPECT_EQ(stopped.code, 3);
  EXPECT_NE(stopped.err.find("vantorel: plate.3.jpg: is truncated"), std::string::npos) << stopped.err;
  for (int frame = 2; frame <= 4; ++frame) {
    EXPECT_EQ(std::filesystem::exists(folder / outputName(frame)), frame == 2) << frame;
  }

  // A plate of another size, and a first frame that is not there.
  runWell(folder, "testcard -o plate.5.jpg --size 100x100");
  std::filesystem::remove(folder / "plate.1.jpg");
  const CommandResult listed = run(folder, std::string(kShot) + " --keep-going");
  EXPECT_EQ(listed.code, 1);
  for (const char* part :
       {"frame 1: plate.1.jpg: does not exist", "frame 3: plate.3.jpg: is truncated",
        "frame 5: plate.5.jpg: its size is 100x100, the shot's is 160x120", "3 of 5 frames failed: 1, 3, 5;"}) {
    EXPECT_NE(listed.err.find(part), std::string::npos) << part << "\n" << listed.err;
  }
  EXPECT_TRUE(std::filesystem::exists(folder / outputName(4)));
  EXPECT_FALSE(std::filesystem::exists(folder / outputName(5)));
}

TEST(SequenceCommand, AnInterruptedRunLeavesWholeFramesAndGoesOnLater) {
  const FolderWithCard folder("320x240");
  const std::string shot = "render card.png -o 'out.%04d.png' --frames 1-100000 --ul 5,5";
  // `timeout` sends the signal; without --foreground it would reach the test's shell too.
  const CommandResult result = run(folder, shot, "timeout --foreground --preserve-status -s INT 3");
  EXPECT_EQ(result.code, 130) << result.err;
  EXPECT_EQ(result.err, "vantorel: interrupted; no unfinished picture was left behind\n");
  std::size_t frames = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    EXPECT_EQ(entry.path().extension(), ".png") << entry.path();
    frames += entry.path().filename() == "card.png" ? 0 : 1;
  }
  const CommandResult resumed =
      run(folder, "render card.png -o 'out.%04d.png' --resume --ul 5,5 --frames 1-" + std::to_string(frames + 2));
  EXPECT_EQ(resumed.code, 0) << resumed.err;
  EXPECT_EQ(folder.count(), frames + 3);
}

TEST(SequenceCommand, ProgressFitsTheTerminalAndEndsWithASummary) {
  const FolderWithCard folder("80x60");
  const std::string shown = runInTerminal(folder, "render card.png -o out.#.png --frames 1-12 --threads 1", 20);
  const std::string erase = "\r\x1b[K";
  std::size_t at = shown.find(erase);
  ASSERT_NE(at, std::string::npos) << shown;
  std::string line;
  for (std::size_t next = 0; at != std::string::npos; at = next) {
    next = shown.find(erase, at + 1);
    line = shown.substr(at + erase.size(), next == std::string::npos ? next : next - at - erase.size());
    EXPECT_TRUE(line.size() < 20 || next == std::string::npos) << line;
  }
  EXPECT_EQ(line.rfind("12 frames in ", 0), 0u) << line;
  EXPECT_NE(line.find(" frames/s, out.1.png to out.12.png\r\n"), std::string::npos) << line;
  const std::string wide = runInTerminal(folder, "render card.png -o wide.#.png --frames 1-2 --threads 1", 200);
  EXPECT_TRUE(std::regex_search(wide, std::regex("1 of 2 frames, [0-9.]+ frames/s, [0-9:]+ left"))) << wide;
}

TEST(SequenceCommand, SignalsThatWereIgnoredStayIgnored) {
  const FolderWithCard folder("640x480");
  const std::string shot = "render card.png -o out.#.png --threads 1 --frames 1-60";
  for (const std::string signal : {"HUP", "INT"}) {
    // The shell becomes the command, and so has the number that the signal goes to.
    const CommandResult result =
        run(folder, shot, "trap '' " + signal + "; (sleep 0.5; kill -" + signal + " $$) & exec");
    EXPECT_EQ(result.code, 0) << signal << "\n" << result.err;
  }
}

}  // namespace
}  // namespace vantorel::cli
