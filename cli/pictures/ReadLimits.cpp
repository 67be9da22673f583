#include "cli/pictures/ReadLimits.h"

#include <fmt/format.h>

#include <cstdlib>
#include <utility>

#include "cli/base/CommandError.h"
#include "cli/base/NumberParsing.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

constexpr const char* kMegapixels = "VANTOREL_MAX_MEGAPIXELS";
constexpr const char* kSeconds = "VANTOREL_MAX_READ_SECONDS";

double fromEnvironment(const char* name, double otherwise) {
  const char* const text = std::getenv(name);
  if (text == nullptr || *text == '\0') {
    return otherwise;
  }
  const auto value = parseNumber(text);
  if (!value || *value <= 0.0) {
    throw badArgument(name, fmt::format("'{}' is not a positive number; give one or unset the variable", text));
  }
  return *value;
}

}  // namespace

ReadLimits readLimits() {
  ReadLimits limits;
  limits.megapixels = fromEnvironment(kMegapixels, limits.megapixels);
  limits.time = std::chrono::duration<double>(fromEnvironment(kSeconds, limits.time.count()));
  return limits;
}

void requirePixelsWithin(const ReadLimits& limits, const std::string& path, const char* what, host::Size size) {
  const double megapixels = static_cast<double>(size.width) * size.height / 1e6;
  if (megapixels > limits.megapixels) {
    throw fileFailure(path, fmt::format("{} of {} has {:.0f} megapixels and {:.0f} are read; raise {} to read it", what,
                                        toText(size), megapixels, limits.megapixels, kMegapixels));
  }
}

ReadClock::ReadClock(const ReadLimits& limits, std::string path)
    : limit_(limits.time), path_(std::move(path)), begin_(std::chrono::steady_clock::now()) {}

void ReadClock::require() const {
  if (std::chrono::steady_clock::now() - begin_ > limit_) {
    throw fileFailure(
        path_, fmt::format("takes more than {:g} seconds to read; raise {} to wait for it", limit_.count(), kSeconds));
  }
}

}  // namespace vantorel::cli
