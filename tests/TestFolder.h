// A folder of its own for each test, gone afterwards.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace vantorel {

inline std::string contents(const std::filesystem::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class TestFolder {
 public:
  TestFolder() {
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    path_ = std::filesystem::temp_directory_path() /
            ("vantorel-" + std::string(test->test_suite_name()) + "-" + test->name() + "-" + std::to_string(getpid()));
    std::filesystem::remove_all(path_);
    std::filesystem::create_directories(path_);
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  std::string path() const { return path_.string(); }

  void write(const std::string& name, const std::string& text) const { std::ofstream(path_ / name) << text; }
  // Cuts the file to a share of its size.
  void cutShort(const std::string& name, double share) const {
    const auto size = static_cast<double>(std::filesystem::file_size(path_ / name));
    std::filesystem::resize_file(path_ / name, static_cast<std::uintmax_t>(size * share));
  }
  // Changes the byte at that share of the file's size.
  void damage(const std::string& name, double share) const {
    std::fstream file(path_ / name, std::ios::binary | std::ios::in | std::ios::out);
    const auto at = static_cast<std::streamoff>(static_cast<double>(std::filesystem::file_size(path_ / name)) * share);
    const int byte = file.seekg(at).get();
    file.seekp(at).put(static_cast<char>(byte ^ 0xFF));
  }
  // How many entries there are, hidden ones included.
  std::size_t count() const {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(path_), {}));
  }

 private:
  std::filesystem::path path_;
};

}  // namespace vantorel
