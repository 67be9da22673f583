#include "cli/corners/JsonLines.h"

#include <iterator>
#include <nlohmann/json.hpp>
#include <vector>

namespace vantorel::cli {

namespace {

// Values nested deeper than this have no line recorded; their paths would grow without bounds.
constexpr std::size_t kDeepest = 8;

// What the parser has read so far. A number is known to have ended only when the character after it has been read.
struct Position {
  int line = 1;
  bool after_break = false;

  void advance(char c) {
    after_break = c == '\n';
    line += after_break ? 1 : 0;
  }
};

class CountingIterator {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = std::ptrdiff_t;
  using pointer = const char*;
  using reference = const char&;

  CountingIterator(const char* at, Position* position) : at_(at), position_(position) {}
  reference operator*() const { return *at_; }
  CountingIterator& operator++() {
    position_->advance(*at_);
    ++at_;
    return *this;
  }
  CountingIterator operator++(int) {
    CountingIterator before = *this;
    ++*this;
    return before;
  }
  bool operator==(const CountingIterator& other) const { return at_ == other.at_; }
  bool operator!=(const CountingIterator& other) const { return at_ != other.at_; }

 private:
  const char* at_;
  Position* position_;
};

class LineRecorder : public nlohmann::json_sax<nlohmann::json> {
 public:
  explicit LineRecorder(const Position& position) : position_(position) {}

  bool null() override { return value(); }
  bool boolean(bool) override { return value(); }
  bool number_integer(number_integer_t) override { return number(); }
  bool number_unsigned(number_unsigned_t) override { return number(); }
  bool number_float(number_float_t, const string_t&) override { return number(); }
  bool string(string_t&) override { return value(); }
  bool binary(binary_t&) override { return value(); }
  bool start_object(std::size_t) override { return start(false); }
  bool start_array(std::size_t) override { return start(true); }
  bool end_object() override { return end(); }
  bool end_array() override { return end(); }
  bool key(string_t& name) override {
    open_.back().name = name;
    return true;
  }
  bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) override { return false; }

  JsonLines take() { return std::move(lines_); }

 private:
  struct Level {
    bool is_array;
    std::size_t index;
    std::string name;
  };

  std::string path() const {
    std::string text;
    for (const Level& level : open_) {
      text += '/' + (level.is_array ? std::to_string(level.index) : level.name);
    }
    return text;
  }
  bool record(int line) {
    if (open_.size() <= kDeepest) {
      const auto [at, is_new] = lines_.line_of.insert_or_assign(path(), line);
      if (!is_new && !lines_.repeated) {
        lines_.repeated = at->first;
      }
    }
    return true;
  }
  bool next() {
    if (!open_.empty() && open_.back().is_array) {
      ++open_.back().index;
    }
    return true;
  }
  bool value() { return record(position_.line) && next(); }
  bool number() { return record(position_.line - (position_.after_break ? 1 : 0)) && next(); }
  bool start(bool is_array) {
    record(position_.line);
    open_.push_back({is_array, 0, {}});
    return true;
  }
  bool end() {
    open_.pop_back();
    return next();
  }

  const Position& position_;
  std::vector<Level> open_;
  JsonLines lines_;
};

}  // namespace

JsonLines jsonLines(const std::string& text) {
  Position position;
  LineRecorder recorder(position);
  nlohmann::json::sax_parse(CountingIterator(text.data(), &position),
                            CountingIterator(text.data() + text.size(), &position), &recorder);
  return recorder.take();
}

}  // namespace vantorel::cli
