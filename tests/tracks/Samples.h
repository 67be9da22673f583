// Files of every format, written by hand.
#pragma once

#include <string>
#include <vector>

#include "tests/TestFolder.h"
#include "tracks/Resolve.h"

namespace vantorel::tracks {

constexpr Size kFrame{1920, 1080};

inline std::string sampleText(const std::string& name) {
  return contents(std::string(VANTOREL_TRACK_SAMPLES) + "/" + name);
}

// Reads a text as if it were that file's.
inline host::Result<ReadTrack> readText(const std::string& text, const std::string& name = "track",
                                        const ReadOptions& options = {}) {
  const TrackSource source{name, text};
  return readTrack({&source, 1}, options);
}

inline host::Result<ResolvedTrack> resolveText(const std::string& text, ResolveOptions options = {}) {
  if (options.sizes.output == Size{}) {
    options.sizes = {kFrame, kFrame};
  }
  auto read = readText(text);
  return read ? resolveTrack(std::move(*read), options) : tl::unexpected(read.error());
}

// "<input>: <message>", or "no fault".
template <typename T>
std::string faultText(const host::Result<T>& result) {
  return result ? "no fault" : result.error().input + ": " + result.error().message;
}

// The text is refused; what is said begins with the place and holds the matter.
inline void expectFault(const std::string& text, const std::string& place, const std::string& matter) {
  const std::string fault = faultText(resolveText(text));
  EXPECT_EQ(fault.rfind(place, 0), 0u) << fault << "\n" << text.substr(0, 400);
  EXPECT_NE(fault.find(matter), std::string::npos) << fault;
}

}  // namespace vantorel::tracks
