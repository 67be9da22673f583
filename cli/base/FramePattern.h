// File names with a placeholder for the frame number.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace vantorel::cli {

// A name with at most one run of '#' or one %d, %04d, ...; "%%" stands for a percent sign.
class FramePattern {
 public:
  FramePattern() = default;

  // Throws CommandError, naming `input`, for a second number or another % conversion.
  static FramePattern parse(const std::string& input, const std::string& text);

  // The name taken literally, whatever characters it contains.
  static FramePattern literal(const std::string& text);

  bool hasNumber() const { return has_number_; }
  std::string path(std::int32_t frame) const;
  // The lowest and highest number for which a file exists.
  struct Numbers {
    std::int32_t first = 0;
    std::int32_t last = 0;
  };
  // Empty if there is no file or the folder cannot be listed.
  std::optional<Numbers> existing() const;
  const std::string& text() const { return text_; }

 private:
  std::string text_;
  std::string before_;
  std::string after_;
  bool has_number_ = false;
  int width_ = 0;
  bool zero_padded_ = false;
};

}  // namespace vantorel::cli
