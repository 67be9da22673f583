// What the plug-in tells the host, and what it answers to the host's questions.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <thread>
#include <tuple>

#include "tests/bridges/ofx/Session.h"

namespace vantorel::ofx {
namespace {

constexpr RectI kFrame{0, 0, 64, 48};
constexpr host::Corners kOutline{{0, 0}, {64, 0}, {0, 48}, {64, 48}};
constexpr host::Corners kTrapezoid{{10, 8}, {50, 8}, {6, 40}, {60, 44}};

// A session whose clips hold a white frame.
struct Ready : Session {
  Ready() {
    EXPECT_EQ(open(), Status::Ok);
    PropertySetRecord& source = connect("Source", {.bounds = kFrame});
    for (std::size_t i = 0; i + 4 <= source.pixels.size(); i += 4) {
      constexpr float kWhite = 1.0F;
      std::memcpy(source.pixels.data() + i, &kWhite, sizeof kWhite);
    }
    connect("Output", {.bounds = kFrame});
  }

  std::vector<double> region() {
    PropertySetRecord in = renderArguments(kFrame);
    PropertySetRecord out;
    EXPECT_EQ(action("OfxImageEffectActionGetRegionOfDefinition", &in, &out), Status::Ok);
    std::vector<double> edges;
    for (std::size_t i = 0; i < 4; ++i) {
      edges.push_back(out.get<double>("OfxImageEffectPropRegionOfDefinition", i));
    }
    return edges;
  }
  // The clip that is passed on, or nothing.
  std::string passedOn(PointD scale = {1.0, 1.0}) {
    PropertySetRecord in = renderArguments(kFrame, scale);
    PropertySetRecord out;
    const Status status = action("OfxImageEffectActionIsIdentity", &in, &out);
    return status == Status::Ok ? out.get<std::string>("OfxPropName") : "";
  }
};

TEST(OfxDescribeTest, TellsWhatItOffersInEachContext) {
  for (const char* context : {kFilter, kGeneral}) {
    Session session;
    ASSERT_EQ(session.open(context), Status::Ok);
    EXPECT_STREQ(session.plugin().api, "OfxImageEffectPluginAPI");
    EXPECT_EQ(session.plugin().api_version, 1);
    const PropertySetRecord& effect = session.descriptor.properties;
    EXPECT_EQ(effect.get<std::string>("OfxImageEffectPropSupportedContexts", 1), kFilter);
    EXPECT_EQ(effect.values.at("OfxImageEffectPropSupportedPixelDepths").size(), 4U);
    EXPECT_EQ(effect.get<std::string>("OfxImageEffectPluginRenderThreadSafety"), "OfxImageEffectRenderFullySafe");
    EXPECT_EQ(effect.get<int>("OfxImageEffectPropSupportsTiles"), 1);
    auto& clips = session.descriptor.clips;
    EXPECT_EQ(clips.size(), 4U);
    EXPECT_EQ(clips.at("Background").properties.get<int>("OfxImageClipPropOptional"), 1);
    EXPECT_EQ(clips.at("Matte").properties.get<int>("OfxImageClipPropIsMask"), 1);
    const std::size_t kinds = clips.at("Source").properties.values.at("OfxImageEffectPropSupportedComponents").size();
    EXPECT_EQ(kinds, context == kGeneral ? 2U : 1U);
    EXPECT_EQ(session.instance.params.params.at("upperLeft").value, (std::vector<double>{0.0, 48.0}));
    EXPECT_EQ(session.instance.params.params.at("lowerRight").value, (std::vector<double>{64.0, 0.0}));
    EXPECT_EQ(session.instance.params.params.at("quality").value, std::vector<double>{2.0});
    for (const auto& child :
         session.descriptor.params.params.at("page").properties.values.at("OfxParamPropPageChild")) {
      EXPECT_EQ(session.descriptor.params.params.count(std::get<std::string>(child)), 1U);
    }
    for (const auto& [name, param] : session.descriptor.params.params) {
      EXPECT_FALSE(param.properties.get<std::string>("OfxPropLabel").empty()) << name;
    }
  }
}

TEST(OfxDescribeTest, IsLoadedAgainAndDrawsItsOverlayAsTheHostCan) {
  Session session;
  for (int i = 0; i < 3; ++i) {
    ASSERT_EQ(session.open(), Status::Ok);
    EXPECT_EQ(session.close(), Status::Ok);
  }
  const auto offers = [](const char* absent, const char* property) {
    Session other;
    other.host.absent_suites = {absent};
    EXPECT_EQ(other.open(), Status::Ok);
    return other.descriptor.properties.values.count(property) == 1;
  };
  EXPECT_TRUE(offers("", "OfxImageEffectPluginPropOverlayInteractV2"));
  EXPECT_FALSE(offers("", "OfxImageEffectPluginPropOverlayInteractV1"));
  EXPECT_TRUE(offers("OfxDrawSuite 1", "OfxImageEffectPluginPropOverlayInteractV1"));
  EXPECT_FALSE(offers("OfxInteractSuite 1", "OfxImageEffectPluginPropOverlayInteractV2"));
  for (const char* needed : {"OfxPropertySuite 1", "OfxImageEffectSuite 1", "OfxParameterSuite 1"}) {
    Session other;
    other.host.absent_suites = {needed};
    EXPECT_EQ(other.open(), Status::MissingHostFeature);
  }
}

TEST(OfxDescribeTest, RefusesContextsThatItDoesNotOffer) {
  for (const char* context : {"OfxImageEffectContextPaint", "OfxImageEffectContextTransition", ""}) {
    Session session;
    ASSERT_EQ(session.load(), Status::Ok);
    EXPECT_EQ(session.describe(context), Status::Unsupported);
    EXPECT_TRUE(session.descriptor.clips.empty());
  }
}

// What a host sends round an edit and round a sequence, with its arguments: the plug-in leaves all of it to the host.
TEST(OfxDescribeTest, LeavesToTheHostWhatItHasNothingToSayAbout) {
  Ready session;
  session.setCorners(kTrapezoid, kFrame);
  PropertySetRecord in = renderArguments(kFrame);
  in.put("OfxPropChangeReason", std::string("OfxChangeUserEdited"));
  in.put("OfxPropType", std::string("OfxTypeParameter"));
  in.put("OfxPropName", std::string("upperLeft"));
  in.put("OfxImageEffectPropFrameRange", 0.0, 24.0);
  in.put("OfxImageEffectPropFrameStep", 1.0);
  in.put("OfxPropIsInteractive", 0);
  in.put("OfxImageEffectPropSequentialRenderStatus", 1);
  in.put("OfxImageEffectPropInteractiveRenderStatus", 0);
  PropertySetRecord out;
  out.put("OfxImageEffectPropFrameRange", 0.0, 24.0);
  out.put("OfxImageClipPropFrameRange_Source", 3.0, 3.0);
  const auto preset = out.values;
  const auto expect_left = [&](std::initializer_list<const char*> actions) {
    for (const char* action : actions) {
      EXPECT_EQ(session.action(action, &in, &out), Status::ReplyDefault) << action;
      EXPECT_EQ(out.values, preset) << action;
    }
  };
  expect_left({"OfxActionBeginInstanceEdit", "OfxActionBeginInstanceChanged", "OfxActionInstanceChanged",
               "OfxActionEndInstanceChanged", "OfxImageEffectActionGetTimeDomain",
               "OfxImageEffectActionGetFramesNeeded", "OfxImageEffectActionBeginSequenceRender"});
  ASSERT_EQ(session.render(kFrame), Status::Ok);
  const std::vector<std::byte> drawn = session.instance.clips.at("Output").image->pixels;
  session.connect("Output", {.bounds = kFrame});
  EXPECT_EQ(session.action("OfxActionPurgeCaches"), Status::Ok);
  ASSERT_EQ(session.render(kFrame), Status::Ok);
  EXPECT_EQ(session.instance.clips.at("Output").image->pixels, drawn) << "after a purge";
  expect_left({"OfxImageEffectActionEndSequenceRender", "OfxActionSyncPrivateData", "OfxActionEndInstanceEdit"});
  PropertySetRecord focus;
  focus.put("OfxInteractPropPixelScale", 1.0, 1.0);
  EXPECT_EQ(session.overlay("OfxActionDescribe", &focus), Status::Ok);
  EXPECT_EQ(session.overlay("OfxInteractActionGainFocus", &focus), Status::ReplyDefault);
}

TEST(OfxRegionTest, TheBoxOfTheCornersWithTheBackground) {
  Ready session;
  session.setCorners(kTrapezoid, kFrame);
  EXPECT_EQ(session.region(), (std::vector<double>{0.0, -2.0, 66.0, 46.0}));
  session.connect("Background", {.bounds = {-10, 3, 70, 100}});
  EXPECT_EQ(session.region(), (std::vector<double>{-10.0, -2.0, 70.0, 100.0}));
}

TEST(OfxRegionTest, WhatAWindowNeedsOfTheSource) {
  constexpr RectI kLarge{100, 50, 740, 530};
  Ready session;
  session.connect("Source", {.bounds = kLarge});
  const auto needed = [&](std::initializer_list<double> window, PointD scale = {1.0, 1.0}) {
    PropertySetRecord in = renderArguments(kFrame, scale);
    PropertySetRecord out;
    in.values["OfxImageEffectPropRegionOfInterest"] = {window.begin(), window.end()};
    EXPECT_EQ(session.action("OfxImageEffectActionGetRegionsOfInterest", &in, &out), Status::Ok);
    std::vector<double> edges;
    for (std::size_t i = 0; i < 4; ++i) {
      edges.push_back(out.get<double>("OfxImageClipPropRoI_Source", i));
    }
    return edges;
  };
  const std::vector<double> all{100.0, 50.0, 740.0, 530.0};
  session.setCorners({{0, 0}, {1280, 0}, {0, 960}, {1280, 960}}, kLarge);
  // The source is drawn twice as large from its upper left corner, canonical (100, 530), down.
  const std::vector<double> part = needed({300.0, 330.0, 400.0, 380.0});
  for (const auto& [edge, exact, sign] :
       {std::tuple{0, 200.0, -1.0}, {1, 430.0, -1.0}, {2, 250.0, 1.0}, {3, 455.0, 1.0}}) {
    const double beyond = (part[static_cast<std::size_t>(edge)] - exact) * sign;
    EXPECT_TRUE(beyond >= 1.0 && beyond <= 8.0) << edge << ": " << beyond;
  }
  const std::vector<double> proxy = needed({300.0, 330.0, 400.0, 380.0}, {0.25, 0.25});
  EXPECT_TRUE(proxy[0] > 140.0 && proxy[0] < part[0] && proxy[2] > part[2] && proxy[2] < 300.0);
  const std::vector<double> beside = needed({-500.0, -500.0, -400.0, -400.0});
  for (const std::size_t low : {0U, 1U}) {
    const double size = beside[low + 2] - beside[low];
    EXPECT_TRUE(size >= 1.0 && size <= 4.0 && beside[low] >= all[low] && beside[low + 2] <= all[low + 2]) << size;
  }
  const double infinite = 2147483647.0;
  EXPECT_EQ(needed({-infinite, -infinite, infinite, infinite}), all);
  session.setParam("upperLeft", {std::nan(""), 0.0});
  EXPECT_EQ(needed({300.0, 330.0, 400.0, 380.0}), all);
}

TEST(OfxRegionTest, AnEndlessSourceShowsTheProjectsFrameAndAnEndlessBackgroundAllOfItself) {
  constexpr double kEnd = 2147483647.0;
  constexpr RectD kEndless{-kEnd, -kEnd, kEnd, kEnd};
  Ready session;
  session.instance.clips.at("Source").region = kEndless;
  EXPECT_EQ(session.passedOn(), "") << "the rest of it is not shown";
  session.setCorners(kTrapezoid, kFrame);
  EXPECT_EQ(session.region(), (std::vector<double>{0.0, -2.0, 66.0, 46.0}));
  PropertySetRecord in = renderArguments(kFrame);
  PropertySetRecord out;
  in.put("OfxImageEffectPropRegionOfInterest", -kEnd, -kEnd, kEnd, kEnd);
  ASSERT_EQ(session.action("OfxImageEffectActionGetRegionsOfInterest", &in, &out), Status::Ok);
  EXPECT_EQ(out.get<double>("OfxImageClipPropRoI_Source", 2), 64.0);
  in.put("OfxPropChangeReason", std::string("OfxChangeUserEdited"));
  in.put("OfxPropName", std::string("reset"));
  ASSERT_EQ(session.action("OfxActionInstanceChanged", &in), Status::Ok);
  EXPECT_EQ(session.corner("upperRight"), (std::vector<double>{64.0, 48.0}));
  session.connect("Background", {.bounds = kFrame});
  session.instance.clips.at("Background").region = kEndless;
  EXPECT_EQ(session.region(), (std::vector<double>{-kEnd, -kEnd, kEnd, kEnd}));
}

// The render then says what is wrong.
TEST(OfxRegionTest, LeavesToTheHostWhatCannotBeDrawn) {
  Ready session;
  PropertySetRecord out;
  for (const double x : {std::nan(""), HUGE_VAL, 1e9}) {
    session.setParam("upperLeft", {x, 0.0});
    for (const char* action : {"OfxImageEffectActionGetRegionOfDefinition", "OfxImageEffectActionIsIdentity"}) {
      PropertySetRecord in = renderArguments(kFrame);
      EXPECT_EQ(session.action(action, &in, &out), Status::ReplyDefault) << action << x;
    }
  }
  session.setCorners(kTrapezoid, kFrame);
  for (const double scale : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
    PropertySetRecord in = renderArguments(kFrame, {scale, 1.0});
    EXPECT_EQ(session.action("OfxImageEffectActionGetRegionOfDefinition", &in, &out), Status::BadValue) << scale;
  }
  EXPECT_TRUE(out.values.empty());
  for (const double aspect : {0.0, -1.0, std::nan(""), HUGE_VAL}) {
    session.instance.clips.at("Output").properties.put("OfxImagePropPixelAspectRatio", aspect);
    EXPECT_EQ(session.region(), (std::vector<double>{0.0, -2.0, 66.0, 46.0})) << aspect;
  }
}

TEST(OfxRegionTest, PassesOnWhatItWouldNotChange) {
  Ready session;
  EXPECT_EQ(session.passedOn(), "Source");
  EXPECT_EQ(session.passedOn({0.37, 0.37}), "Source");
  session.setCorners(kTrapezoid, kFrame);
  EXPECT_EQ(session.passedOn(), "");
  session.setCorners(kOutline, kFrame);
  session.setParam("upperLeft", {0.0, 48.001});
  EXPECT_EQ(session.passedOn(), "");
  session.setCorners(kOutline, kFrame);
  for (const auto& [param, value] : {std::pair{"opacity", 0.5}, {"useFrom", 1.0}}) {
    const std::vector<double> before = session.corner(param);
    session.setParam(param, {value});
    EXPECT_EQ(session.passedOn(), "") << param;
    session.setParam(param, before);
  }
  session.connect("Background", {.bounds = kFrame});
  EXPECT_EQ(session.passedOn(), "");
  session.setParam("opacity", {0.0});
  EXPECT_EQ(session.passedOn(), "Background");
  session.connect("Background", {.bounds = kFrame, .premultiplication = "OfxImageAlphaUnPremultiplied"});
  EXPECT_EQ(session.passedOn(), "") << "the output's alpha is not straight";
}

TEST(OfxChangeTest, TheButtonsPutCornersOntoTheSourcesOutline) {
  Ready session;
  session.connect("Source", {.bounds = {5, 7, 45, 37}});
  PropertySetRecord in;
  in.put("OfxPropTime", 0.0);
  in.put("OfxPropChangeReason", std::string("OfxChangePluginEdited"));
  in.put("OfxPropName", std::string("reset"));
  EXPECT_EQ(session.action("OfxActionInstanceChanged", &in), Status::ReplyDefault);
  in.put("OfxPropChangeReason", std::string("OfxChangeUserEdited"));
  EXPECT_EQ(session.action("OfxActionInstanceChanged", &in), Status::Ok);
  EXPECT_EQ(session.corner("upperLeft"), (std::vector<double>{5.0, 37.0}));
  EXPECT_EQ(session.corner("lowerRight"), (std::vector<double>{45.0, 7.0}));
  EXPECT_EQ(session.corner("fromLowerRight"), (std::vector<double>{64.0, 0.0}));
  in.put("OfxPropName", std::string("resetFrom"));
  EXPECT_EQ(session.action("OfxActionInstanceChanged", &in), Status::Ok);
  EXPECT_EQ(session.corner("fromLowerRight"), (std::vector<double>{45.0, 7.0}));
  EXPECT_EQ(session.passedOn(), "Source");
  EXPECT_EQ(session.host.edits_open, 0);
}

TEST(OfxRenderTest, SaysWhatIsWrongUntilItIsRight) {
  Ready session;
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
  Ready session;
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
  Ready session;
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
    Ready session;
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
  Ready session;
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
  Ready session;
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
