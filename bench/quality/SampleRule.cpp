#include "bench/quality/SampleRule.h"

#include <fmt/format.h>

#include <cmath>
#include <numbers>

#include "host/composing/SampleCount.h"

namespace vantorel::quality {

std::string sampleRuleCsv() {
  constexpr int kStepsOfDoubling = 12;
  std::string text = "degrees,shrunk,samples\n";
  for (int degrees = 0; degrees <= 90; ++degrees) {
    const double angle = degrees * std::numbers::pi / 180;
    for (int step = -2 * kStepsOfDoubling; step <= 5 * kStepsOfDoubling; ++step) {
      const double shrunk = std::exp2(static_cast<double>(step) / kStepsOfDoubling);
      const double cosine = degrees == 90 ? 0.0 : std::cos(angle);
      const double sine = degrees == 0 ? 0.0 : std::sin(angle);
      const host::Jacobian map{shrunk * cosine, -shrunk * sine, shrunk * sine, shrunk * cosine};
      text += fmt::format("{},{:.4f},{}\n", degrees, shrunk, host::samplesForFilter(map));
    }
  }
  return text;
}

}  // namespace vantorel::quality
