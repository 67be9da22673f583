// Draws a white picture onto a quadrilateral of a clear canvas: draw MODULE
#include <cstdio>
#include <cstring>

#include "host/Instance.h"

namespace host = vantorel::host;

// Both pictures are in the program's own memory.
static std::byte layer[4 * 16 * 16];
static std::byte canvas[4 * 64 * 48];

static host::Result<host::FrameResult> draw(const std::shared_ptr<const host::Module>& module) {
  host::Instance effect(module);
  std::memset(layer, 255, sizeof layer);
  return effect.setCorners(host::Corners{{8, 6}, {50, 10}, {12, 40}, {56, 36}}).and_then([&] {
    return effect.render({layer, 4 * 16, {16, 16}, host::Depth::Bits8}, {0, 0, 64, 48},
                         {canvas, 4 * 64, {64, 48}, host::Depth::Bits8}, {});
  });
}

int main(int argc, char** argv) {
  const auto frame = host::Module::load(argc > 1 ? argv[1] : "").and_then(draw);
  if (!frame) {
    std::fprintf(stderr, "draw: %s\n", host::errorText(frame.error()).c_str());
    return 1;
  }
  std::printf("rows %d to %d; alpha %d in the middle, %d in a corner\n", frame->drawn.top, frame->drawn.bottom,
              static_cast<int>(canvas[4 * (64 * 24 + 32)]), static_cast<int>(canvas[0]));
}
