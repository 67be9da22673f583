// The page's files, embedded in the program at build time.
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
