#include "cli/shots/Progress.h"

#include <fmt/format.h>
#include <sys/ioctl.h>

#include <cmath>
#include <cstdio>

#include "cli/base/Console.h"
#include "cli/base/Text.h"

namespace vantorel::cli {

namespace {

constexpr std::chrono::milliseconds kBetweenDrawings{100};

// The terminal's width; more than any line needs if it is not a terminal.
int columns() {
  winsize size{};
  return ioctl(fileno(console()), TIOCGWINSZ, &size) == 0 && size.ws_col > 1 ? size.ws_col : 1000;
}

std::string durationText(double seconds) {
  const std::int64_t whole = std::llround(seconds);
  if (whole >= 3600) {
    return fmt::format("{}:{:02}:{:02}", whole / 3600, whole / 60 % 60, whole % 60);
  }
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

Progress::Progress(bool shown, std::int64_t frames) : shown_(shown), frames_(frames) {}

Progress::~Progress() {
  erase();
}

void Progress::rows(double share) {
  if (!shown_) {
    return;
  }
  const std::scoped_lock lock(mutex_);
  draw(fmt::format("rendering {:3.0f} %", share * 100.0), false);
}

void Progress::frameDone(bool skipped) {
  const std::scoped_lock lock(mutex_);
  ++done_;
  skipped_ += skipped ? 1 : 0;
  if (shown_ && frames_ > 1) {
    draw(framesLine(), done_ == frames_);
  }
}

void Progress::message(const std::string& text) {
  const std::scoped_lock lock(mutex_);
  erase();
  std::fprintf(console(), "vantorel: %s\n", escaped(text).c_str());
}

void Progress::finish(const std::string& line) {
  const std::scoped_lock lock(mutex_);
  if (shown_) {
    erase();
    std::fprintf(console(), "%s\n", escaped(line).c_str());
  }
}

std::int64_t Progress::framesDone() {
  const std::scoped_lock lock(mutex_);
  return done_;
}

double Progress::seconds() const {
  return std::chrono::duration<double>(Clock::now() - start_).count();
}

void Progress::draw(const std::string& line, bool always) {
  const Clock::time_point now = Clock::now();
  if (!always && now - last_drawn_ < kBetweenDrawings) {
    return;
  }
  last_drawn_ = now;
  line_is_there_ = true;
  // The width is queried each time in case the window was resized: a line that wraps could not be erased.
  std::fprintf(console(), "\r\x1b[K%.*s", columns() - 1, line.c_str());
}

void Progress::erase() {
  if (line_is_there_) {
    std::fputs("\r\x1b[K", console());
  }
  line_is_there_ = false;
}

std::string Progress::framesLine() const {
  const double elapsed = seconds();
  const std::int64_t rendered = done_ - skipped_;
  const double rate = elapsed > 0 ? static_cast<double>(rendered) / elapsed : 0.0;
  std::string line = fmt::format("{} of {} frames", done_, frames_);
  if (rendered > 0 && rate > 0) {
    line += fmt::format(", {:.1f} frames/s, {} left", rate, durationText(static_cast<double>(frames_ - done_) / rate));
  }
  return line;
}

}  // namespace vantorel::cli
