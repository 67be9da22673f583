// What is installed holds together.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <regex>
#include <sstream>
#include <string>

#include "TestFolder.h"

namespace vantorel::cli {
namespace {

TEST(Install, EverythingThatTheGuidesLinkToIsInstalled) {
  namespace fs = std::filesystem;
  const TestFolder folder;
  ASSERT_EQ(std::system((VANTOREL_INSTALL_DOCS "'" + folder.path() + "' >/dev/null").c_str()), 0);
  int links = 0;
  for (const auto& entry : fs::recursive_directory_iterator(folder.path())) {
    if (entry.path().extension() != ".md") {
      continue;
    }
    std::ostringstream stream;
    stream << std::ifstream(entry.path()).rdbuf();
    const std::string text = stream.str();
    // Files, not addresses or places on the same page.
    static const std::regex link(R"(\]\(([^):#]+)(#[^)]*)?\))");
    for (std::sregex_iterator at(text.begin(), text.end(), link), end; at != end; ++at, ++links) {
      EXPECT_TRUE(fs::exists(entry.path().parent_path() / at->str(1))) << entry.path().filename() << " " << at->str(1);
    }
  }
  EXPECT_GT(links, 0);
}

}  // namespace
}  // namespace vantorel::cli
