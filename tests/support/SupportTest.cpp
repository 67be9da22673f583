#include <gtest/gtest.h>

#include <new>

#include "support/KZFX_Iterate.h"
#include "support/KZFX_SuiteHelper.h"
#include "support/KZFX_World.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr const char* kAcquireFailed = "Not able to acquire KZFX Suite.";
constexpr const char* kReleaseFailed = "Not able to release KZFX Suite.";
const Log kHoldSuite = {"acquire PF iterateFloat Suite 1"};
const Log kDropSuite = {"release PF iterateFloat Suite 1"};

// The code that the scoped holder throws, or 0.
std::int32_t hold(ScriptedHost& host, PF_OutData* out, const char* text) {
  try {
    KZFX_SuiteScoper<PF_iterateFloatSuite1> holder(&host.in, PF_ITERATE_FLOAT_SUITE, 1, out, text);
    return holder->iterate != nullptr ? 0 : -1;
  } catch (std::int32_t code) {
    return code;
  }
}

template <typename Pixel>
std::int32_t pixelFunction(void*, std::int32_t, std::int32_t, Pixel*, Pixel*) {
  return 0;
}

// Runs the three kinds of iteration over one pixel type, the first one twice.
template <typename Pixel>
void expectIteration(const std::string& depth, const Log& before, const Log& after) {
  ScriptedHost host;
  const M_LRect area = {1, 2, 3, 4};
  const M_LPoint origin = {5, -6};
  std::int32_t (*const function)(void*, std::int32_t, std::int32_t, Pixel*, Pixel*) = pixelFunction<Pixel>;
  host.names[reinterpret_cast<const void*>(function)] = "function";
  PF_LayerDef* const in = &host.input.world;
  PF_LayerDef* const out = &host.output.world;
  host.on_iterate = [&](void* refcon) { EXPECT_EQ(refcon, &area); };
  void* const refcon = const_cast<M_LRect*>(&area);
  host.fail("iterate_" + depth, 2, 7);
  host.fail("iterate_origin_" + depth, 1, 8);
  host.fail("iterate_origin_non_clip_" + depth, 1, 9);
  EXPECT_EQ(PF_IterateWrap(&host.in, 10, 20, in, &area, refcon, function, out), 0);
  EXPECT_EQ(PF_IterateWrap(&host.in, 10, 20, nullptr, &area, refcon, function, out), 7);
  EXPECT_EQ(PF_IterateOriginWrap(&host.in, 10, 20, in, &area, &origin, refcon, function, out), 8);
  EXPECT_EQ(PF_IterateOriginNonClipSrcWrap(&host.in, 10, 20, in, &area, &origin, refcon, function, out), 9);
  const auto line = [&](const std::string& kind, const std::string& rest) {
    return before + Log{kind + depth + " in 10 20 " + rest + " function output"} + after;
  };
  EXPECT_EQ(host.log, line("iterate_", "input [1 2 3 4]") + line("iterate_", "null [1 2 3 4]") +
                          line("iterate_origin_", "input [1 2 3 4] (5 -6)") +
                          line("iterate_origin_non_clip_", "input [1 2 3 4] (5 -6)"));
  EXPECT_TRUE(host.outIs());
}

}  // namespace

TEST(Rectangles, EmptinessUnionAndIntersection) {
  EXPECT_FALSE(M_LRect(0, 0, 10, 10).IsEmpty());
  EXPECT_TRUE(M_LRect(5, 0, 5, 10).IsEmpty());
  EXPECT_TRUE(M_LRect(0, 3, 10, 3).IsEmpty());
  EXPECT_TRUE(M_LRect(0, 3, 10, 2).IsEmpty());
  struct {
    M_LRect a, b, united, bounding_box, clipped;
  } const cases[] = {
      {{0, 0, 10, 10}, {100, 100, 100, 100}, {0, 0, 10, 10}, {0, 0, 100, 100}, {100, 100, 10, 10}},
      {{3, 3, 3, 3}, {20, 20, 30, 30}, {20, 20, 30, 30}, {3, 3, 30, 30}, {20, 20, 3, 3}},
      {{0, 0, 10, 10}, {5, -5, 20, 8}, {0, -5, 20, 10}, {0, -5, 20, 10}, {5, 0, 10, 8}},
  };
  const auto same = [](const M_LRect& r, const M_LRect& s) { return std::memcmp(&r, &s, sizeof r) == 0; };
  for (const auto& c : cases) {
    M_LRect united = c.a, bounding_box = c.a, clipped = c.b;
    united.Union(c.b);
    bounding_box.UnionEmptyOrNot(c.b);
    IntersectLRect(&c.a, &clipped);
    EXPECT_TRUE(same(united, c.united) && same(bounding_box, c.bounding_box) && same(clipped, c.clipped)) << c.b.left;
  }
}

TEST(Suites, ThePairReportsByCodeAndMessage) {
  const void* suite = nullptr;
  ScriptedHost host;
  const auto acquire = [&](const char* text) {
    return KZFX_AcquireSuite(&host.in, &host.out, PF_WORLD_SUITE, 2, text, &suite);
  };
  const auto release = [&](const char* text) {
    return KZFX_ReleaseSuite(&host.in, &host.out, PF_WORLD_SUITE, 2, text);
  };
  host.failed_acquire_hands_over = true;
  host.fail("acquire", 1, 7);  // success is judged by the pointer alone
  host.fail("release", 1, 7);
  EXPECT_EQ(acquire("own"), 0);
  EXPECT_EQ(suite, host.suites["PF World Suite/2"]);
  EXPECT_EQ(release("own"), 0);
  EXPECT_EQ(host.log, (Log{"acquire PF World Suite 2", "release PF World Suite 2"}));
  EXPECT_TRUE(host.outIs());

  host.suites.clear();  // the pointer still holds the suite
  EXPECT_EQ(acquire(nullptr), ERR_FAILED);
  EXPECT_TRUE(host.outHasMessages({kAcquireFailed}));
  host.in.suite_provider = nullptr;
  EXPECT_EQ(acquire("own text"), ERR_FAILED);
  EXPECT_TRUE(host.outHasMessages({kAcquireFailed, "own text"}));
  EXPECT_EQ(release(nullptr), ERR_FAILED);
  EXPECT_TRUE(host.outHasMessages({kAcquireFailed, "own text", kReleaseFailed}));
  EXPECT_EQ(release("other"), ERR_FAILED);
  EXPECT_TRUE(host.outHasMessages({kAcquireFailed, "own text", kReleaseFailed, "other"}));
}

TEST(Suites, TheHolderThrowsAndReleasesOnce) {
  ScriptedHost host;
  EXPECT_EQ(hold(host, &host.out, nullptr), 0);
  EXPECT_EQ(host.log, kHoldSuite + kDropSuite);
  host.fail("acquire", 2, 7, true);  // judged by the code, though the pointer is filled
  EXPECT_EQ(hold(host, nullptr, "unseen"), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outIs());
  EXPECT_EQ(hold(host, &host.out, nullptr), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outHasMessages({kAcquireFailed}));
  host.in.suite_provider = nullptr;
  EXPECT_EQ(hold(host, &host.out, "own text"), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outHasMessages({kAcquireFailed, "own text"}));
}

TEST(Suites, DrawingSuitesStopAtTheFirstMissing) {
  ScriptedHost host;
  const void* slots[4] = {};
  host.suites = {{"PENTARO Draw Suite/1", &slots[0]}, {"PENTARO Supplier Suite/1", &slots[1]}};
  EXPECT_EQ(KZFX_AcquirePentaroSuites(&host.in, &host.out, slots), ERR_FAILED);
  EXPECT_TRUE(slots[0] == &slots[0] && slots[1] == &slots[1]);
  EXPECT_EQ(KZFX_ReleasePentaroSuites(&host.in, &host.out), 0);
  EXPECT_EQ(host.log, (Log{"acquire PENTARO Draw Suite 1", "acquire PENTARO Supplier Suite 1",
                           "acquire PENTARO Surface Suite 1", std::string("sprintf ") + kAcquireFailed,
                           "release PENTARO Draw Suite 1", "release PENTARO Supplier Suite 1",
                           "release PENTARO Surface Suite 1", "release PENTARO Path Suite 1"}));
}

TEST(Worlds, DepthComesFromThePixelFormat) {
  const std::string unexpected = "Unexpected pixel format in KZFX_GetEffectWorldRGBDepth()";
  struct {
    const char* tag;
    std::int32_t failure, code, depth;
  } const cases[] = {
      {"argb", 0, 0, 8}, {"kz16", 0, 0, 16}, {"kz32", 0, 0, 32}, {"23zk", 0, ERR_FAILED, -1}, {"argb", 21, 21, -1}};
  for (const auto& c : cases) {
    ScriptedHost host;
    std::memcpy(&host.pixel_format, c.tag, 4);
    host.fail("get_pixel_format", 1, c.failure);
    std::int32_t depth = -1;
    EXPECT_EQ(KZFX_GetEffectWorldRGBDepth(&host.in, &host.out, &host.output.world, &depth), c.code);
    EXPECT_EQ(depth, c.depth) << c.tag;
    const bool is_unknown = c.code == ERR_FAILED;
    EXPECT_EQ(host.log, is_unknown ? kAskDepth + Log{"sprintf " + unexpected} : kAskDepth);
    EXPECT_TRUE(host.outHasMessages(is_unknown ? Log{unexpected} : Log{}));
  }
}

TEST(Worlds, NewWorldsAreAskedForByTag) {
  for (const auto& [depth, tag] : {std::pair{8, "argb"}, {16, "kz16"}, {32, "kz32"}}) {
    ScriptedHost host;
    host.fail("new_world", 1, 33);
    EXPECT_EQ(KZFX_NewWorldRGBDepth(&host.in, &host.out, 7, 9, depth, true, &host.output.world), 33);
    EXPECT_EQ(host.log, (Log{kAskDepth[0], std::string("new_world fx 7 9 1 ") + tag + " output", kAskDepth[2]}));
    EXPECT_TRUE(host.outIs());
  }
  ScriptedHost host;
  EXPECT_EQ(KZFX_NewWorldRGBDepth(&host.in, &host.out, 7, 9, 24, true, &host.output.world), ERR_FAILED);
  EXPECT_EQ(host.log, Log{"sprintf Unexpected pixel format in KZFX_NewWorldRGBDepth()"});
  EXPECT_TRUE(host.outHasMessages({"Unexpected pixel format in KZFX_NewWorldRGBDepth()"}));
}

TEST(Iteration, NineWrappersPassTheirArgumentsOn) {
  expectIteration<PF_Pixel8>("8", {}, {});
  expectIteration<PF_Pixel16>("16", {}, {});
  expectIteration<PF_PixelFloat>("float", kHoldSuite, kDropSuite);
}

TEST(Iteration, FloatFailuresBecomeCodes) {
  ScriptedHost host(32);
  const M_LRect area = {0, 0, 1, 1};
  const auto iterate = [&] {
    return PF_IterateWrap(&host.in, 0, 1, nullptr, &area, nullptr, pixelFunction<PF_PixelFloat>, &host.output.world);
  };
  host.on_iterate = [](void*) { throw std::bad_alloc(); };
  EXPECT_EQ(iterate(), ERR_OUT_OF_MEMORY);
  EXPECT_EQ(host.log.back(), kDropSuite[0]);
  host.on_iterate = [](void*) { throw 1.5; };
  EXPECT_THROW(iterate(), double);
  EXPECT_EQ(host.log.back(), kDropSuite[0]);
  host.suites.clear();
  EXPECT_EQ(iterate(), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outIs());
}
