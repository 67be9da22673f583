// The installed command.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "CommandRunner.h"
#include "tests/TestFolder.h"

namespace vantorel::cli {
namespace {

namespace fs = std::filesystem;

TEST(Install, TheCommandFindsItsModulesAndNeedsEachForItsOwnFilesAlone) {
  const TestFolder folder;
  const TestFolder prefix;
  ASSERT_EQ(std::system((VANTOREL_INSTALL "command --prefix '" + prefix.path() + "' >/dev/null").c_str()), 0);
  // The exit code, and that standard error holds the message.
  const auto expect_code = [&](int code, const std::string& arguments, const std::string& message = "") {
    const CommandResult result = run(folder, arguments, "", prefix / "bin/vantorel");
    EXPECT_EQ(result.code, code) << arguments << "\n" << result.err;
    EXPECT_NE(result.err.find(message), std::string::npos) << result.err;
  };
  expect_code(0, "testcard -o card.png --size 64x48");
  expect_code(0, "render card.png -o out.png --ul 10,5");
  // The dynamic linker lists what it would load.
  const std::string loaded = run(folder, "", "LD_TRACE_LOADED_OBJECTS=1", prefix / "bin/vantorel").out;
  EXPECT_NE(loaded.find("libstdc++"), std::string::npos) << loaded;
  EXPECT_EQ(loaded.find("OpenImageIO"), std::string::npos) << loaded;

  fs::path module;
  for (const auto& entry : fs::recursive_directory_iterator(prefix.path())) {
    module = entry.path().filename() == "vantorel-pictures.so" ? entry.path() : module;
  }
  fs::remove(module.parent_path() / "vantorel-formats.so");
  expect_code(0, "render card.png -o out.jpg --ul 10,5");
  expect_code(0, "render out.jpg -o out.exr --ul 10,5");
  expect_code(3, "testcard -o card.tif", "vantorel-formats.so: was found neither in '");
  fs::remove(module);
  folder.write("track.csv", "1,0,0,60,0,0,40,60,40\n");
  for (const char* arguments : {"--version", "--help", "render --help", "info", "corners track.csv -o out.csv"}) {
    expect_code(0, arguments);
  }
  expect_code(2, "render card.png -o out.png --ul 1");
  expect_code(3, "testcard -o other.png", "vantorel-pictures.so: was found neither in '");
  std::ofstream(module) << "no module";
  expect_code(3, "testcard -o other.png", "vantorel-pictures.so: cannot be loaded (");
}

}  // namespace
}  // namespace vantorel::cli
