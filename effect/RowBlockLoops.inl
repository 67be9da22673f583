// The block computations' loops, compiled once per instruction set by the RowBlocks*.cpp files. Everything stands in an
// unnamed namespace and nothing of the standard library is called, so that no code of a set that a machine lacks can
// stand in for another file's.
#include "effect/RowBlocks.h"

namespace {

// Int32FromDouble in a form that vectorises: values outside the range are replaced before the conversion.
inline std::int32_t BlockInt32(double value) {
  const bool in_range = value > -2147483649.0 && value < 2147483648.0;
  return static_cast<std::int32_t>(in_range ? value : -2147483648.0);
}

// 16.16, halves rounded away from zero.
inline std::int32_t BlockFixed(double value) {
  const double scaled = value * 65536.0;
  return BlockInt32(scaled + (value < 0.0 ? -0.5 : 0.5));
}

inline double Larger(double a, double b) {
  return a < b ? b : a;
}

inline double Distance(double a, double b) {
  return __builtin_fabs(a - b);
}

// Half the extent as a radius: the extent is clamped to 1 to 16 pixels.
inline std::int32_t BlockRadius(double extent) {
  const std::int32_t fixed = BlockFixed(extent);
  const std::int32_t at_least = fixed < 65536 ? 65536 : fixed;
  return (at_least > 1048576 ? 1048576 : at_least) >> 1;
}

void Positions(const HomogeneousBlock& at, const InputScale& scale, PositionBlock* __restrict out) {
  for (int i = 0; i < kRowBlock; ++i) {
    out->no_divisor[i] = at.w[i] == 0.0 ? 1 : 0;
    out->x[i] = BlockInt32(BlockInt32(at.u[i] / at.w[i]) * scale.x);
    out->y[i] = BlockInt32(BlockInt32(at.v[i] / at.w[i]) * scale.y);
  }
}

bool Footprints(const NeighbourhoodBlock& at, const DivisorSteps& steps, const InputScale& scale,
                FootprintBlock* __restrict out) {
  std::int32_t any = 0;
  for (int i = 0; i < kRowBlock; ++i) {
    const double w = at.centre.w[i];
    const bool no_divisor =
        static_cast<bool>(static_cast<int>(w == 0.0) | static_cast<int>(w + steps.down + steps.right == 0.0) |
                          static_cast<int>(w + steps.right == 0.0) | static_cast<int>(w + steps.down == 0.0));
    out->position.no_divisor[i] = no_divisor ? 1 : 0;
    any |= out->position.no_divisor[i];

    const double cx = at.centre.u[i] / w;
    const double cy = at.centre.v[i] / w;
    const double right_x = Distance(at.right.u[i] / at.right.w[i], cx);
    const double right_y = Distance(at.right.v[i] / at.right.w[i], cy);
    const double lower_right_x = Distance(at.lower_right.u[i] / at.lower_right.w[i], cx);
    const double lower_right_y = Distance(at.lower_right.v[i] / at.lower_right.w[i], cy);
    const double lower_x = Distance(at.lower.u[i] / at.lower.w[i], cx);
    const double lower_y = Distance(at.lower.v[i] / at.lower.w[i], cy);
    const std::int32_t x_radius = BlockRadius(Larger(Larger(right_x, lower_right_x), lower_x) * scale.x);
    const std::int32_t y_radius = BlockRadius(Larger(Larger(right_y, lower_right_y), lower_y) * scale.y);

    out->x_radius[i] = x_radius;
    out->y_radius[i] = y_radius;
    const double product = static_cast<double>(x_radius) * static_cast<double>(y_radius);
    out->area[i] = static_cast<std::int32_t>(product * (1.0 / 65536.0)) * 4;
    out->position.x[i] = BlockFixed(cx * scale.x);
    out->position.y[i] = BlockFixed(cy * scale.y);
  }
  return any != 0;
}

constexpr RowBlockFunctions kFunctions{Positions, Footprints};

}  // namespace
