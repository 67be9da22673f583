#include "cli/pictures/FileDate.h"

#include <fmt/chrono.h>

#include <charconv>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace vantorel::cli {

std::string fileDate() {
  const char* const given = std::getenv("SOURCE_DATE_EPOCH");
  std::time_t seconds = 0;
  if (given != nullptr && std::from_chars(given, given + std::strlen(given), seconds).ec == std::errc{}) {
    return fmt::format("{:%Y:%m:%d %H:%M:%S}", fmt::gmtime(seconds));
  }
  return "";
}

}  // namespace vantorel::cli
