// How long the OpenFX plug-in takes for whole frames and for tiles, beside the embedded host's own frames.
//
//   vantorel_ofx_bench [ROUNDS [FILTER]]
//
// One line per scene, depth and quality: the embedded host's frame in milliseconds of processor time on one thread, and
// as multiples of it the canvas-independent frame, the plug-in's frame, and all tiles of 64x64 that make up a frame, on
// the host's grid and off it. Every round draws each of them once, in turn; medians are printed.
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <ctime>
#include <functional>
#include <string>
#include <vector>

#include "bridges/common/EmbeddedModule.h"
#include "host/Instance.h"
#include "tests/bridges/ofx/Session.h"

namespace vantorel::ofx {
namespace {

constexpr RectI kFrame{0, 0, 1920, 1080};
constexpr int kTile = 64;

struct Scene {
  const char* name;
  host::Corners corners;
};
constexpr Scene kScenes[] = {
    {"perspective", {{190.5, 60.0}, {1750.0, 130.25}, {80.0, 1010.0}, {1860.0, 970.5}}},
    {"covering", {{-20.5, -30.0}, {1950.0, -10.25}, {-80.0, 1110.0}, {2010.0, 1120.5}}},
    {"shrunk", {{620.5, 300.0}, {1250.0, 340.25}, {580.0, 810.0}, {1300.0, 770.5}}},
    {"bilinear", {{190.5, 60.0}, {1750.0, 130.25}, {80.0, 1010.0}, {760.0, 470.5}}},
};

struct Kind {
  const char* name;
  const char* ofx_name;
  host::Depth depth;
};
constexpr Kind kKinds[] = {{"8", "OfxBitDepthByte", host::Depth::Bits8},
                           {"16", "OfxBitDepthShort", host::Depth::Bits16},
                           {"float", "OfxBitDepthFloat", host::Depth::Float}};
constexpr const char* kQualities[] = {"standard", "high", "best"};

double processorSeconds() {
  timespec time{};
  clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
  return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  return values[values.size() / 2];
}

// Opaque, without a period that a row or a tile has.
template <typename Channel>
void paint(PropertySetRecord& image, double opaque) {
  for (int y = kFrame.y1; y < kFrame.y2; ++y) {
    auto* const row = reinterpret_cast<Channel*>(pixelOf(image, 0, y));
    for (int x = 0; x < kFrame.width(); ++x) {
      for (int c = 0; c < 4; ++c) {
        const int value = (x * 7 + y * 13 + x * y / 91 + c * 50) % 251;
        row[4 * x + c] = static_cast<Channel>(c == 3 ? opaque : opaque * value / 251.0);
      }
    }
  }
}

PropertySetRecord& connectSource(Session& session, const Kind& kind) {
  PropertySetRecord& image = session.connect("Source", {.bounds = kFrame, .depth = kind.ofx_name});
  switch (kind.depth) {
    case host::Depth::Bits8:
      paint<std::uint8_t>(image, 255.0);
      break;
    case host::Depth::Bits16:
      paint<std::uint16_t>(image, 65535.0);
      break;
    case host::Depth::Float:
      paint<float>(image, 1.0);
      break;
  }
  return image;
}

void orExit(bool is_fine, const std::string& message) {
  if (!is_fine) {
    fmt::print(stderr, "vantorel_ofx_bench: {}\n", message);
    std::exit(1);
  }
}

void drawByPlugin(Session& session, const RectI& window) {
  orExit(session.render(window) == Status::Ok, "the plug-in's render failed: " + session.host.message);
}

void drawTiles(Session& session, int offset_x, int offset_y) {
  for (int y = offset_y; y < kFrame.y2; y += kTile) {
    for (int x = offset_x; x < kFrame.x2; x += kTile) {
      drawByPlugin(session,
                   {std::max(x, 0), std::max(y, 0), std::min(x + kTile, kFrame.x2), std::min(y + kTile, kFrame.y2)});
    }
  }
}

void measure(const Scene& scene, const Kind& kind, int quality, int rounds) {
  Session session({static_cast<double>(kFrame.width()), static_cast<double>(kFrame.height())});
  session.host.processors = 1;
  orExit(session.open() == Status::Ok, "the plug-in does not open");
  PropertySetRecord& source = connectSource(session, kind);
  PropertySetRecord& target = session.connect("Output", {.bounds = kFrame, .depth = kind.ofx_name});
  session.setCorners(scene.corners, kFrame);
  session.setParam("quality", {static_cast<double>(quality)});

  host::Instance instance(*bridges::embeddedModule());
  orExit(instance.setCorners(scene.corners).has_value(), "the corners are refused");
  host::FrameOptions options;
  options.quality = static_cast<host::Quality>(quality);
  options.threads = 1;
  const auto rows = static_cast<std::ptrdiff_t>(host::bytesPerPixel(kind.depth)) * kFrame.width();
  const host::Size size{kFrame.width(), kFrame.height()};
  const auto draw_by_host = [&](bool is_independent) {
    options.canvas_independent = is_independent;
    const host::ConstImageView layer{pixelOf(source, 0, kFrame.y2 - 1), -rows, size, kind.depth};
    const host::ImageView output{pixelOf(target, 0, kFrame.y2 - 1), -rows, size, kind.depth};
    orExit(instance.render(layer, {0, 0, size.width, size.height}, output, options).has_value(),
           "the embedded host's frame failed");
  };

  const std::array<std::function<void()>, 5> ways{
      [&] { draw_by_host(false); }, [&] { draw_by_host(true); }, [&] { drawByPlugin(session, kFrame); },
      [&] { drawTiles(session, 0, kFrame.y2 % kTile - kTile); }, [&] { drawTiles(session, -23, -41); }};
  std::array<std::vector<double>, ways.size()> seconds;
  for (int round = -1; round < rounds; ++round) {
    for (std::size_t i = 0; i < ways.size(); ++i) {
      const double begin = processorSeconds();
      ways[i]();
      if (round >= 0) {
        seconds[i].push_back(processorSeconds() - begin);
      }
    }
  }
  const double host_frame = median(seconds[0]);
  fmt::print("{:<12} {:<6} {:<9} {:8.2f} {:8.2f} {:8.2f} {:8.2f} {:8.2f}\n", scene.name, kind.name, kQualities[quality],
             1e3 * host_frame, median(seconds[1]) / host_frame, median(seconds[2]) / host_frame,
             median(seconds[3]) / host_frame, median(seconds[4]) / host_frame);
  std::fflush(stdout);
}

int run(int argc, char** argv) {
  const int rounds = argc > 1 ? std::max(1, std::atoi(argv[1])) : 7;
  const std::string filter = argc > 2 ? argv[2] : "";
  fmt::print("{:<12} {:<6} {:<9} {:>8} {:>8} {:>8} {:>8} {:>8}\n", "scene", "depth", "quality", "host ms", "indep.",
             "plug-in", "tiles", "off grid");
  for (const Scene& scene : kScenes) {
    for (const Kind& kind : kKinds) {
      for (int quality = 0; quality < 3; ++quality) {
        if (fmt::format("{} {} {}", scene.name, kind.name, kQualities[quality]).find(filter) != std::string::npos) {
          measure(scene, kind, quality, rounds);
        }
      }
    }
  }
  return 0;
}

}  // namespace
}  // namespace vantorel::ofx

int main(int argc, char** argv) {
  return vantorel::ofx::run(argc, argv);
}
