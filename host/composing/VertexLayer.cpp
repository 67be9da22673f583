#include "host/composing/VertexLayer.h"

#include <algorithm>
#include <cstdint>
#include <type_traits>

namespace vantorel::host {

namespace {

constexpr int kChannels = 4;

template <typename Channel>
Channel mean(Channel a, Channel b) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return (a + b) * Channel{0.5};
  } else {
    return static_cast<Channel>((std::uint32_t{a} + b + 1U) / 2U);
  }
}

template <typename Channel>
Channel mean(Channel a, Channel b, Channel c, Channel d) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return (a + b + c + d) * Channel{0.25};
  } else {
    return static_cast<Channel>((std::uint32_t{a} + b + c + d + 2U) / 4U);
  }
}

// How many pixels are enlarged at once: the compiler turns loops of a fixed length over an array into vector code.
constexpr int kRunLength = 16;

// `count` pixels of an enlarged row, at most kRunLength: for each of the layer's the mean of it and the one before it,
// and it itself. All pointers are to pixels, those of `before` to the ones before. `upper` is `lower` in the rows
// between the borders.
template <typename Channel>
void enlargeRun(const Channel* upper_before, const Channel* upper, const Channel* lower_before, const Channel* lower,
                int count, Channel* out) {
  Channel border[kRunLength * kChannels];
  Channel centre[kRunLength * kChannels];
  const int channels = count * kChannels;
  if (upper == lower) {
    for (int i = 0; i < channels; ++i) {
      border[i] = mean(lower_before[i], lower[i]);
      centre[i] = lower[i];
    }
  } else {
    for (int i = 0; i < channels; ++i) {
      border[i] = mean(upper_before[i], upper[i], lower_before[i], lower[i]);
      centre[i] = mean(upper[i], lower[i]);
    }
  }
  for (int i = 0; i < channels; i += kChannels, out += 2 * kChannels) {
    std::copy_n(border + i, kChannels, out);
    std::copy_n(centre + i, kChannels, out + kChannels);
  }
}

// The columns [begin, end) of the layer in one row of the enlarged layer: that of the layer's row `lower` when both are
// the same, else the border above it.
template <typename Channel>
void enlargeRow(const Channel* upper, const Channel* lower, int begin, int end, Channel* out) {
  int x = begin;
  if (x == 0 && x < end) {
    enlargeRun(upper, upper, lower, lower, 1, out);
    ++x;
  }
  const auto run = [&](int count) {
    const int here = x * kChannels;
    const int before = here - kChannels;
    enlargeRun(upper + before, upper + here, lower + before, lower + here, count, out + 2 * kChannels * (x - begin));
  };
  for (; x + kRunLength <= end; x += kRunLength) {
    run(kRunLength);
  }
  run(std::max(end - x, 0));
}

template <typename Channel>
void enlargeTwice(const ConstImageView& layer, const Rect& part, const ImageView& enlarged) {
  const auto row = [&](int y) { return reinterpret_cast<const Channel*>(layer.row(y)); };
  for (int y = 2 * part.top; y < 2 * part.bottom; ++y) {
    const Channel* const lower = row(y / 2);
    const Channel* const upper = y % 2 == 0 ? row(std::max(y / 2 - 1, 0)) : lower;
    enlargeRow(upper, lower, part.left, part.right, reinterpret_cast<Channel*>(enlarged.pixel(2 * part.left, y)));
  }
}

// `count` channels of a row of means, at most kRunLength pixels' of them; the pointers as above.
template <typename Channel>
void averageRun(const Channel* upper_before, const Channel* upper, const Channel* lower_before, const Channel* lower,
                int count, Channel* out) {
  Channel means[kRunLength * kChannels];
  for (int i = 0; i < count; ++i) {
    means[i] = mean(upper_before[i], upper[i], lower_before[i], lower[i]);
  }
  std::copy_n(means, count, out);
}

template <typename Channel>
void averageRow(const Channel* upper, const Channel* lower, int begin, int end, Channel* out) {
  constexpr int kRun = kRunLength * kChannels;
  int i = begin * kChannels;
  if (begin == 0) {
    averageRun(upper, upper, lower, lower, kChannels, out);
    i = kChannels;
  }
  const auto run = [&](int count) {
    const int before = i - kChannels;
    averageRun(upper + before, upper + i, lower + before, lower + i, count, out + i);
  };
  for (; i + kRun <= end * kChannels; i += kRun) {
    run(kRun);
  }
  run(std::max(end * kChannels - i, 0));
}

template <typename Channel>
void averageAtVertices(const ConstImageView& layer, const Rect& part, const ImageView& averaged) {
  const auto row = [&](int y) { return reinterpret_cast<const Channel*>(layer.row(y)); };
  for (int y = part.top; y < part.bottom; ++y) {
    averageRow(row(std::max(y - 1, 0)), row(y), part.left, part.right, reinterpret_cast<Channel*>(averaged.row(y)));
  }
}

// The pixels on both sides of a position, and the share of the second one, in 1 / factor.
struct Neighbours {
  int before;
  int after;
  int share;
};

Neighbours neighboursOf(int position, int factor, int size) {
  const int from_centre = position + factor - factor / 2;  // of the pixel before the first one
  const int after = from_centre / factor;
  return {std::max(after - 1, 0), std::min(after, size - 1), from_centre % factor};
}

// What a layer's values are multiplied with in channels of another type.
template <typename Channel, typename Out>
constexpr double kScale = std::is_same_v<Channel, Out> ? 1.0 : 257.0;

template <typename Channel, typename Out = Channel>
void enlargeByFactor(const ConstImageView& layer, int factor, const Rect& part, const ImageView& enlarged) {
  for (int y = factor * part.top; y < factor * part.bottom; ++y) {
    const Neighbours rows = neighboursOf(y, factor, layer.size.height);
    auto* out = reinterpret_cast<Out*>(enlarged.pixel(factor * part.left, y));
    for (int x = factor * part.left; x < factor * part.right; ++x, out += kChannels) {
      const Neighbours columns = neighboursOf(x, factor, layer.size.width);
      const auto at = [&](int column, int row, int c) {
        return static_cast<double>(reinterpret_cast<const Channel*>(layer.pixel(column, row))[c]);
      };
      for (int c = 0; c < kChannels; ++c) {
        const auto along = [&](int row) {
          return at(columns.before, row, c) * (factor - columns.share) + at(columns.after, row, c) * columns.share;
        };
        const double sum = along(rows.before) * (factor - rows.share) + along(rows.after) * rows.share;
        const double mean = sum * kScale<Channel, Out> / (factor * factor);
        out[c] = static_cast<Out>(std::is_floating_point_v<Out> ? mean : mean + 0.5);
      }
    }
  }
}

template <typename Channel>
void enlarge(const ConstImageView& layer, int factor, const Rect& part, const ImageView& enlarged) {
  if (factor == 1) {
    averageAtVertices<Channel>(layer, part, enlarged);
  } else if (factor == 2) {
    enlargeTwice<Channel>(layer, part, enlarged);
  } else {
    enlargeByFactor<Channel>(layer, factor, part, enlarged);
  }
}

}  // namespace

void enlargeToVertices(const ConstImageView& layer, int factor, const Rect& part, const ImageView& enlarged) {
  if (layer.depth == Depth::Bits8 && enlarged.depth == Depth::Bits16) {
    return enlargeByFactor<std::uint8_t, std::uint16_t>(layer, factor, part, enlarged);
  }
  switch (layer.depth) {
    case Depth::Bits8:
      return enlarge<std::uint8_t>(layer, factor, part, enlarged);
    case Depth::Bits16:
      return enlarge<std::uint16_t>(layer, factor, part, enlarged);
    case Depth::Float:
      return enlarge<float>(layer, factor, part, enlarged);
  }
}

void narrow(const ConstImageView& fine, const ImageView& picture) {
  for (int y = 0; y < picture.size.height; ++y) {
    const auto* const from = reinterpret_cast<const std::uint16_t*>(fine.row(y));
    auto* const to = reinterpret_cast<std::uint8_t*>(picture.row(y));
    for (int i = 0; i < picture.size.width * kChannels; ++i) {
      to[i] = static_cast<std::uint8_t>((from[i] + 128) / 257);
    }
  }
}

}  // namespace vantorel::host
