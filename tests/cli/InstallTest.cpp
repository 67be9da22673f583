// The installed command.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>

#include "CommandRunner.h"
#include "TestFolder.h"

namespace vantorel::cli {
namespace {

namespace fs = std::filesystem;

TEST(Install, TheCommandFindsItsModulesAndNeedsEachForItsOwnFilesAlone) {
  const TestFolder folder;
  const TestFolder prefix;
  ASSERT_EQ(std::system((VANTOREL_INSTALL "command --prefix '" + prefix.path() + "' >/dev/null").c_str()), 0);
  const std::string command = prefix / "bin/vantorel";
  const auto run_installed = [&](const std::string& arguments, const std::string& before = "") {
    return run(folder, arguments, before, command);
  };
  EXPECT_EQ(run_installed("testcard -o card.png --size 64x48").code, 0);
  EXPECT_EQ(run_installed("render card.png -o out.png --ul 10,5").code, 0);
  // The dynamic linker lists what it would load.
  const std::string loaded = run_installed("", "LD_TRACE_LOADED_OBJECTS=1").out;
  EXPECT_NE(loaded.find("libstdc++"), std::string::npos) << loaded;
  EXPECT_EQ(loaded.find("OpenImageIO"), std::string::npos) << loaded;

  fs::path module;
  for (const auto& entry : fs::recursive_directory_iterator(prefix.path())) {
    module = entry.path().filename() == "vantorel-pictures.so" ? entry.path() : module;
  }
  fs::remove(module.parent_path() / "vantorel-formats.so");
  EXPECT_EQ(run_installed("render card.png -o out.jpg --ul 10,5").code, 0);
  EXPECT_EQ(run_installed("render out.jpg -o out.exr --ul 10,5").code, 0);
  const CommandResult other_format = run_installed("testcard -o card.tif");
  EXPECT_EQ(other_format.code, 3);
  EXPECT_NE(other_format.err.find("vantorel-formats.so: was found neither in '"), std::string::npos)
      << other_format.err;
  fs::remove(module);
  folder.write("track.csv", "1,0,0,60,0,0,40,60,40\n");
  for (const char* arguments : {"--version", "--help", "render --help", "info", "corners track.csv -o out.csv"}) {
    EXPECT_EQ(run_installed(arguments).code, 0) << arguments;
  }
  EXPECT_EQ(run_installed("render card.png -o out.png --ul 1").code, 2);
  const CommandResult missing = run_installed("testcard -o other.png");
  EXPECT_EQ(missing.code, 3);
  EXPECT_NE(missing.err.find("vantorel-pictures.so: was found neither in '"), std::string::npos) << missing.err;
  std::ofstream(module) << "no module";
  const CommandResult spoilt = run_installed("testcard -o other.png");
  EXPECT_EQ(spoilt.code, 3);
  EXPECT_NE(spoilt.err.find("vantorel-pictures.so: cannot be loaded ("), std::string::npos) << spoilt.err;
}

}  // namespace
}  // namespace vantorel::cli
