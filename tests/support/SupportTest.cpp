#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include <new>
#include <string>

#include "support/KZFX_Iterate.h"
#include "support/KZFX_SuiteHelper.h"
#include "support/KZFX_World.h"
#include "tests/effect/ScriptedHost.h"

namespace {

constexpr const char* kAcquireFailed = "Not able to acquire KZFX Suite.";
constexpr const char* kReleaseFailed = "Not able to release KZFX Suite.";

// The change of PF_OutData that a message makes.
auto message(const std::string& text) {
  return [text](PF_OutData& out) {
    out.out_flags |= OUT_FLAG_SHOW_MESSAGE;
    std::strcpy(out.return_msg, text.c_str());
  };
}

std::int32_t acquire(ScriptedHost& host, const char* text, const void** suite) {
  *suite = nullptr;
  return KZFX_AcquireSuite(&host.in, &host.out, PF_WORLD_SUITE, 2, text, suite);
}

// The code that the scoped holder throws, or 0.
std::int32_t hold(ScriptedHost& host, PF_OutData* out, const char* text) {
  try {
    KZFX_SuiteScoper<PF_iterateFloatSuite1> holder(&host.in, PF_ITERATE_FLOAT_SUITE, 1, out, text);
    return holder->iterate != nullptr ? 0 : -1;
  } catch (std::int32_t code) {
    return code;
  }
}

}  // namespace

TEST(Rectangles, EmptinessUnionAndIntersection) {
  EXPECT_FALSE(M_LRect(0, 0, 10, 10).IsEmpty());
  EXPECT_TRUE(M_LRect(5, 0, 5, 10).IsEmpty());
  EXPECT_TRUE(M_LRect(0, 3, 10, 2).IsEmpty());
  struct {
    M_LRect a, b, united, boundingBox, clipped;
  } const cases[] = {
      {{0, 0, 10, 10}, {100, 100, 100, 100}, {0, 0, 10, 10}, {0, 0, 100, 100}, {100, 100, 10, 10}},
      {{3, 3, 3, 3}, {20, 20, 30, 30}, {20, 20, 30, 30}, {3, 3, 30, 30}, {20, 20, 3, 3}},
      {{0, 0, 10, 10}, {5, -5, 20, 8}, {0, -5, 20, 10}, {0, -5, 20, 10}, {5, 0, 10, 8}},
  };
  const auto same = [](const M_LRect& r, const M_LRect& s) { return std::memcmp(&r, &s, sizeof r) == 0; };
  for (const auto& c : cases) {
    M_LRect r = c.a;
    r.Union(c.b);
    EXPECT_TRUE(same(r, c.united)) << c.b.left;
    r = c.a;
    r.UnionEmptyOrNot(c.b);
    EXPECT_TRUE(same(r, c.boundingBox)) << c.b.left;
    r = c.b;
    IntersectLRect(&c.a, &r);
    EXPECT_TRUE(same(r, c.clipped)) << c.b.left;
  }
}

RC_GTEST_PROP(Rectangles, AUnionHoldsBothAndAnIntersectionLiesInBoth, ()) {
  const auto rect = [] {
    const int x = *rc::gen::inRange(-1000, 1000);
    const int y = *rc::gen::inRange(-1000, 1000);
    return M_LRect(x, y, x + *rc::gen::inRange(1, 500), y + *rc::gen::inRange(1, 500));
  };
  const auto holds = [](const M_LRect& outer, const M_LRect& inner) {
    return outer.left <= inner.left && outer.top <= inner.top && outer.right >= inner.right &&
           outer.bottom >= inner.bottom;
  };
  const M_LRect a = rect();
  const M_LRect b = rect();
  M_LRect both = a;
  both.Union(b);
  M_LRect common = b;
  IntersectLRect(&a, &common);
  RC_ASSERT(holds(both, a) && holds(both, b));
  RC_ASSERT(holds(a, common) && holds(b, common));
}

TEST(Suites, ThePairReportsByCodeAndMessage) {
  const void* suite;
  {
    ScriptedHost host;
    host.fail("acquire", 1, 7);  // success is judged by the pointer alone
    host.fail("release", 1, 7);
    EXPECT_EQ(acquire(host, "own", &suite), 0);
    EXPECT_EQ(suite, host.suites["PF World Suite/2"]);
    EXPECT_EQ(KZFX_ReleaseSuite(&host.in, &host.out, PF_WORLD_SUITE, 2, "own"), 0);
    EXPECT_EQ(host.log, (Log{"acquire PF World Suite/2", "release PF World Suite/2"}));
    EXPECT_TRUE(host.outIs());
  }
  for (const bool serviceThere : {true, false}) {
    for (const char* own : {static_cast<const char*>(nullptr), "own text"}) {
      ScriptedHost host;
      host.suites.clear();
      host.in.suite_provider = serviceThere ? &host.provider : nullptr;
      EXPECT_EQ(acquire(host, own, &suite), ERR_FAILED);
      EXPECT_TRUE(host.outIs(message(own != nullptr ? own : kAcquireFailed)));
      EXPECT_EQ(host.log.size(), serviceThere ? 2u : 1u);
      if (!serviceThere) {
        EXPECT_EQ(KZFX_ReleaseSuite(&host.in, &host.out, PF_WORLD_SUITE, 2, own), ERR_FAILED);
        EXPECT_TRUE(host.outIs([&](PF_OutData& out) {
          message(own != nullptr ? own : kAcquireFailed)(out);
          message(own != nullptr ? own : kReleaseFailed)(out);
        }));
      }
    }
  }
}

TEST(Suites, TheHolderThrowsAndReleasesOnce) {
  ScriptedHost host;
  EXPECT_EQ(hold(host, &host.out, nullptr), 0);
  EXPECT_THROW(
      {
        KZFX_SuiteScoper<PF_iterateFloatSuite1> holder(&host.in, PF_ITERATE_FLOAT_SUITE, 1, nullptr, nullptr);
        throw std::bad_alloc();
      },
      std::bad_alloc);
  const Log once = {"acquire PF iterateFloat Suite/1", "release PF iterateFloat Suite/1"};
  EXPECT_EQ(host.log, once + once);

  host.fail("acquire", 3, 7, true);  // judged by the code, though the pointer is filled
  EXPECT_EQ(hold(host, nullptr, "unseen"), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outIs());
  EXPECT_EQ(hold(host, &host.out, nullptr), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outIs(message(kAcquireFailed)));
  host.in.suite_provider = nullptr;
  EXPECT_EQ(hold(host, &host.out, "own text"), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outIs([](PF_OutData& out) {
    message(kAcquireFailed)(out);
    message("own text")(out);
  }));
}

TEST(Suites, DrawingSuitesStopAtTheFirstMissing) {
  ScriptedHost host;
  const void* slots[4] = {};
  host.suites = {{"PENTARO Draw Suite/1", &slots[0]}, {"PENTARO Supplier Suite/1", &slots[1]}};
  EXPECT_EQ(KZFX_AcquirePentaroSuites(&host.in, &host.out, slots), ERR_FAILED);
  EXPECT_EQ(slots[0], &slots[0]);
  EXPECT_EQ(slots[1], &slots[1]);
  host.in.suite_provider = &host.provider;
  EXPECT_EQ(KZFX_ReleasePentaroSuites(&host.in, &host.out), 0);
  EXPECT_EQ(host.log, (Log{"acquire PENTARO Draw Suite/1", "acquire PENTARO Supplier Suite/1",
                           "acquire PENTARO Surface Suite/1", std::string("sprintf ") + kAcquireFailed,
                           "release PENTARO Draw Suite/1", "release PENTARO Supplier Suite/1",
                           "release PENTARO Surface Suite/1", "release PENTARO Path Suite/1"}));
}

TEST(Worlds, DepthComesFromThePixelFormat) {
  const std::string unexpected = "Unexpected pixel format in KZFX_GetEffectWorldRGBDepth()";
  struct {
    const char* tag;
    std::int32_t code, depth;
  } const cases[] = {{"argb", 0, 8}, {"kz16", 0, 16}, {"kz32", 0, 32}, {"23zk", ERR_FAILED, -1}};
  for (const auto& c : cases) {
    ScriptedHost host;
    std::memcpy(&host.pixelFormat, c.tag, 4);
    std::int32_t depth = -1;
    EXPECT_EQ(KZFX_GetEffectWorldRGBDepth(&host.in, &host.out, &host.output.world, &depth), c.code);
    EXPECT_EQ(depth, c.depth) << c.tag;
    EXPECT_EQ(host.log, c.code == 0 ? kAskDepth : kAskDepth + Log{"sprintf " + unexpected});
    EXPECT_TRUE(c.code == 0 ? host.outIs() : host.outIs(message(unexpected)));
  }
  ScriptedHost host;
  host.fail("get_pixel_format", 1, 21);
  std::int32_t depth = -1;
  EXPECT_EQ(KZFX_GetEffectWorldRGBDepth(&host.in, &host.out, &host.output.world, &depth), 21);
  EXPECT_EQ(depth, -1);
  EXPECT_EQ(host.log, kAskDepth);
  host.suites.clear();
  EXPECT_EQ(KZFX_GetEffectWorldRGBDepth(&host.in, &host.out, &host.output.world, &depth), ERR_FAILED);
  EXPECT_TRUE(host.outIs(message(kAcquireFailed)));
}

TEST(Worlds, NewWorldsAreAskedForByTag) {
  for (const auto& [depth, tag] : {std::pair{8, "argb"}, {16, "kz16"}, {32, "kz32"}}) {
    ScriptedHost host;
    host.fail("new_world", 2, 33);
    EXPECT_EQ(KZFX_NewWorldRGBDepth(&host.in, &host.out, 7, 9, depth, true, &host.output.world), 0);
    EXPECT_EQ(KZFX_NewWorldRGBDepth(&host.in, &host.out, 7, 9, depth, false, &host.output.world), 33);
    EXPECT_EQ(host.log, (Log{"acquire PF World Suite/2", std::string("new_world fx 7 9 true ") + tag + " output",
                             "release PF World Suite/2", "acquire PF World Suite/2",
                             std::string("new_world fx 7 9 false ") + tag + " output", "release PF World Suite/2"}));
    EXPECT_TRUE(host.outIs());
  }
  ScriptedHost host;
  EXPECT_EQ(KZFX_NewWorldRGBDepth(&host.in, &host.out, 7, 9, 24, true, &host.output.world), ERR_FAILED);
  EXPECT_EQ(host.log, Log{"sprintf Unexpected pixel format in KZFX_NewWorldRGBDepth()"});
  EXPECT_TRUE(host.outIs(message("Unexpected pixel format in KZFX_NewWorldRGBDepth()")));
}

namespace {

template <typename Pixel>
std::int32_t pixelFunction(void*, std::int32_t, std::int32_t, Pixel*, Pixel*) {
  return 0;
}

// Runs the three kinds of iteration over one pixel type; the n-th returns the n-th code.
template <typename Pixel>
void expectIteration(const std::string& suffix, const Log& before, const Log& after) {
  ScriptedHost host;
  const M_LRect area = {1, 2, 3, 4};
  const M_LPoint origin = {5, -6};
  std::int32_t (*const function)(void*, std::int32_t, std::int32_t, Pixel*, Pixel*) = pixelFunction<Pixel>;
  host.names[reinterpret_cast<const void*>(function)] = "function";
  PF_LayerDef* const in = &host.input.world;
  PF_LayerDef* const out = &host.output.world;
  void* seen = nullptr;
  host.onIterate = [&](void* refcon) { seen = refcon; };
  host.fail("iterate_" + suffix, 2, 7);
  host.fail("iterate_origin_" + suffix, 1, 8);
  host.fail("iterate_origin_non_clip_" + suffix, 1, 9);
  EXPECT_EQ(PF_IterateWrap(&host.in, 10, 20, in, &area, &host, function, out), 0);
  EXPECT_EQ(PF_IterateWrap(&host.in, 10, 20, nullptr, &area, &host, function, out), 7);
  EXPECT_EQ(PF_IterateOriginWrap(&host.in, 10, 20, in, &area, &origin, &host, function, out), 8);
  EXPECT_EQ(PF_IterateOriginNonClipSrcWrap(&host.in, 10, 20, in, &area, &origin, &host, function, out), 9);
  const std::string input = " in 10 20 input [1 2 3 4]";
  EXPECT_EQ(host.log, before + Log{"iterate_" + suffix + input + " function output"} + after + before +
                          Log{"iterate_" + suffix + " in 10 20 null [1 2 3 4] function output"} + after + before +
                          Log{"iterate_origin_" + suffix + input + " (5 -6) function output"} + after + before +
                          Log{"iterate_origin_non_clip_" + suffix + input + " (5 -6) function output"} + after);
  EXPECT_EQ(seen, &host);
  EXPECT_TRUE(host.outIs());
}

}  // namespace

TEST(Iteration, NineWrappersPassTheirArgumentsOn) {
  expectIteration<PF_Pixel8>("8", {}, {});
  expectIteration<PF_Pixel16>("16", {}, {});
  expectIteration<PF_PixelFloat>("float", {"acquire PF iterateFloat Suite/1"}, {"release PF iterateFloat Suite/1"});
}

TEST(Iteration, FloatFailuresBecomeCodes) {
  ScriptedHost host(32);
  const M_LRect area = {0, 0, 1, 1};
  const auto iterate = [&] {
    return PF_IterateWrap(&host.in, 0, 1, nullptr, &area, nullptr, pixelFunction<PF_PixelFloat>, &host.output.world);
  };
  host.onIterate = [](void*) { throw std::bad_alloc(); };
  EXPECT_EQ(iterate(), ERR_OUT_OF_MEMORY);
  EXPECT_EQ(host.log.back(), "release PF iterateFloat Suite/1");
  host.onIterate = [](void*) { throw 1.5; };
  EXPECT_THROW(iterate(), double);
  EXPECT_EQ(host.log.back(), "release PF iterateFloat Suite/1");
  host.suites.erase("PF iterateFloat Suite/1");
  EXPECT_EQ(iterate(), ERR_SUITE_UNAVAILABLE);
  EXPECT_TRUE(host.outIs());
}
