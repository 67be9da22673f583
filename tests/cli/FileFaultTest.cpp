// Files that cannot be opened, written, synchronised or renamed, and commands that are killed: no output is half
// written or lost, no temporary file stays, and the next run ends the shot.
#include <gtest/gtest.h>

#include <iostream>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

std::string shot(const std::string& ending = "png") {
  return "render card.png -o out.#." + ending + " --over plate.png --ul 5,3 --ur 40,1 --no-progress --resume ";
}

const std::string kPreloaded = "LD_PRELOAD='" VANTOREL_FAULT_SHIM "' ASAN_OPTIONS=verify_asan_link_order=0 ";

// The files of a folder whose name begins so; hidden ones are temporary.
std::map<std::string, std::string> files(const TestFolder& folder, const std::string& begin) {
  std::map<std::string, std::string> found;
  for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
    if (const std::string name = entry.path().filename(); name.rfind(begin, 0) == 0) {
      found[name] = contents(entry.path());
    }
  }
  return found;
}

// The calls to let fail, as "function:number", of those that the shim has counted: the first, middle and last of each
// function, or every one.
std::vector<std::string> callsToFail(const std::string& counts_file, bool every = false) {
  std::vector<std::string> faults;
  std::ifstream counts(counts_file);
  std::string function;
  for (int calls = 0; counts >> function >> calls;) {
    for (int number = 1; number <= calls; ++number) {
      if (every || number == 1 || number == calls / 2 || number == calls) {
        faults.push_back(function + ":" + std::to_string(number));
      }
    }
  }
  return faults;
}

class FileFaults : public ::testing::Test {
 protected:
  FileFaults() {
    runWell(folder_, "testcard -o card.png --size 64x48");
    runWell(folder_, "testcard -o plate.png --size 96x64");
  }

  // Renders the frames whole, remembers them and removes them.
  void rememberFrames(const std::string& arguments, const std::string& before = "") {
    ASSERT_EQ(run(folder_, arguments, before).code, 0);
    whole_ = files(folder_, "out.");
    removeFrames();
  }

  void removeFrames() const {
    for (const auto& [name, bytes] : whole_) {
      std::filesystem::remove(folder_ / name);
    }
  }

  // Every output that is there is a whole one.
  void expectWholeFrames(const std::string& what) const {
    for (const auto& [name, bytes] : files(folder_, "out.")) {
      const auto expected = whole_.find(name);
      EXPECT_TRUE(expected != whole_.end() && expected->second == bytes) << name << " after " << what;
    }
  }

  // One call of the function fails, which is told or done without; the next run makes up for it.
  void expectTold(const std::string& arguments, const std::string& fault) const {
    const std::string what = fault + " of " + arguments;
    const CommandResult result = run(folder_, arguments, kPreloaded + "VANTOREL_FAULT=" + fault);
    // What is read besides pictures, such as an older frame's record, may be done without.
    if (result.code != 0 || !fault.starts_with("fopen:")) {
      EXPECT_EQ(result.code, 3) << what << "\n" << result.err;
      EXPECT_EQ(result.err.rfind("vantorel: ", 0), 0u) << what << "\n" << result.err;
      EXPECT_NE(result.err.find("; "), std::string::npos) << what << "\n" << result.err;
    }
    expectWholeFrames(what);
    EXPECT_TRUE(files(folder_, ".").empty()) << "a temporary file is left after " << what;
    EXPECT_EQ(run(folder_, arguments).code, 0) << "the run after " << what;
    EXPECT_EQ(files(folder_, "out."), whole_) << "the run after " << what;
    removeFrames();
  }

  const TestFolder folder_;
  std::map<std::string, std::string> whole_;
};

// VANTOREL_EVERY_PLACE=1 tries every call, and further formats.
TEST_F(FileFaults, EveryCallThatFailsOnceIsTold) {
  const bool every = std::getenv("VANTOREL_EVERY_PLACE") != nullptr;
  const std::vector<std::string> all_endings{"png", "exr", "jpg", "tif", "dpx"};
  int tried = 0;
  for (const std::string& ending : every ? all_endings : std::vector<std::string>{"png", "tif"}) {
    const std::string arguments = shot(ending) + "--frames 1-2 --threads 1";
    const std::string counts_file = folder_ / "counts";
    rememberFrames(arguments, kPreloaded + "VANTOREL_FAULT_COUNTS='" + counts_file + "'");
    std::set<std::string> functions;
    for (const std::string& fault : callsToFail(counts_file, every)) {
      expectTold(arguments, fault);
      functions.insert(fault.substr(0, fault.find(':')));
      ++tried;
    }
    for (const char* function : {"open", "fopen", "fflush", "fclose", "fsync", "rename"}) {
      EXPECT_TRUE(functions.contains(function)) << function << " for " << ending;
    }
    // Files are written by the one or the other.
    EXPECT_TRUE(functions.contains("write") || functions.contains("fwrite")) << ending;
  }
  std::cout << tried << " calls were let fail\n";
  EXPECT_GE(tried, 24);
}

TEST_F(FileFaults, NothingGoesToStandardOutputUnlessItIsWhole) {
  const std::string arguments = "render card.png -o - --format tif --threads 1 --no-progress";
  const std::string counts_file = folder_ / "counts";
  EXPECT_GT(run(folder_, arguments, kPreloaded + "VANTOREL_FAULT_COUNTS='" + counts_file + "'").out.size(), 1000u);
  int tried = 0;
  for (const std::string& fault : callsToFail(counts_file)) {
    if (fault.starts_with("fopen:") ||
        fault.starts_with("fclose:")) {  // before the picture is begun or after it is out
      continue;
    }
    const CommandResult result = run(folder_, arguments, kPreloaded + "VANTOREL_FAULT=" + fault);
    EXPECT_EQ(result.code, 3) << fault << "\n" << result.err;
    EXPECT_TRUE(result.out.empty()) << fault;
    ++tried;
  }
  EXPECT_GE(tried, 2);
}

// VANTOREL_KILLS=200 makes it a minute or more.
TEST_F(FileFaults, KilledRunsLeaveWholeFramesAndTheNextGoesOn) {
  const std::string arguments = shot() + "--frames 1-12 --threads 2";
  rememberFrames(arguments);
  const char* const wanted = std::getenv("VANTOREL_KILLS");
  const int kills = wanted != nullptr ? std::atoi(wanted) : 5;
  int killed = 0;
  for (int i = 0; i < kills; ++i) {
    const std::string seconds = std::to_string(0.25 + 0.037 * (i % 16));
    killed += run(folder_, arguments, "(sleep " + seconds + "; kill -9 $$) & exec").code == 0 ? 0 : 1;
    expectWholeFrames("a kill after " + seconds + " s");
    if (i % 8 == 7) {
      removeFrames();
    }
  }
  EXPECT_EQ(run(folder_, arguments).code, 0);
  EXPECT_EQ(files(folder_, "out."), whole_);
  EXPECT_TRUE(files(folder_, ".").empty()) << "a temporary file is left";
  RecordProperty("killed", killed);
}

}  // namespace
}  // namespace vantorel::cli
