#include "effect/HighQualitySampler.h"

#include <algorithm>

#include "effect/PerspectiveInfo.h"
#include "effect/RowTrace.h"

namespace {

// Steps the homogeneous coordinates along a row, u and v in units of the output's size, and round each pixel's
// neighbours: right, lower right, lower and back. The walk's rounding goes on into the next pixel.
class HighQualityWalk {
 public:
  HighQualityWalk(const KZFX_PerspectiveInfo& info, std::int32_t x, std::int32_t y)
      : scale_{info.x_scale, info.y_scale}, params_{0, 0, 0, info.input_world, {}} {
    const auto& m = info.quad_to_unit.m;
    right_ = {m[0][0] * info.out_width_d, m[0][1] * info.out_height_d, m[0][2]};
    down_ = {m[1][0] * info.out_width_d, m[1][1] * info.out_height_d, m[1][2]};
    at_ = {info.out_width_d * (m[0][0] * x + m[1][0] * y + m[2][0]),
           info.out_height_d * (m[0][1] * x + m[1][1] * y + m[2][1]), m[0][2] * x + m[1][2] * y + m[2][2]};
    block_start_ = at_;
    // What a short row leaves unstored must not look like a zero divisor.
    std::fill_n(next_.centre.w, kRowBlock, 1.0);
  }

  void Skip() {
    at_ = at_ + right_;
    block_start_ = at_;
  }

  void StoreNext(int first, int end) {
    Homogeneous at = at_;
    for (int i = first; i < end; ++i) {
      at = StoreNeighbourhood(at + right_, i);
    }
    at_ = at;
  }

  // A pixel with a zero divisor, its own or a neighbour's, is not walked round. That is rare, so blocks are stored as
  // if there were none, and one that holds such a pixel is stored again.
  void ComputeBlock(const RowBlockFunctions& functions, int count) {
    if (functions.footprints(next_, {right_.w, down_.w}, scale_, &block_)) {
      at_ = block_start_;
      for (int i = 0; i < count; ++i) {
        const Homogeneous centre = at_ + right_;
        if (HasZeroDivisor(centre.w)) {
          at_ = centre;
          Store(centre, i, &next_.centre);
        } else {
          at_ = StoreNeighbourhood(centre, i);
        }
      }
      functions.footprints(next_, {right_.w, down_.w}, scale_, &block_);
    }
    block_start_ = at_;
  }

  bool HasSample(int i) const { return block_.position.no_divisor[i] == 0; }
  std::int32_t X(int i) const { return block_.position.x[i]; }
  std::int32_t Y(int i) const { return block_.position.y[i]; }
  const PF_SampleParams* Params(int i) {
    params_.x_radius = block_.x_radius[i];
    params_.y_radius = block_.y_radius[i];
    params_.area = block_.area[i];
    return &params_;
  }

 private:
  struct Homogeneous {
    double u;
    double v;
    double w;
    Homogeneous operator+(const Homogeneous& b) const { return {u + b.u, v + b.v, w + b.w}; }
    Homogeneous operator-(const Homogeneous& b) const { return {u - b.u, v - b.v, w - b.w}; }
  };

  bool HasZeroDivisor(double w) const {
    return w == 0.0 || w + down_.w + right_.w == 0.0 || w + right_.w == 0.0 || w + down_.w == 0.0;
  }

  // Walks round the neighbours of `centre` and returns where the walk comes back to.
  Homogeneous StoreNeighbourhood(const Homogeneous& centre, int i) {
    const Homogeneous right = centre + right_;
    const Homogeneous lower_right = right + down_;
    const Homogeneous lower = lower_right - right_;
    Store(centre, i, &next_.centre);
    Store(right, i, &next_.right);
    Store(lower_right, i, &next_.lower_right);
    Store(lower, i, &next_.lower);
    return lower - down_;
  }

  static void Store(const Homogeneous& at, int i, HomogeneousBlock* block) {
    block->u[i] = at.u;
    block->v[i] = at.v;
    block->w[i] = at.w;
  }

  Homogeneous at_;
  Homogeneous block_start_;  // where the stored block began
  Homogeneous right_;        // the change to the pixel on the right
  Homogeneous down_;         // the change to the pixel below
  InputScale scale_;
  PF_SampleParams params_;
  NeighbourhoodBlock next_{};
  FootprintBlock block_;
};

}  // namespace

template <typename Pixel>
void TraceHighQualityRow(const void* info, std::int32_t x, std::int32_t y, Pixel* out,
                         const RowBlockFunctions& functions) {
  TraceRow<HighQualityWalk>(*static_cast<const KZFX_PerspectiveInfo*>(info), x, y, out, functions);
}
template void TraceHighQualityRow(const void*, std::int32_t, std::int32_t, PF_Pixel8*, const RowBlockFunctions&);
template void TraceHighQualityRow(const void*, std::int32_t, std::int32_t, PF_Pixel16*, const RowBlockFunctions&);
template void TraceHighQualityRow(const void*, std::int32_t, std::int32_t, PF_PixelFloat*, const RowBlockFunctions&);

std::int32_t KZFX_TracePointHi(void* info, std::int32_t x, std::int32_t y, PF_Pixel8* /*in*/, PF_Pixel8* out) {
  TraceHighQualityRow(info, x, y, out, BestRowBlockFunctions());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHi16(void* info, std::int32_t x, std::int32_t y, PF_Pixel16* /*in*/, PF_Pixel16* out) {
  TraceHighQualityRow(info, x, y, out, BestRowBlockFunctions());
  return ERR_NONE;
}

std::int32_t KZFX_TracePointHiFloat(void* info, std::int32_t x, std::int32_t y, PF_PixelFloat* /*in*/,
                                    PF_PixelFloat* out) {
  TraceHighQualityRow(info, x, y, out, BestRowBlockFunctions());
  return ERR_NONE;
}
