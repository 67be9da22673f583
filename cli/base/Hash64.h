// A fast 64-bit hash for detecting changed bytes. It does not protect against forgery.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace vantorel::cli {

class Hash64 {
 public:
  // Changing any one word changes the value, since every step maps states one to one. The same bytes split into
  // different parts give a different value.
  void add(std::span<const std::byte> part) {
    std::uint64_t word = 0;
    std::size_t at = 0;
    for (; at + sizeof word <= part.size(); at += sizeof word) {
      std::memcpy(&word, part.data() + at, sizeof word);
      step(word);
    }
    word = 0;
    std::memcpy(&word, part.data() + at, part.size() - at);
    step(word);
    step(part.size());
  }

  std::uint64_t value() const { return state_; }

 private:
  void step(std::uint64_t word) {
    state_ = (state_ ^ word) * 0x9E3779B97F4A7C15u;
    state_ ^= state_ >> 32;
  }

  std::uint64_t state_ = 0x243F6A8885A308D3u;
};

}  // namespace vantorel::cli
