// Replays files of a corpus where there is no libFuzzer: replay FILE|FOLDER... A fault ends the process.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

void replay(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(file), {}};
  // Printed first, so that the last name is that of the file at which the process ended.
  std::printf("%s\n", path.c_str());
  std::fflush(stdout);
  // Memory of exactly this size, so that the address sanitizer sees reads beyond it.
  const std::vector<std::uint8_t> bytes(text.begin(), text.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
}

}  // namespace

int main(int count, char** arguments) {
  std::size_t files = 0;
  for (int i = 1; i < count; ++i) {
    if (std::filesystem::is_directory(arguments[i])) {
      for (const auto& entry : std::filesystem::directory_iterator(arguments[i])) {
        replay(entry.path());
        ++files;
      }
    } else {
      replay(arguments[i]);
      ++files;
    }
  }
  return files == 0 ? 1 : 0;
}
