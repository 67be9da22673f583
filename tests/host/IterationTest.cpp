#include "host/callbacks/Iteration.h"

#include <atomic>
#include <cstring>
#include <tuple>

#include "host/callbacks/CallContext.h"
#include "host/callbacks/CallbackTables.h"
#include "host/frames/WorldRow.h"
#include "tests/host/HostTesting.h"

namespace vantorel::host {
namespace {

// A command that is running, with the frame that the iterators need.
struct Running {
  ModuleResources resources;
  WorkerPool pool;
  FrameState frame;
  CallContext context{resources};
  CallScope scope{context};
  PF_InData in{};

  explicit Running(unsigned threads, std::function<void(double)> progress = {}, std::stop_token stop = {})
      : progress_(std::move(progress)) {
    context.frame = &frame;
    installCallbacks(&in, SampleSpace::Centres);
    in.effect_ref = &context;
    frame.rows.begin(pool, threads, progress_, std::move(stop));
  }

 private:
  std::function<void(double)> progress_;
};

// Copies source pixels to their destination, and notes where it was called with another pixel than that at (x, y).
struct Calls {
  PF_LayerDef* destination = nullptr;
  std::atomic<int> count = 0;
  std::atomic<bool> misplaced = false;

  template <typename Pixel>
  static std::int32_t copy(void* refcon, std::int32_t x, std::int32_t y, Pixel* in, Pixel* out) {
    Calls& calls = *static_cast<Calls*>(refcon);
    ++calls.count;
    calls.misplaced = calls.misplaced || out != worldRow<Pixel>(*calls.destination, y) + x;
    *out = *in;
    return ERR_NONE;
  }
};

template <typename Pixel>
using PixelFunction = decltype(&Calls::copy<Pixel>);

enum class Kind { Plain, Origin, NonClip };

template <typename Pixel>
std::int32_t runKind(Kind kind, PF_InData* in, PF_LayerDef* source, const M_LRect* area, const M_LPoint* origin,
                     Calls* calls, PF_LayerDef* destination) {
  constexpr PixelFunction<Pixel> kCopy = Calls::copy<Pixel>;
  const PF_UtilityCallbacks& u = *in->utility_callbacks;
  const PF_iterateFloatSuite1& f = *iterateFloatSuite();
  if (kind == Kind::Plain) {
    const std::tuple plain(u.iterate_8, u.iterate_16, f.iterate);
    return std::get<PF_IterateCallback<PixelFunction<Pixel>>>(plain)(in, 0, 10, source, area, calls, kCopy,
                                                                     destination);
  }
  const std::tuple clipping(u.iterate_origin_8, u.iterate_origin_16, f.iterate_origin);
  const std::tuple non_clipping(u.iterate_origin_non_clip_src_8, u.iterate_origin_non_clip_src_16,
                                f.iterate_origin_non_clip_src);
  const auto iterate =
      std::get<PF_IterateOriginCallback<PixelFunction<Pixel>>>(kind == Kind::Origin ? clipping : non_clipping);
  return iterate(in, 0, 10, source, area, origin, calls, kCopy, destination);
}

template <typename Pixel>
class IterationTest : public ::testing::Test {};
using Pixels = ::testing::Types<PF_Pixel8, PF_Pixel16, PF_PixelFloat>;
TYPED_TEST_SUITE(IterationTest, Pixels);

TYPED_TEST(IterationTest, CallsTheFunctionForEveryPixelOfTheAreaWithItsSourcePixel) {
  constexpr Depth kDepth = static_cast<Depth>(sizeof(TypeParam) * 2);
  Image source_image = noise({6, 5}, kDepth);
  PF_LayerDef source = worldOf(source_image.view());
  const M_LRect area(-3, 2, 100, 7);
  const M_LPoint origin{4, -1};
  const struct {
    Kind kind;
    PF_LayerDef* source;
    const M_LRect* area;
  } cases[] = {{Kind::Plain, nullptr, &area},
               {Kind::Plain, &source, nullptr},
               {Kind::Origin, &source, &area},
               {Kind::NonClip, &source, &area},
               {Kind::Origin, nullptr, nullptr}};
  for (const unsigned threads : {1u, 3u}) {
    for (const auto& c : cases) {
      Image image = dirty({9, 8}, kDepth);
      Image expected = dirty({9, 8}, kDepth);
      PF_LayerDef destination = worldOf(image.view());
      Running running(threads);
      Calls calls{.destination = &destination};
      ASSERT_EQ(ERR_NONE, runKind<TypeParam>(c.kind, &running.in, c.source, c.area, &origin, &calls, &destination));
      const M_LPoint shift = c.kind == Kind::Plain ? M_LPoint{0, 0} : origin;
      int count = 0;
      for (const auto [x, y] : pixelsOf(c.area == nullptr ? Rect{0, 0, 9, 8} : Rect{0, 2, 9, 7})) {
        const int sx = x - shift.x;
        const int sy = y - shift.y;
        const bool has_source = c.source != nullptr && sx >= 0 && sx < 6 && sy >= 0 && sy < 5;
        if (has_source || c.source == nullptr || c.kind == Kind::NonClip) {
          const TypeParam transparent{};
          std::memcpy(expected.view().pixel(x, y), has_source ? &worldRow<TypeParam>(source, sy)[sx] : &transparent,
                      sizeof(TypeParam));
          ++count;
        }
      }
      EXPECT_TRUE(samePixels(expected, image)) << static_cast<int>(c.kind) << " on " << threads << " threads";
      EXPECT_EQ(count, calls.count);
      EXPECT_FALSE(calls.misplaced);
    }
  }
}

TEST(IterationEndTest, TheFirstFailureEndsTheIterationAndIsItsResult) {
  Image image = dirty({2, 64}, Depth::Bits8);
  PF_LayerDef destination = worldOf(image.view());
  std::vector<double> shares;
  Running running(1, [&](double share) { shares.push_back(share); });
  int last_row = -1;
  const auto fail_at_row_5 = [](void* last, std::int32_t, std::int32_t y, PF_Pixel8*, PF_Pixel8*) -> std::int32_t {
    *static_cast<int*>(last) = y;
    return y == 5 ? 41 : 0;
  };
  const auto iterate = running.in.utility_callbacks->iterate_8;
  EXPECT_EQ(41, iterate(&running.in, 50, 100, nullptr, nullptr, &last_row, fail_at_row_5, &destination));
  EXPECT_EQ(5, last_row);
  // Of the half from 50 to 100, five rows of 64 are done.
  ASSERT_EQ(5u, shares.size());
  EXPECT_NEAR(0.5 + 0.5 * 1 / 64, shares.front(), 1e-12);
  EXPECT_NEAR(0.5 + 0.5 * 5 / 64, shares.back(), 1e-12);
  const M_LRect empty(0, 7, 2, 3);
  EXPECT_EQ(ERR_NONE, iterate(&running.in, 0, 1, nullptr, &empty, &last_row, fail_at_row_5, &destination));
  EXPECT_NE(ERR_NONE, iterate(&running.in, 0, 1, nullptr, nullptr, &last_row, nullptr, &destination));
  EXPECT_NE(ERR_NONE, iterate(&running.in, 0, 1, nullptr, nullptr, &last_row, fail_at_row_5, nullptr));
}

}  // namespace
}  // namespace vantorel::host
