// The page's files, which the build embeds in the program.
#pragma once

#include <span>
#include <string_view>

namespace vantorel::view {

struct PageFile {
  std::string_view name;
  std::string_view type;  // for Content-Type
  std::string_view content;
};

std::span<const PageFile> pageFiles();

}  // namespace vantorel::view
