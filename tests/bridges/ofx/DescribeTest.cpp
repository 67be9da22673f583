// What the plug-in tells the host about itself, and what it leaves to the host.
#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <variant>
#include <vector>

#include "tests/bridges/ofx/ReadySession.h"

namespace vantorel::ofx {
namespace {

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
  ReadySession session;
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

}  // namespace
}  // namespace vantorel::ofx
