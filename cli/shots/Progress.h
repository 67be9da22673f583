// The progress line on the terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <mutex>
#include <string>

namespace vantorel::cli {

// Writes to standard error, overwriting its own line. Safe to use from several threads.
class Progress {
 public:
  // `frames` is the total number of frames.
  Progress(bool shown, std::int64_t frames);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  // Whether there is only one picture, for which progress by rows is shown.
  bool showsRows() const { return shown_ && frames_ == 1; }

  // The share of a single picture's rows that are done, 0 to 1.
  void rows(double share);
  // Skipped frames count towards the total but not towards the rate.
  void frameDone(bool skipped);

  // Shows the final line, if progress is shown.
  void finish(const std::string& line);

  // How many frames are done.
  std::int64_t framesDone();

  // The time since construction.
  double seconds() const;

  // Prints a message of the command on its own line, above the progress line.
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
