// A host that refuses gets an answer, never a crash, and gets its images and edits back.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <limits>

#include "tests/bridges/ofx/Session.h"

namespace vantorel::ofx {
namespace {

constexpr RectI kFrame{0, 0, 16, 12};
constexpr host::Corners kCorners{{1, 2}, {14, 1}, {3, 11}, {15, 10}};

void connectAll(Session& session) {
  for (const char* name : {"Source", "Background", "Matte", "Output"}) {
    if (session.instance.clips.count(name) != 0) {
      PropertySetRecord& image = session.connect(name, {.bounds = kFrame, .depth = "OfxBitDepthByte"});
      std::memset(image.pixels.data(), 0x40, image.pixels.size());
    }
  }
}

bool isStatus(Status status) {
  const int value = static_cast<int>(status);
  return (value >= 0 && value <= 14) || value == 1000;
}

// Everything that a host does with an instance, once; what an action does not answer with success, the next ones take
// as a host would.
void useOnce(Session& session) {
  session.host.now = 7.0;
  if (session.open() != Status::Ok) {
    return;
  }
  connectAll(session);
  try {
    session.setCorners(kCorners, kFrame);
  } catch (const std::out_of_range&) {
    return;  // the host has lost a parameter
  }
  PropertySetRecord in = renderArguments(kFrame);
  in.put("OfxPropTime", session.host.now);
  in.put("OfxPropChangeReason", std::string("OfxChangeUserEdited"));
  in.put("OfxPropName", std::string("reset"));
  in.put("OfxImageEffectPropRegionOfInterest", 2.0, 1.0, 9.0, 8.0);
  for (const char* action :
       {"OfxImageEffectActionGetClipPreferences", "OfxImageEffectActionGetRegionOfDefinition",
        "OfxImageEffectActionGetRegionsOfInterest", "OfxImageEffectActionIsIdentity", "OfxImageEffectActionRender",
        "OfxActionInstanceChanged", "OfxImageEffectActionRender", "OfxActionPurgeCaches"}) {
    PropertySetRecord out;
    const Status status = session.action(action, &in, &out);
    EXPECT_TRUE(isStatus(status)) << action;
    EXPECT_TRUE(status != Status::ReplyDefault || action != std::string("OfxImageEffectActionRender"));
  }
  DrawContextRecord context;
  for (const char* action : {"OfxInteractActionDraw", "OfxInteractActionPenDown", "OfxInteractActionPenMotion",
                             "OfxInteractActionPenUp", "OfxInteractActionKeyDown", "OfxInteractActionLoseFocus"}) {
    PropertySetRecord event;
    event.put("OfxInteractPropPenPosition", 0.0, 12.0);
    event.put("OfxInteractPropPixelScale", 0.5, 0.5);
    event.put("OfxInteractPropDrawContext", static_cast<void*>(&context));
    event.put("kOfxPropKeySym", 0xFF52);
    EXPECT_TRUE(isStatus(session.overlay(action, &event))) << action;
  }
  session.close();
}

constexpr std::array kStatuses{Status::Ok,       Status::ReplyDefault,       Status::Failed,     Status::Fatal,
                               Status::Unknown,  Status::MissingHostFeature, Status::Memory,     Status::BadHandle,
                               Status::BadIndex, Status::BadValue,           Status::ImageFormat};

// Every status at every call, or where threads are watched, which takes ten times as long, one of them in turn.
#if defined(__SANITIZE_THREAD__)
constexpr std::size_t kStatusStep = kStatuses.size();
#else
constexpr std::size_t kStatusStep = 1;
#endif

int callsOfOneUse() {
  Session session({16.0, 12.0});
  session.host.refused_call = std::numeric_limits<int>::max();
  useOnce(session);
  EXPECT_EQ(session.host.calls_at_other_times, 0);
  return session.host.calls;
}

void useWithRefusal(int call, Status status, bool all_after) {
  Session session({16.0, 12.0});
  session.host.refused_call = call;
  session.host.refusal = status;
  session.host.refuses_all_after = all_after;
  useOnce(session);
  const std::string name = static_cast<std::size_t>(call) < session.host.log.size()
                               ? session.host.log[static_cast<std::size_t>(call)]
                               : "none";
  EXPECT_EQ(session.host.images_out, 0) << name << " refused";
  EXPECT_EQ(session.host.edits_open, 0) << name << " refused";
}

TEST(OfxFaultTest, EveryCallMayBeRefusedWithEveryStatus) {
  const int calls = callsOfOneUse();
  ASSERT_GT(calls, 300);
  for (int call = 0; call < calls; ++call) {
    for (std::size_t i = static_cast<std::size_t>(call) % kStatusStep; i < kStatuses.size(); i += kStatusStep) {
      useWithRefusal(call, kStatuses[i], false);
    }
  }
}

TEST(OfxFaultTest, AHostMayRefuseEverythingFromAnyCallOn) {
  const int calls = callsOfOneUse();
  for (int call = 0; call < calls; ++call) {
    useWithRefusal(call, kStatuses[static_cast<std::size_t>(call) % kStatuses.size()], true);
  }
}

TEST(OfxFaultTest, AnyFunctionOfASuiteMayBeNull) {
  for (const auto& [suite, functions] : {std::pair{"OfxPropertySuite 1", 18U},
                                         {"OfxImageEffectSuite 1", 13U},
                                         {"OfxParameterSuite 1", 18U},
                                         {"OfxMessageSuite 2", 3U},
                                         {"OfxMultiThreadSuite 1", 9U},
                                         {"OfxInteractSuite 1", 3U},
                                         {"OfxDrawSuite 1", 6U}}) {
    for (std::size_t i = 0; i < functions; ++i) {
      Session session({16.0, 12.0});
      session.host.null_function = {suite, i};
      useOnce(session);
    }
  }
}

TEST(OfxFaultTest, ActionsWithoutTheirArgumentsAreRefused) {
  Session session;
  ASSERT_EQ(session.open(), Status::Ok);
  for (const char* action : {"OfxImageEffectActionRender", "OfxImageEffectActionGetRegionOfDefinition",
                             "OfxImageEffectActionGetRegionsOfInterest", "OfxImageEffectActionIsIdentity",
                             "OfxImageEffectActionGetClipPreferences"}) {
    EXPECT_EQ(session.action(action),
              action == std::string("OfxImageEffectActionGetClipPreferences") ? Status::BadHandle : Status::Failed)
        << action;
    EffectRecord stranger;
    EXPECT_EQ(session.perform(action, &stranger), Status::BadHandle) << action;
  }
  for (const char* action : {"OfxActionDescribe", "OfxImageEffectActionDescribeInContext", "OfxActionCreateInstance",
                             "OfxActionDestroyInstance", "OfxImageEffectActionRender"}) {
    EXPECT_EQ(session.perform(action, nullptr), Status::BadHandle) << action;
  }
  EXPECT_EQ(session.perform(nullptr, nullptr), Status::BadValue);
  EXPECT_EQ(session.perform("OfxActionOfTomorrow", nullptr), Status::ReplyDefault);
  EXPECT_EQ(session.close(), Status::Ok);
  EXPECT_EQ(session.perform("OfxImageEffectActionRender", nullptr), Status::Failed) << "after unload";
}

}  // namespace
}  // namespace vantorel::ofx
