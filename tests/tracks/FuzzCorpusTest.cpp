// The fuzz target's checks over the samples and what fuzzing found. A fault ends the program.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

TEST(FuzzCorpus, RunsWithoutFault) {
  std::size_t files = 0;
  for (const char* folder : {VANTOREL_TRACK_SAMPLES, VANTOREL_TRACK_CORPUS}) {
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
      SCOPED_TRACE(entry.path());
      std::ifstream file(entry.path(), std::ios::binary);
      const std::string text{std::istreambuf_iterator<char>(file), {}};
      const std::vector<std::uint8_t> bytes(text.begin(), text.end());
      EXPECT_EQ(LLVMFuzzerTestOneInput(bytes.data(), bytes.size()), 0);
      ++files;
    }
  }
  EXPECT_GT(files, 20u);
}

}  // namespace
