// The handles that are dragged over the picture, and how they are drawn.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "tests/bridges/ofx/ReadySession.h"

namespace {

int vertices_drawn = 0;

}  // namespace

// What the plug-in finds of OpenGL in a process that has it. The names are OpenGL's.
// NOLINTBEGIN(readability-identifier-naming)
#pragma GCC visibility push(default)
extern "C" {
void glBegin(unsigned /*mode*/) {}
void glEnd() {}
void glVertex2d(double /*x*/, double /*y*/) {
  ++vertices_drawn;
}
void glColor4f(float /*red*/, float /*green*/, float /*blue*/, float /*alpha*/) {}
}
#pragma GCC visibility pop
// NOLINTEND(readability-identifier-naming)

namespace vantorel::ofx {
namespace {

struct OfxOverlayTest : ::testing::Test {
  ReadySession session;

  OfxOverlayTest() { session.setCorners(kTrapezoid, kFrame); }
  Status pen(const char* action, double x, double y, double pixel = 0.25) {
    PropertySetRecord in;
    in.put("OfxInteractPropPenPosition", x, y);
    in.put("OfxInteractPropPixelScale", pixel, pixel);
    return session.overlay(action, &in);
  }
  Status key(const char* action, int symbol) {
    PropertySetRecord in;
    in.put("kOfxPropKeySym", symbol);
    return session.overlay(action, &in);
  }
  std::vector<std::string> draw() {
    DrawContextRecord context;
    PropertySetRecord in;
    in.put("OfxInteractPropPixelScale", 0.25, 0.25);
    in.put("OfxInteractPropDrawContext", static_cast<void*>(&context));
    EXPECT_EQ(session.overlay("OfxInteractActionDraw", &in), Status::Ok);
    return context.calls;
  }
};

TEST_F(OfxOverlayTest, DragsTheNearestCornerFromWhereItWasTaken) {
  EXPECT_EQ(pen("OfxInteractActionPenMotion", 10, 40), Status::ReplyDefault);
  EXPECT_EQ(pen("OfxInteractActionPenDown", 10.5, 40.5), Status::Ok);
  EXPECT_EQ(session.host.edits_open, 1);
  EXPECT_EQ(pen("OfxInteractActionPenMotion", 20.5, 30.5), Status::Ok);
  EXPECT_EQ(session.corner("upperLeft"), (std::vector<double>{20.0, 30.0}));
  EXPECT_EQ(pen("OfxInteractActionPenUp", 21.5, 30.5), Status::Ok);
  EXPECT_EQ(session.corner("upperLeft"), (std::vector<double>{21.0, 30.0}));
  EXPECT_EQ(session.corner("upperRight"), (std::vector<double>{50.0, 40.0}));
  EXPECT_EQ(session.host.edits_open, 0);
  EXPECT_EQ(pen("OfxInteractActionPenDown", 63.5, 47.5), Status::ReplyDefault) << "nothing there";
  EXPECT_EQ(pen("OfxInteractActionPenDown", 20, std::nan("")), Status::BadValue);
  // The handle is as large on the screen as before, so that it reaches farther in the picture.
  EXPECT_EQ(pen("OfxInteractActionPenDown", 63.5, 47.5, 4.0), Status::Ok);
  EXPECT_EQ(session.overlay("OfxInteractActionLoseFocus", nullptr), Status::BadHandle) << "no arguments";
  PropertySetRecord in;
  EXPECT_EQ(session.overlay("OfxInteractActionLoseFocus", &in), Status::Ok);
  EXPECT_EQ(session.host.edits_open, 0);
}

TEST_F(OfxOverlayTest, SidesMoveTwoCornersAndTheInsideAllOfThem) {
  pen("OfxInteractActionPenDown", 30, 40.2);
  pen("OfxInteractActionPenUp", 31, 42.2);
  EXPECT_EQ(session.corner("upperLeft"), (std::vector<double>{11.0, 42.0}));
  EXPECT_EQ(session.corner("upperRight"), (std::vector<double>{51.0, 42.0}));
  EXPECT_EQ(session.corner("lowerLeft"), (std::vector<double>{6.0, 8.0}));
  pen("OfxInteractActionPenDown", 30, 20);
  pen("OfxInteractActionPenUp", 25, 19);
  EXPECT_EQ(session.corner("upperLeft"), (std::vector<double>{6.0, 41.0}));
  EXPECT_EQ(session.corner("lowerRight"), (std::vector<double>{55.0, 3.0}));
}

TEST_F(OfxOverlayTest, ArrowKeysMoveWhatWasHeldLast) {
  constexpr int kLeft = 0xFF51;
  constexpr int kUp = 0xFF52;
  constexpr int kShift = 0xFFE1;
  EXPECT_EQ(key("OfxInteractActionKeyDown", kUp), Status::ReplyDefault) << "nothing was held";
  pen("OfxInteractActionPenDown", 10, 40);
  pen("OfxInteractActionPenUp", 10, 40);
  EXPECT_EQ(key("OfxInteractActionKeyDown", kUp), Status::Ok);
  EXPECT_EQ(key("OfxInteractActionKeyRepeat", kUp), Status::Ok);
  EXPECT_EQ(key("OfxInteractActionKeyUp", kUp), Status::ReplyDefault);
  key("OfxInteractActionKeyDown", kShift);
  EXPECT_EQ(key("OfxInteractActionKeyDown", kLeft), Status::Ok);
  key("OfxInteractActionKeyUp", kShift);
  EXPECT_EQ(key("OfxInteractActionKeyDown", 'a'), Status::ReplyDefault);
  EXPECT_EQ(session.corner("upperLeft"), (std::vector<double>{0.0, 42.0}));
  EXPECT_EQ(session.host.edits_open, 0);
}

TEST_F(OfxOverlayTest, DrawsByOpenGlWhereTheHostHasNoContextOfItsOwn) {
  vertices_drawn = 0;
  PropertySetRecord in;
  EXPECT_EQ(session.overlay("OfxInteractActionDraw", &in), Status::Ok);
  EXPECT_EQ(vertices_drawn, 5 * 4);
  session.setCorners({{0, 0}, {60, 0}, {0, 40}, {10, 10}}, kFrame);
  vertices_drawn = 0;
  EXPECT_EQ(session.overlay("OfxInteractActionDraw", &in), Status::Ok);
  // Every letter has two points and more.
  EXPECT_GE(vertices_drawn, 5 * 4 + 2 * static_cast<int>(std::strlen("notched:noperspective")));
}

TEST_F(OfxOverlayTest, DrawsTheQuadrilateralsAndNamesDegenerateOnes) {
  const std::vector<std::string> plain{"2 of 4", "3 of 2", "3 of 2", "3 of 2", "3 of 2"};
  EXPECT_EQ(draw(), plain);
  session.setParam("useFrom", {1.0});
  EXPECT_EQ(draw().size(), 2 * plain.size());
  session.setParam("useFrom", {0.0});
  const struct {
    host::Corners corners;
    const char* word;
  } cases[] = {{{{0, 0}, {50, 40}, {0, 40}, {50, 0}}, "crossed"},
               {{{0, 0}, {60, 0}, {0, 40}, {10, 10}}, "notched"},
               {{{5, 5}, {5, 5}, {5, 5}, {5, 5}}, "flat"}};
  for (const auto& c : cases) {
    session.setCorners(c.corners, kFrame);
    EXPECT_EQ(draw().back().find(c.word), 0U) << draw().back();
  }
  session.setParam("useFrom", {1.0});
  session.setParam("upperLeft", {std::nan(""), 0.0});
  EXPECT_EQ(draw(), plain) << "only the from corners can be shown";
}

}  // namespace
}  // namespace vantorel::ofx
