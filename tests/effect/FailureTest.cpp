// Every call that a frame makes of its host fails in turn: what the effect returns, what it still calls, and that it
// changes nothing else.
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/effect/ScriptedHost.h"

namespace {

struct Frame {
  std::int32_t command;
  int depth;
  std::int32_t quality;
  bool crossed;           // corners that the bilinear renderer draws
  Log before;             // what precedes the reads that the choice of the path makes
  Log after;              // what follows them
  Log after_failed_read;  // what follows when they fail, which chooses the bilinear path
};

std::string callbackOf(const std::string& line) {
  return line.substr(0, line.find(' '));
}

// What a failing call leads to.
struct Outcome {
  Log log;
  std::int32_t code;
  Log messages = {};
};

Outcome outcomeOf(const Frame& frame, const Log& all, std::size_t failing) {
  const std::string callback = callbackOf(all[failing]);
  const Log up_to(all.begin(), all.begin() + static_cast<int>(failing) + 1);
  if (failing >= frame.before.size() && failing < frame.before.size() + kReadCorners.size()) {
    return {up_to + frame.after_failed_read, 0};
  }
  if (callback == "release" || callback == "fill") {  // ignored
    return {all, 0};
  }
  if (all[failing] == "acquire PF iterateFloat Suite 1") {
    return {up_to + Log{"release PF SamplingFloat Suite 1"}, ERR_SUITE_UNAVAILABLE};
  }
  if (callback == "acquire") {
    const std::string message = "Not able to acquire KZFX Suite.";
    return {up_to + Log{"sprintf " + message}, ERR_FAILED, {message}};
  }
  if (callback == "get_pixel_format") {
    return {up_to + Log{"release PF World Suite 2"}, 62};
  }
  return {callback == "iterate_float" ? all : up_to, 62};
}

void expectOutcomes(const Frame& frame) {
  const Log all = frame.before + kReadCorners + frame.after;
  for (std::size_t n = 0; n <= all.size(); ++n) {  // the last round: nothing fails
    ScriptedHost host(frame.depth);
    host.in.quality = frame.quality;
    host.output.fillBytes(0x11);
    std::string drawn_at_failure = host.output.pixelBytes();
    host.on_failure = [&] { drawn_at_failure = host.output.pixelBytes(); };
    std::memset(static_cast<void*>(&host.result), 0x33, sizeof host.result);
    const PF_PreRenderResult before = host.result;
    if (frame.crossed) {
      host.setCorners({{6, 1}, {1, 1}, {6, 5}, {1, 5}});
    }
    const std::string callback = n < all.size() ? callbackOf(all[n]) : "";
    const auto earlier = std::count_if(all.begin(), all.begin() + static_cast<int>(std::min(n, all.size())),
                                       [&](const std::string& line) { return callbackOf(line) == callback; });
    host.fail(callback, static_cast<int>(earlier) + 1, 62);
    const Outcome expected = n < all.size() ? outcomeOf(frame, all, n) : Outcome{all, 0};
    EXPECT_EQ(host.run(frame.command), expected.code) << frame.command << " " << frame.depth << " " << callback << n;
    for (std::string& line : host.log) {  // the iterations' own arguments are another test's matter
      line = line.substr(0, line.find("iterate_") == 0 ? line.find(' ') : std::string::npos);
    }
    EXPECT_EQ(host.log, expected.log) << frame.command << " " << frame.depth << " " << callback;
    if (frame.command != CMD_FRAME_SETUP || expected.code != 0) {
      EXPECT_TRUE(host.outHasMessages(expected.messages));
    }
    const bool answered = std::memcmp(&before, &host.result, sizeof before) != 0;
    EXPECT_EQ(answered, frame.command == CMD_PRE_RENDER && expected.code == 0);
    EXPECT_TRUE(host.output.guardsIntact() && host.input.guardsIntact());
    EXPECT_TRUE(host.parameters_out == 0 && host.suites_out == 0) << callback;
    EXPECT_TRUE(expected.code == 0 || host.output.pixelBytes() == drawn_at_failure) << callback << " draws on";
  }
}

}  // namespace

TEST(Failures, EndEveryFrameInOrder) {
  const Log worlds = {"checkout_layer_pixels fx 0", "checkout_output fx"};
  const Log bilinear = kReadCorners + Log{"fill fx null null output"} + kAskDepth;
  const Log iterations[] = {{"iterate_8"},
                            {"iterate_16"},
                            {"acquire PF SamplingFloat Suite 1", "acquire PF iterateFloat Suite 1", "iterate_float",
                             "release PF iterateFloat Suite 1", "release PF SamplingFloat Suite 1"}};
  for (int i = 0; i < 3; ++i) {
    const Log perspective = kReadCorners + kAskDepth + iterations[i];
    for (const std::int32_t quality : {0, PF_QUALITY_HIGH}) {
      const auto expect = [&](std::int32_t command, bool crossed, const Log& before, const Log& after,
                              const Log& after_failed_read) {
        expectOutcomes({command, 8 << i, quality, crossed, before, after, after_failed_read});
      };
      expect(CMD_FRAME_SETUP, false, {}, kReadCorners, {});
      expect(CMD_FRAME_SETUP, true, {}, {}, {});
      for (const bool crossed : {false, true}) {
        expect(CMD_PRE_RENDER, crossed, {"checkout_layer fx 0 0 [0 0 8 6] 5 2 24"}, kReadCorners, kReadCorners);
        expect(CMD_SMART_RENDER, crossed, worlds, crossed ? bilinear : perspective, bilinear);
        expect(CMD_RENDER, crossed, {}, crossed ? bilinear : perspective, bilinear);
      }
    }
  }
}

TEST(Failures, ReadsThatKeepFailingLeaveTheOutputAlone) {
  ScriptedHost host;
  host.output.fillBytes(0x11);
  host.fail("checkout_param", 1, 63, true);
  EXPECT_EQ(host.run(CMD_RENDER), 63);
  EXPECT_EQ(host.output.at<PF_Pixel8>(0, 0).alpha, 0x11);
}

TEST(Failures, WithoutAWorldNothingIsDrawn) {
  for (const bool has_input : {true, false}) {
    ScriptedHost host;
    host.hands_back_input = has_input;
    host.hands_back_output = !has_input;
    EXPECT_EQ(host.run(CMD_SMART_RENDER), 0);
    EXPECT_EQ(host.log.back(), "checkout_output fx");
  }
}
