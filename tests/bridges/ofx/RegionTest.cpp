// Regions, identity, and the buttons that place corners.
#include <gtest/gtest.h>

#include <cmath>
#include <initializer_list>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/bridges/ofx/ReadySession.h"

namespace vantorel::ofx {
namespace {

constexpr host::Corners kOutline{{0, 0}, {64, 0}, {0, 48}, {64, 48}};

TEST(OfxRegionTest, TheBoxOfTheCornersWithTheBackground) {
  ReadySession session;
  session.setCorners(kTrapezoid, kFrame);
  EXPECT_EQ(session.region(), (std::vector<double>{0.0, -2.0, 66.0, 46.0}));
  session.connect("Background", {.bounds = {-10, 3, 70, 100}});
  EXPECT_EQ(session.region(), (std::vector<double>{-10.0, -2.0, 70.0, 100.0}));
}

TEST(OfxRegionTest, WhatAWindowNeedsOfTheSource) {
  constexpr RectI kLarge{100, 50, 740, 530};
  ReadySession session;
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
  ReadySession session;
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
  ReadySession session;
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
  ReadySession session;
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
  ReadySession session;
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

}  // namespace
}  // namespace vantorel::ofx
