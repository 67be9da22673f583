// Flame stabilizer setups: "Channel top_left/ref/x" and so on, each with "Key n", "Frame", "Value", "Interpolation" and
// "End" for every key, or with only a "Value".
#include <fmt/format.h>

#include <array>
#include <iterator>
#include <map>

#include "tracks/formats/Common.h"
#include "tracks/formats/Formats.h"

namespace vantorel::tracks {

namespace {

constexpr std::array<std::string_view, kCornerCount> kNames{"top_left", "top_right", "bottom_left", "bottom_right"};
constexpr std::string_view kTracked = "/ref/";

// The point's name and axis of "top_left/ref/x"; an empty name for other channels.
struct ChannelName {
  std::string_view point;
  bool is_y = false;
};
ChannelName channelName(std::string_view path) {
  const std::size_t at = path.find(kTracked);
  if (at == std::string_view::npos ||
      (path.substr(at + kTracked.size()) != "x" && path.substr(at + kTracked.size()) != "y")) {
    return {};
  }
  return {path.substr(0, at), path.back() == 'y'};
}

bool sniff(std::string_view text) {
  Lines lines(text, "");
  std::vector<std::string_view> words;
  while (lines.nextContent()) {
    if (splitWords(lines.text(), words) == 2 && words[0] == "Channel") {
      return true;
    }
  }
  return false;
}

struct ChannelPair {
  Channel x;
  Channel y;
};

class FlameReader {
 public:
  explicit FlameReader(const TrackText& text) : lines_(text.text, text.file) {}

  void read(TrackDocument& document) {
    std::vector<std::string_view> words;
    while (lines_.nextContent()) {
      splitWords(lines_.text(), words);
      takeLine(words);
    }
    for (const std::string_view name : order_) {
      ChannelPair& pair = pairs_[name];
      document.points.push_back(joinChannels(std::string(name), std::move(pair.x), std::move(pair.y), lines_.file()));
    }
    if (keys_ > 0 && held_ == keys_) {
      document.interpolation = host::Interpolation::Hold;
    }
  }

 private:
  void takeLine(const std::vector<std::string_view>& words) {
    const std::string_view word = words[0];
    const std::string_view value = words.size() > 1 ? words[1] : std::string_view();
    if (word == "Channel") {
      beginChannel(value);
    } else if (channel_ == nullptr) {
      return;
    } else if (word == "Key") {
      in_key_ = true;
      frame_.reset();
    } else if (word == "End") {
      in_key_ = false;
    } else if (word == "Frame" && in_key_) {
      frame_ = lines_.decimal(value, "Frame");
    } else if (word == "Interpolation" && in_key_) {
      held_ += value == "constant" || value == "hold" ? 1u : 0u;
    } else if (word == "Value") {
      takeValue(lines_.decimal(value, "Value"));
    }
  }

  void beginChannel(std::string_view path) {
    const ChannelName name = channelName(path);
    in_key_ = false;
    channel_ = nullptr;
    if (name.point.empty()) {
      return;
    }
    const auto [found, is_new] = pairs_.try_emplace(name.point);
    if (is_new) {
      order_.push_back(name.point);
    }
    channel_ = name.is_y ? &found->second.y : &found->second.x;
    channel_->line = lines_.number();
  }

  void takeValue(double value) {
    if (!in_key_) {
      channel_->keys.assign(1, {0.0, value});
      channel_->constant = true;
      return;
    }
    if (!frame_) {
      lines_.fail("Value", "stands before its key's Frame; expected Frame, then Value");
    }
    if (channel_->constant) {  // the value before the keys only counts if there are no keys
      channel_->keys.clear();
      channel_->constant = false;
    }
    channel_->keys.emplace_back(*frame_, value);
    ++keys_;
  }

  Lines lines_;
  std::map<std::string_view, ChannelPair> pairs_;
  std::vector<std::string_view> order_;
  Channel* channel_ = nullptr;
  bool in_key_ = false;
  std::optional<double> frame_;
  std::size_t keys_ = 0;
  std::size_t held_ = 0;
};

void read(const TrackText& text, TrackDocument& document) {
  FlameReader(text).read(document);
}

void write(const CornerTrack& track, const CornerList& corners, std::string& text) {
  const CoordinateText coordinate(track);
  const char* interpolation = track.interpolation == host::Interpolation::Hold ? "constant" : "linear";
  for (const Corner corner : corners) {
    for (const bool is_y : {false, true}) {
      const auto value_of = [&](const CornerKey& key) {
        return coordinate(is_y ? key.points[corner].y : key.points[corner].x);
      };
      fmt::format_to(std::back_inserter(text), "Channel {}{}{}\n\tExtrapolation constant\n\tValue {}\n\tSize {}\n",
                     kNames[corner], kTracked, is_y ? 'y' : 'x', value_of(track.keys.front()), track.keys.size());
      for (std::size_t k = 0; k < track.keys.size(); ++k) {
        fmt::format_to(std::back_inserter(text),
                       "\tKey {}\n\t\tFrame {}\n\t\tValue {}\n\t\tInterpolation {}\n\t\tEnd\n", k,
                       frameText(track.keys[k].frame), value_of(track.keys[k]), interpolation);
      }
      text += "\tEnd\n";
    }
  }
}

}  // namespace

constexpr Format kFlameFormat{"flame",       "Flame stabilizer setup",
                              ".stabilizer", {Origin::LowerLeft, Units::Pixels, Basis::Output, {}, 0.5, {}, {}},
                              true,          false,
                              sniff,         read,
                              write,         true};

}  // namespace vantorel::tracks
