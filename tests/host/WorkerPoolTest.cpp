#include "host/frames/WorkerPool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace vantorel::host {
namespace {

// Whether every row from 3 on is run once, and likewise the rows that each of them runs, nested `depth` deep.
bool runsEachRowOnce(WorkerPool& pool, std::int32_t rows, unsigned threads, int depth) {
  struct Pass {
    WorkerPool& pool;
    int depth;
    std::vector<std::atomic<int>> times;
  } pass{pool, depth, std::vector<std::atomic<int>>(static_cast<std::size_t>(rows))};
  const auto run = [](void* data, std::int32_t begin, std::int32_t end) {
    Pass& of = *static_cast<Pass*>(data);
    for (std::int32_t y = begin; y < end; ++y) {
      ++of.times[static_cast<std::size_t>(y)];
      EXPECT_TRUE(of.depth == 0 || runsEachRowOnce(of.pool, 10, 0, of.depth - 1));
    }
  };
  pool.run(3, rows, threads, {run, &pass});
  const auto third = pass.times.begin() + 3;
  return std::all_of(pass.times.begin(), third, [](int times) { return times == 0; }) &&
         std::all_of(third, pass.times.end(), [](int times) { return times == 1; });
}

TEST(WorkerPoolTest, RunsEveryRowOnceForManyCallersAndInsideOfRows) {
  WorkerPool pool;
  std::atomic<int> right = 0;
  std::vector<std::jthread> callers;
  callers.reserve(4);
  for (int i = 0; i < 4; ++i) {
    callers.emplace_back([&, i] {
      for (int repeat = 0; repeat < 50; ++repeat) {
        right += runsEachRowOnce(pool, 40 + repeat, static_cast<unsigned>(i), i % 2);
      }
    });
  }
  callers.clear();
  EXPECT_EQ(200, right);
}

}  // namespace
}  // namespace vantorel::host
