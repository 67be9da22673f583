// A command for which one allocation fails: it says so, or does without and writes the same picture.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

#include "CommandRunner.h"

namespace vantorel::cli {
namespace {

constexpr const char* kRender =
    "render card.png -o out.png --over plate.png --ul 5,3 --ur 20,1 --no-progress --threads 1";
constexpr const char* kPreloaded = "LD_PRELOAD='" VANTOREL_ALLOCATION_SHIM "' ";

// The picture, which is then removed; empty where there is none.
std::string takePicture(const TestFolder& folder) {
  std::ifstream file(folder / "out.png", std::ios::binary);
  std::string bytes{std::istreambuf_iterator<char>(file), {}};
  std::filesystem::remove(folder / "out.png");
  return bytes;
}

// Rising ever faster through what libraries set up, then evenly. VANTOREL_ALLOCATION_STEP=1 tries every one.
std::set<long> sampleOf(long allocations) {
  constexpr long kEvenly = 24;
  const char* const wanted = std::getenv("VANTOREL_ALLOCATION_STEP");
  const long step = wanted != nullptr ? std::max(std::atol(wanted), 1L) : allocations / kEvenly;
  std::set<long> sample;
  for (long number = 1; number <= allocations; number += step) {
    sample.insert(number);
  }
  for (long number = 1; number <= allocations; number *= 3) {
    sample.insert(number);
  }
  return sample;
}

TEST(AllocationFaults, OneThatFailsIsToldOrDoneWithout) {
  const TestFolder folder;
  runWell(folder, "testcard -o card.png --size 24x16");
  runWell(folder, "testcard -o plate.png --size 32x24");
  ASSERT_EQ(run(folder, kRender, std::string("VANTOREL_ALLOCATION_COUNT=count ") + kPreloaded).code, 0);
  const std::string whole = takePicture(folder);
  long allocations = 0;
  std::ifstream(folder / "count") >> allocations;
  std::filesystem::remove(folder / "count");
  ASSERT_GT(allocations, 1000);
  int told = 0;
  for (const long number : sampleOf(allocations)) {
    const CommandResult result =
        run(folder, kRender, "VANTOREL_FAILING_ALLOCATION=" + std::to_string(number) + ' ' + kPreloaded);
    const std::string picture = takePicture(folder);
    if (result.code == 0) {
      EXPECT_TRUE(picture == whole) << "allocation " << number;
    } else {
      EXPECT_TRUE(result.code == 1 || result.code == 3) << "allocation " << number << ": " << result.code;
      EXPECT_EQ(result.err.rfind("vantorel: ", 0), 0u) << "allocation " << number << ": " << result.err;
      // One that fails behind the renaming may be told beside a whole picture.
      EXPECT_TRUE(picture.empty() || picture == whole) << "allocation " << number;
      ++told;
    }
    const std::filesystem::directory_iterator files(folder.path());
    EXPECT_EQ(std::distance(begin(files), end(files)), 2) << "a file is left after allocation " << number;
  }
  EXPECT_GT(told, 0);
}

}  // namespace
}  // namespace vantorel::cli
