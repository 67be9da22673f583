// Runs a fuzz target over files, and over all files in folders, without a fuzzing engine: the corpus as a plain test.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size);

namespace {

// Returns whether the file could be read; a fault that the target finds ends the program.
bool runFile(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
  if (!file) {
    std::fprintf(stderr, "%s: cannot be read\n", path.c_str());
    return false;
  }
  const std::vector<std::uint8_t> bytes(content.begin(), content.end());
  LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
  return true;
}

}  // namespace

int main(int argc, char** argv) {
  std::vector<std::filesystem::path> files;
  for (int i = 1; i < argc; ++i) {
    if (!std::filesystem::is_directory(argv[i])) {
      files.emplace_back(argv[i]);
      continue;
    }
    for (const auto& entry : std::filesystem::recursive_directory_iterator(argv[i])) {
      if (entry.is_regular_file()) {
        files.push_back(entry.path());
      }
    }
  }
  if (files.empty()) {
    std::fprintf(stderr, "No inputs: name files of a corpus, or folders that hold some.\n");
    return 2;
  }
  for (const auto& file : files) {
    std::printf("%s\n", file.c_str());
    std::fflush(stdout);
    if (!runFile(file)) {
      return 1;
    }
  }
  return 0;
}
