#include "host/composing/ScanEdges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace vantorel::host {

namespace {

// The scan's borders drift from the true ones, by up to 1/65536 pixel a row.
constexpr double kDrift = 0.2;

struct Columns {
  int begin = 0;
  int end = 0;
  bool hold(int x) const { return x >= begin && x < end; }
};

// The pixels of a row that the scan draws wholly.
Columns wholeColumns(const CoverageRegion& scanned, const Box& bounds, int y, int width) {
  if (y < bounds.top || y + 1.0 > bounds.bottom) {
    return {};
  }
  const CoverageRegion::Span span = scanned.spanAt(y);
  const double limit = width;
  return {static_cast<int>(std::ceil(std::clamp(span.left + kDrift, 0.0, limit))),
          static_cast<int>(std::floor(std::clamp(span.right - kDrift, 0.0, limit)))};
}

struct Step {
  int x;
  int y;
};

// The neighbours up to kScanApron away, nearest first.
constexpr std::array<Step, 24> kNeighbours{{{1, 0}, {-1, 0}, {0, 1},  {0, -1},  {1, 1}, {-1, 1}, {1, -1}, {-1, -1},
                                            {2, 0}, {-2, 0}, {0, 2},  {0, -2},  {2, 1}, {-2, 1}, {2, -1}, {-2, -1},
                                            {1, 2}, {-1, 2}, {1, -2}, {-1, -2}, {2, 2}, {-2, 2}, {2, -2}, {-2, -2}}};

// The whole columns of a row and of kScanApron rows on either side.
class RowWindow {
 public:
  RowWindow(const CoverageRegion& scanned, Size size) : scanned_(scanned), bounds_(scanned.bounds()), size_(size) {
    for (int y = 0; y < kScanApron; ++y) {
      load(y);
    }
  }

  void advanceTo(int y) { load(y + kScanApron); }

  bool isWhole(int x, int y) const { return y >= 0 && y < size_.height && slot(y).hold(x); }
  const Columns& row(int y) const { return slot(y); }

 private:
  static constexpr int kRows = 2 * kScanApron + 1;

  void load(int y) { rows_[static_cast<std::size_t>(y % kRows)] = wholeColumns(scanned_, bounds_, y, size_.width); }
  const Columns& slot(int y) const { return rows_[static_cast<std::size_t>(y % kRows)]; }

  const CoverageRegion& scanned_;
  Box bounds_;
  Size size_;
  std::array<Columns, kRows> rows_{};
};

void extendPixel(const RowWindow& window, int x, int y, const ImageView& drawn) {
  for (const Step& step : kNeighbours) {
    if (window.isWhole(x + step.x, y + step.y)) {
      std::memcpy(drawn.pixel(x, y), drawn.pixel(x + step.x, y + step.y), bytesPerPixel(drawn.depth));
      return;
    }
  }
}

}  // namespace

void extendScan(const CoverageRegion& scanned, const CoverageRegion& covered, const ImageView& drawn) {
  RowWindow window(scanned, drawn.size);
  for (int y = 0; y < drawn.size.height; ++y) {
    window.advanceTo(y);
    const RowCoverage wanted = covered.row(y);
    const Columns& whole = window.row(y);
    const int begin = std::clamp(wanted.begin, 0, drawn.size.width);
    const int end = std::clamp(wanted.end, begin, drawn.size.width);
    for (int x = begin; x < end; ++x) {
      if (whole.hold(x)) {
        x = whole.end - 1;
      } else {
        extendPixel(window, x, y, drawn);
      }
    }
  }
}

}  // namespace vantorel::host
