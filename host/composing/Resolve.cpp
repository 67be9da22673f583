#include "host/composing/Resolve.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <type_traits>
#include <utility>

#include "host/composing/SampleCount.h"

namespace vantorel::host {

namespace {

constexpr int kChannels = 4;
constexpr int kBatch = 64;  // pixels averaged at a time, so that their sums stay in the L1 cache

// The value, 0 or more, as a channel: to the nearest integer, halves up.
template <typename Channel>
Channel rounded(double value) {
  if constexpr (std::is_floating_point_v<Channel>) {
    return static_cast<Channel>(value);
  } else {
    return static_cast<Channel>(value + 0.5);  // NOLINT(bugprone-incorrect-roundings)
  }
}

template <typename Channel>
const Channel* channelsAt(const ConstImageView& view, int x, int y) {
  return reinterpret_cast<const Channel*>(view.pixel(x, y));
}

// The means of fully covered pixels: first the sums of columns, then the sums along the row.
template <typename Channel, int kSamples>
void averageSolid(const ConstImageView& samples, int x, int y, int count, Channel* out) {
  using Sum = std::conditional_t<std::is_floating_point_v<Channel>, float,
                                 std::conditional_t<sizeof(Channel) == 1, std::uint16_t, std::uint32_t>>;
  constexpr int kGroup = kSamples * kChannels;
  std::array<Sum, std::size_t{kBatch} * kGroup> columns;
  const int values = count * kGroup;
  const Channel* row = channelsAt<Channel>(samples, x, y);
  for (int i = 0; i < values; ++i) {
    columns[static_cast<std::size_t>(i)] = static_cast<Sum>(row[i]);
  }
  for (int r = 1; r < kSamples; ++r) {
    row = channelsAt<Channel>(samples, x, y + r);
    for (int i = 0; i < values; ++i) {
      columns[static_cast<std::size_t>(i)] = static_cast<Sum>(columns[static_cast<std::size_t>(i)] + row[i]);
    }
  }
  for (int i = 0; i < count; ++i, out += kChannels) {
    const Sum* const group = columns.data() + i * kGroup;
    for (int c = 0; c < kChannels; ++c) {
      if constexpr (std::is_floating_point_v<Channel>) {
        float sum = 0.0F;
        for (int k = 0; k < kSamples; ++k) {
          sum += group[k * kChannels + c];
        }
        out[c] = sum / static_cast<float>(kSamples * kSamples);
      } else {
        std::uint32_t sum = kSamples * kSamples / 2;
        for (int k = 0; k < kSamples; ++k) {
          sum += group[k * kChannels + c];
        }
        out[c] = static_cast<Channel>(sum / (kSamples * kSamples));
      }
    }
  }
}

// The rows of samples that make up one row of pixels.
template <int kSamples>
struct SampleRows {
  std::array<RowCoverage, std::size_t{kSamples}> rows;
  // Pixels of the row, counted from the first sample: [begin, end) are covered at least partly, [solid_begin,
  // solid_end) fully.
  int begin = 0;
  int solid_begin = 0;
  int solid_end = 0;
  int end = 0;

  SampleRows(const CoverageRegion& region, int first_row)
      : rows(rowsOf(region, first_row, std::make_integer_sequence<int, kSamples>())) {
    bool found = false;
    for (const RowCoverage& row : rows) {
      if (row.begin < row.end) {
        const int row_begin = floorDivided(row.begin);
        const int row_end = -floorDivided(-row.end);
        begin = found ? std::min(begin, row_begin) : row_begin;
        end = found ? std::max(end, row_end) : row_end;
        found = true;
      }
    }
    solid_begin = begin;
    solid_end = end;
    for (const RowCoverage& row : rows) {
      solid_begin = std::max(solid_begin, -floorDivided(-row.solid_begin));
      solid_end = std::min(solid_end, floorDivided(row.solid_end));
      if (row.solid_begin >= row.solid_end) {
        solid_end = solid_begin;
      }
    }
    if (solid_begin >= solid_end) {
      solid_begin = end;
      solid_end = end;
    }
  }

 private:
  template <int... kRows>
  static std::array<RowCoverage, sizeof...(kRows)> rowsOf(const CoverageRegion& region, int first_row,
                                                          std::integer_sequence<int, kRows...> /*rows*/) {
    return {region.row(first_row + kRows)...};
  }

  static int floorDivided(int value) { return value >= 0 ? value / kSamples : -((-value + kSamples - 1) / kSamples); }
};

template <typename Channel, int kSamples>
void weightEdge(const ConstImageView& samples, int first_row, const SampleRows<kSamples>& rows, int pixel,
                Channel* out) {
  std::array<double, kChannels> sums{};
  for (int r = 0; r < kSamples; ++r) {
    const RowCoverage& coverage = rows.rows[static_cast<std::size_t>(r)];
    for (int x = pixel * kSamples; x < (pixel + 1) * kSamples; ++x) {
      if (x < coverage.begin || x >= coverage.end) {
        continue;
      }
      const bool is_solid = x >= coverage.solid_begin && x < coverage.solid_end;
      const double weight = is_solid ? 1.0 : coverage.at(x);
      const Channel* const sample = channelsAt<Channel>(samples, x, first_row + r);
      for (std::size_t c = 0; c < kChannels; ++c) {
        sums[c] += weight * static_cast<double>(sample[c]);
      }
    }
  }
  for (std::size_t c = 0; c < kChannels; ++c) {
    out[c] = rounded<Channel>(sums[c] / (kSamples * kSamples));
  }
}

template <typename Channel, int kSamples>
void resolveRow(const ConstImageView& samples, const CoverageRegion& region, int from_x, int sample_row, Channel* out,
                int width) {
  const SampleRows<kSamples> rows(region, sample_row);
  const auto inside = [&](int pixel) { return std::clamp(pixel - from_x, 0, width); };
  const int begin = inside(rows.begin);
  const int end = std::max(begin, inside(rows.end));
  const int solid_begin = std::clamp(inside(rows.solid_begin), begin, end);
  const int solid_end = std::clamp(inside(rows.solid_end), solid_begin, end);
  const auto at = [&](int x) { return out + x * kChannels; };
  std::memset(out, 0, sizeof(Channel) * static_cast<std::size_t>(begin) * kChannels);
  for (int x = begin; x < solid_begin; ++x) {
    weightEdge<Channel, kSamples>(samples, sample_row, rows, x + from_x, at(x));
  }
  if constexpr (kSamples == 1) {
    const Channel* const from = channelsAt<Channel>(samples, solid_begin + from_x, sample_row);
    if (from != at(solid_begin)) {
      std::memmove(at(solid_begin), from,
                   sizeof(Channel) * kChannels * static_cast<std::size_t>(solid_end - solid_begin));
    }
  } else {
    for (int x = solid_begin; x < solid_end; x += kBatch) {
      averageSolid<Channel, kSamples>(samples, (x + from_x) * kSamples, sample_row, std::min(kBatch, solid_end - x),
                                      at(x));
    }
  }
  for (int x = solid_end; x < end; ++x) {
    weightEdge<Channel, kSamples>(samples, sample_row, rows, x + from_x, at(x));
  }
  std::memset(at(end), 0, sizeof(Channel) * static_cast<std::size_t>(width - end) * kChannels);
}

template <typename Channel, int kSamples>
void resolveAll(const ConstImageView& samples, const CoverageRegion& region, int from_x, int from_y,
                const ImageView& output) {
  for (int y = 0; y < output.size.height; ++y) {
    resolveRow<Channel, kSamples>(samples, region, from_x, (y + from_y) * kSamples,
                                  reinterpret_cast<Channel*>(output.row(y)), output.size.width);
  }
}

template <typename Channel>
void resolveDepth(const ConstImageView& samples, int n, const CoverageRegion& region, int from_x, int from_y,
                  const ImageView& output) {
  switch (n) {
    case 1:
      return resolveAll<Channel, 1>(samples, region, from_x, from_y, output);
    case 2:
      return resolveAll<Channel, 2>(samples, region, from_x, from_y, output);
    case 3:
      return resolveAll<Channel, 3>(samples, region, from_x, from_y, output);
    case 4:
      return resolveAll<Channel, 4>(samples, region, from_x, from_y, output);
    case 6:
      return resolveAll<Channel, 6>(samples, region, from_x, from_y, output);
    default:
      return resolveAll<Channel, kMostSamples>(samples, region, from_x, from_y, output);
  }
}

}  // namespace

void resolve(const ConstImageView& samples, int n, const CoverageRegion& region, int from_x, int from_y,
             const ImageView& output) {
  switch (output.depth) {
    case Depth::Bits8:
      return resolveDepth<std::uint8_t>(samples, n, region, from_x, from_y, output);
    case Depth::Bits16:
      return resolveDepth<std::uint16_t>(samples, n, region, from_x, from_y, output);
    case Depth::Float:
      return resolveDepth<float>(samples, n, region, from_x, from_y, output);
  }
}

}  // namespace vantorel::host
