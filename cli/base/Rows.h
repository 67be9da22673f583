// Work on the rows of pictures, by several threads.
#pragma once

#include <cstdint>
#include <exception>
#include <mutex>

namespace vantorel::cli {

// From now on at most so many threads of this process work on rows, however many pictures there are at once; all that
// the machine has unless this is called.
void limitRowThreads(unsigned threads);

// Calls run(data, begin, end) for disjoint ranges that make up [0, rows); it must not throw. Where threads or memory
// for them are lacking, fewer take part.
void runRows(std::int32_t rows, void* data, void (*run)(void* data, std::int32_t begin, std::int32_t end));

// Calls work(y) once for each row of [0, rows), and returns when all are done. The first exception is passed on; rows
// that come after it may be left out.
template <typename Work>
void forRows(std::int32_t rows, const Work& work) {
  struct Rows {
    const Work& work;
    std::mutex mutex{};
    std::exception_ptr failure{};
  } shared{work};
  runRows(rows, &shared, [](void* data, std::int32_t begin, std::int32_t end) {
    auto& [work_on, mutex, failure] = *static_cast<Rows*>(data);
    try {
      for (std::int32_t y = begin; y < end; ++y) {
        work_on(y);
      }
    } catch (...) {
      const std::scoped_lock lock(mutex);
      failure = failure ? failure : std::current_exception();
    }
  });
  if (shared.failure) {
    std::rethrow_exception(shared.failure);
  }
}

}  // namespace vantorel::cli
