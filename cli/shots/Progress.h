// The line on the terminal that tells how far a rendering is.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace vantorel::cli {

// Writes to standard error, overwriting its own line. Safe to use from several threads.
class Progress {
 public:
  // `frames` is how many there are in all.
  Progress(bool shown, std::int64_t frames);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Whether there is one picture, of which rows are shown.
  bool showsRows() const { return shown_ && frames_ == 1; }

  // The share of a single picture's rows that are done, 0 to 1.
  void rows(double share);
  // Frames that were there already count towards the total but not towards the rate.
  void frameDone(bool skipped);

  // Shows, where progress is shown, what has been done.
  void finish(const std::string& line);

  // How many frames are done.
  std::int64_t framesDone();

  // Since this was made.
  double seconds() const;

  // A message of the command on a line of its own, above the progress line.
  void message(const std::string& text);

 private:
  using Clock = std::chrono::steady_clock;

  void draw(const std::string& line, bool always);
  void erase();
  std::string framesLine() const;

  const bool shown_;
  const std::int64_t frames_;
  const Clock::time_point start_ = Clock::now();
  std::mutex mutex_;
  std::int64_t done_ = 0;
  std::int64_t skipped_ = 0;
  Clock::time_point last_drawn_{};
  bool line_is_there_ = false;
};

}  // namespace vantorel::cli
