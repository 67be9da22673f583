// Rows that a tracker marks as not tracked.
#include <gtest/gtest.h>

#include "tests/tracks/Samples.h"

namespace vantorel::tracks {
namespace {

TEST(Status, RowsThatWereNotTrackedAreLeftOutAndCounted) {
  const std::string tracked = "ul 1 -0.5 0.5 7\nur 1 0.5 0.5 15\nll 1 -0.5 -0.5 7\nlr 1 0.5 -0.5 7\n";
  const auto resolved = resolveText(tracked + "ul 2 -0.4 0.5 3\nlr 2 0.4 -0.5 8\n");
  ASSERT_TRUE(resolved) << faultText(resolved);
  EXPECT_EQ(resolved->track.keys.size(), 1u);
  std::string notes;
  for (const std::string& note : resolved->notes) {
    notes += note + '\n';
  }
  EXPECT_NE(notes.find("2 rows have another status than 7 or 15"), std::string::npos) << notes;

  const auto none = resolveText("ul 1 -0.5 0.5 3\nur 1 0.5 0.5 3\nll 1 -0.5 -0.5 3\nlr 1 0.5 -0.5 3\n");
  EXPECT_NE(faultText(none).find("holds no keys"), std::string::npos) << faultText(none);
}

}  // namespace
}  // namespace vantorel::tracks
