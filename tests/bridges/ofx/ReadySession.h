// A session that is ready to render: it has an instance whose source is a white frame.
#pragma once

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "tests/bridges/ofx/Session.h"

namespace vantorel::ofx {

inline constexpr RectI kFrame{0, 0, 64, 48};
inline constexpr host::Corners kTrapezoid{{10, 8}, {50, 8}, {6, 40}, {60, 44}};

struct ReadySession : Session {
  ReadySession() {
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

}  // namespace vantorel::ofx
