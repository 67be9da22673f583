// What renders report, what they leave alone, and what may happen meanwhile.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "tests/bridges/ofx/ReadySession.h"

namespace vantorel::ofx {
namespace {

TEST(OfxRenderTest, SaysWhatIsWrongUntilItIsRight) {
  ReadySession session;
  const auto expect_refused = [&](Status status, const char* fault) {
    EXPECT_EQ(session.render(kFrame), status);
    EXPECT_NE(session.host.message.find(fault), std::string::npos) << session.host.message;
    EXPECT_EQ(session.host.images_out, 0);
  };
  session.setParam("upperLeft", {std::nan(""), 1.0});
  expect_refused(Status::BadValue, "not a number");
  session.setParam("upperLeft", {1e9, 1.0});
  expect_refused(Status::BadValue, "Upper left: it lies more than");
  session.setCorners(kTrapezoid, kFrame);
  session.setParam("useFrom", {1.0});
  session.setParam("fromLowerLeft", {HUGE_VAL, 1.0});
  expect_refused(Status::BadValue, "press Reset from corners");
  session.setCorners({{0, 0}, {9, 0}, {0, 9}, {2, 2}}, kFrame, "from");
  expect_refused(Status::Failed, "strictly convex");
  session.setParam("useFrom", {0.0});
  for (const double scale : {0.0, -1.0, std::nan(""), 1e300}) {
    session.host.message.clear();
    PropertySetRecord in = renderArguments(kFrame, {1.0, scale});
    EXPECT_EQ(session.action("OfxImageEffectActionRender", &in), Status::BadValue);
    EXPECT_NE(session.host.message.find("render scale"), std::string::npos) << session.host.message;
  }
  EXPECT_EQ(session.render(kFrame), Status::Ok);
  EXPECT_EQ(session.host.message, "");
  session.connect("Source", {.bounds = kFrame, .depth = "OfxBitDepthByte"});
  expect_refused(Status::ImageFormat, "Source: its bit depth");
  session.connect("Source", {.bounds = kFrame, .components = "OfxImageComponentYUVA"});
  expect_refused(Status::ImageFormat, "OfxImageComponentYUVA");
  session.connect("Source", {.bounds = kFrame});
  for (const char* clip : {"Source", "Matte", "Background", "Output"}) {
    const Layout layout{.bounds = kFrame};
    session.connect(clip, layout).put("OfxImagePropBounds", -2147483647, -5, 2147483647, 5);
    expect_refused(Status::ImageFormat, "extends too far");
    session.connect(clip, layout).put("OfxImagePropRowBytes", 12);
    expect_refused(Status::ImageFormat, "too short");
    session.connect(clip, layout).put("OfxImagePropRowBytes", 64 * 16 + 2);
    expect_refused(Status::ImageFormat, "not aligned");
    session.connect(clip, layout).put("OfxImagePropData", static_cast<void*>(nullptr));
    expect_refused(Status::ImageFormat, "no pixels");
    session.connect(clip, layout).put("OfxImagePropRowBytes", std::string("a text"));
    expect_refused(Status::Failed, "OfxImagePropRowBytes");
    session.connect(clip, layout).put("OfxImagePropBounds", 0, 0);
    expect_refused(Status::Failed, "OfxImagePropBounds");
    session.connect(clip, {.bounds = kFrame, .depth = "OfxBitDepthShort"});
    expect_refused(Status::ImageFormat, "its bit depth differs from the output's");
    session.connect(clip, layout);
  }
}

TEST(OfxRenderTest, WithoutASourceOrWithAPartOfItTheRestIsTransparent) {
  ReadySession session;
  const auto alpha_at = [&](int x) {
    float alpha = -1.0F;
    std::memcpy(&alpha, pixelOf(*session.instance.clips.at("Output").image, x, 20) + 12, sizeof alpha);
    return alpha;
  };
  session.instance.clips.at("Source").image.reset();
  ASSERT_EQ(session.render(kFrame), Status::Ok);
  EXPECT_EQ(alpha_at(30), 0.0F);
  PropertySetRecord& part = session.connect("Source", {.bounds = {0, 0, 32, 48}, .full_frame = kFrame});
  for (int i = 0; i < 32 * 48 * 4; ++i) {
    reinterpret_cast<float*>(part.pixels.data())[i] = 1.0F;
  }
  ASSERT_EQ(session.render(kFrame), Status::Ok);
  EXPECT_EQ(alpha_at(20), 1.0F);
  EXPECT_EQ(alpha_at(40), 0.0F);
}

TEST(OfxRenderTest, DrawsOnlyWhatLiesInTheOutput) {
  constexpr int kEnd = 2147483647;
  ReadySession session;
  session.setCorners(kTrapezoid, kFrame);
  PropertySetRecord& output = session.connect("Output", {.bounds = kFrame});
  const std::vector<std::byte> untouched = output.pixels;
  for (const RectI& window : {RectI{5, 5, 5, 9}, {9, 9, 5, 5}, {-90, 5, 0, 9}, {64, 48, kEnd, kEnd}}) {
    EXPECT_EQ(session.render(window), Status::Ok);
    EXPECT_EQ(output.pixels, untouched);
  }
  ASSERT_EQ(session.render(kFrame), Status::Ok);
  const std::vector<std::byte> drawn = output.pixels;
  std::ranges::copy(untouched, output.pixels.begin());
  EXPECT_EQ(session.render({-kEnd, -kEnd, kEnd, kEnd}), Status::Ok);
  EXPECT_EQ(output.pixels, drawn);
  PropertySetRecord& far_away = session.connect("Output", {.bounds = {9000000, -9000048, 9000064, -9000000}});
  EXPECT_EQ(session.render({-kEnd, -kEnd, kEnd, kEnd}), Status::Ok);
  EXPECT_EQ(far_away.pixels, std::vector<std::byte>(far_away.pixels.size()));
}

// Hosts should wait for their renders, but a careless one costs the user's work if it crashes.
TEST(OfxRenderTest, OutlivesWhatTheHostEndsDuringARender) {
  for (const bool unloads : {false, true}) {
    ReadySession session;
    session.setCorners(kTrapezoid, kFrame);
    ASSERT_EQ(session.render(kFrame), Status::Ok);
    const std::vector<std::byte> drawn = session.instance.clips.at("Output").image->pixels;
    const PropertySetRecord& output = session.connect("Output", {.bounds = kFrame});
    session.host.on_abort = [&] {
      session.action("OfxActionPurgeCaches");
      session.perform(unloads ? "OfxActionUnload" : "OfxActionDestroyInstance", &session.instance);
    };
    EXPECT_EQ(session.render(kFrame), Status::Ok);
    EXPECT_EQ(output.pixels, drawn);
    EXPECT_EQ(session.host.images_out, 0);
    EXPECT_EQ(session.render(kFrame), unloads ? Status::Failed : Status::BadHandle);
    EXPECT_EQ(session.close(), unloads ? Status::Failed : Status::BadHandle);
    ASSERT_EQ(session.load(), Status::Ok);
    EXPECT_EQ(session.render(kFrame), Status::BadHandle) << "an instance of before";
    EXPECT_EQ(session.open(), Status::Ok);
  }
}

TEST(OfxRenderTest, ParametersChangeAndOtherInstancesComeAndGoMeanwhile) {
  ReadySession session;
  session.connect("Background", {.bounds = kFrame, .components = "OfxImageComponentRGB"});
  std::atomic<int> left = 150;
  std::vector<std::jthread> threads;
  threads.reserve(3);
  for (int t = 0; t < 3; ++t) {
    threads.emplace_back([&, t] {
      while (left-- > 0) {
        const Status status = session.render({0, 16 * t, 64, 16 * (t + 1)});
        EXPECT_TRUE(status == Status::Ok || status == Status::BadValue);
      }
    });
  }
  for (int i = 0; left > 0; ++i) {
    session.setParam("upperLeft", {1.0 * (i % 20), i % 3 == 0 ? 1e9 : 40.0});
    EffectRecord other;
    session.prepare(&other);
    EXPECT_EQ(session.perform("OfxActionCreateInstance", &other), Status::Ok);
    session.action("OfxActionPurgeCaches");
    session.passedOn();
    EXPECT_EQ(session.perform("OfxActionDestroyInstance", &other), Status::Ok);
  }
}

TEST(OfxRenderTest, EndsWhereTheHostWantsItTo) {
  ReadySession session;
  session.setCorners(kTrapezoid, kFrame);
  session.host.aborts = true;
  EXPECT_EQ(session.render(kFrame), Status::Ok);
  EXPECT_EQ(session.host.message, "");
  EXPECT_EQ(session.host.images_out, 0);
  session.instance.clips.at("Output").image.reset();
  EXPECT_EQ(session.render(kFrame), Status::Ok);
  session.host.aborts = false;
  EXPECT_EQ(session.render(kFrame), Status::Failed);
}

}  // namespace
}  // namespace vantorel::ofx
