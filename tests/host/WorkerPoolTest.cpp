#include "host/frames/WorkerPool.h"

#include <gtest/gtest.h>

namespace vantorel::host {
namespace {

// How often each row was run, by runs that run another in every row.
struct Counts {
  explicit Counts(WorkerPool& shared, std::size_t rows, int depth) : pool(shared), seen(rows), nesting(depth) {}

  static void run(void* data, std::int32_t begin, std::int32_t end) {
    Counts& counts = *static_cast<Counts*>(data);
    for (std::int32_t y = begin; y < end; ++y) {
      ++counts.seen[static_cast<std::size_t>(y)];
      if (counts.nesting > 0) {
        EXPECT_TRUE(runAndCheck(counts.pool, 10, 0, counts.nesting - 1));
      }
    }
  }

  // Whether rows 3 and up were run once each.
  static bool runAndCheck(WorkerPool& pool, std::int32_t rows, unsigned threads, int depth) {
    Counts counts(pool, static_cast<std::size_t>(rows), depth);
    pool.run(3, rows, threads, {run, &counts});
    for (std::size_t y = 0; y < counts.seen.size(); ++y) {
      if (counts.seen[y] != (y < 3 ? 0 : 1)) {
        return false;
      }
    }
    return true;
  }

  WorkerPool& pool;
  std::vector<std::atomic<int>> seen;
  int nesting;
};

TEST(WorkerPoolTest, RunsEveryRowOnceForManyCallersAndInsideOfRows) {
  WorkerPool pool;
  std::atomic<int> right = 0;
  std::vector<std::jthread> callers;
  callers.reserve(4);
  for (int i = 0; i < 4; ++i) {
    callers.emplace_back([&, i] {
      for (int repeat = 0; repeat < 50; ++repeat) {
        right += Counts::runAndCheck(pool, 40 + repeat, static_cast<unsigned>(i), i % 2);
      }
    });
  }
  callers.clear();
  EXPECT_EQ(200, right);
}

}  // namespace
}  // namespace vantorel::host
