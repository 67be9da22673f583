#include "host/composing/ScanEdges.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>

namespace vantorel::host {

namespace {

// The scan's borders drift from the exact ones by up to 1/65536 pixel a row.
constexpr double kDrift = 0.2;

struct Columns {
  int begin = 0;
  int end = 0;
  bool hold(int x) const { return x >= begin && x < end; }
};

// The pixels of a row that the scan covers fully, within a part's columns.
Columns wholeColumns(const CoverageRegion& scanned, const Box& bounds, int y, const Rect& part) {
  if (y < bounds.top || y + 1.0 > bounds.bottom) {
    return {};
  }
  const CoverageRegion::Span span = scanned.spanAt(y);
  const double left = part.left;
  const double right = part.right;
  return {static_cast<int>(std::ceil(std::clamp(span.left + kDrift, left, right))),
          static_cast<int>(std::floor(std::clamp(span.right - kDrift, left, right)))};
}

struct Step {
  int x;
  int y;
};

// The neighbours up to kScanApron away, nearest first.
constexpr std::array<Step, 24> kNeighbours{{{1, 0}, {-1, 0}, {0, 1},  {0, -1},  {1, 1}, {-1, 1}, {1, -1}, {-1, -1},
                                            {2, 0}, {-2, 0}, {0, 2},  {0, -2},  {2, 1}, {-2, 1}, {2, -1}, {-2, -1},
                                            {1, 2}, {-1, 2}, {1, -2}, {-1, -2}, {2, 2}, {-2, 2}, {2, -2}, {-2, -2}}};

// The fully covered columns of a row and of kScanApron rows above and below it.
class RowWindow {
 public:
  RowWindow(const CoverageRegion& scanned, const Rect& part)
      : scanned_(scanned), bounds_(scanned.bounds()), part_(part) {
    for (int y = part.top; y < part.top + kScanApron; ++y) {
      load(y);
    }
  }

  void advanceTo(int y) { load(y + kScanApron); }

  bool isWhole(int x, int y) const { return y >= part_.top && y < part_.bottom && slot(y).hold(x); }
  const Columns& row(int y) const { return slot(y); }

 private:
  static constexpr int kRows = 2 * kScanApron + 1;

  void load(int y) { rows_[static_cast<std::size_t>(y % kRows)] = wholeColumns(scanned_, bounds_, y, part_); }
  const Columns& slot(int y) const { return rows_[static_cast<std::size_t>(y % kRows)]; }

  const CoverageRegion& scanned_;
  Box bounds_;
  Rect part_;
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

void extendScan(const CoverageRegion& scanned, const CoverageRegion& covered, const Rect& part,
                const ImageView& drawn) {
  RowWindow window(scanned, part);
  for (int y = part.top; y < part.bottom; ++y) {
    window.advanceTo(y);
    const RowCoverage wanted = covered.row(y);
    const Columns& whole = window.row(y);
    const int begin = std::clamp(wanted.begin, part.left, part.right);
    const int end = std::clamp(wanted.end, begin, part.right);
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
