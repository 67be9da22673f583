#include "cli/shots/InputFiles.h"

#include <fmt/format.h>

#include <limits>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

std::int32_t InputFiles::numberAt(std::int32_t frame) const {
  std::int64_t number = frame + shift_;
  if (ended_ && number > ended_->last) {
    const std::int64_t count = std::int64_t{ended_->last} - ended_->first + 1;
    number = end_ == SequenceEnd::Hold ? ended_->last : ended_->first + (number - ended_->first) % count;
  }
  return static_cast<std::int32_t>(number);
}

bool InputFiles::isHeld(std::int32_t frame) const {
  return !hasNumber() || (ended_ && end_ == SequenceEnd::Hold && frame + shift_ >= ended_->last);
}

FramePattern::Numbers InputFiles::existing() const {
  const auto numbers = files_.existing();
  if (!numbers) {
    throw fileFailure(files_.text(), "no file of that name and a number exists; check the name");
  }
  return *numbers;
}

void InputFiles::startAt(std::int32_t start, const FrameRange& frames, const std::string& option) {
  using Limits = std::numeric_limits<std::int32_t>;
  const std::int64_t shift = std::int64_t{existing().first} - start;
  if (frames.first + shift < Limits::min() || frames.last + shift > Limits::max()) {
    throw badArgument(option, fmt::format("{} is too far from the shot's frames; give one near them", start));
  }
  shift_ = shift;
}

std::int64_t InputFiles::endAs(SequenceEnd end) {
  const FramePattern::Numbers numbers = existing();
  end_ = end;
  if (end != SequenceEnd::Stop) {
    ended_ = numbers;
  }
  return numbers.last - shift_;
}

}  // namespace vantorel::cli
