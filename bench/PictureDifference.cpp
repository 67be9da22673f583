#include "bench/PictureDifference.h"

#include <cmath>
#include <cstdio>
#include <map>

#include "bench/Cpu.h"
#include "bench/Peers.h"
#include "bench/Pictures.h"
#include "bench/VantorelFrames.h"

namespace vantorel::bench {

namespace {

constexpr host::Depth kDepth = host::Depth::Bits16;

std::vector<std::uint16_t> channelsOf(const host::ImageView& view) {
  std::vector<std::uint16_t> channels;
  for (int y = 0; y < view.size.height; ++y) {
    const auto* row = reinterpret_cast<const std::uint16_t*>(view.row(y));
    channels.insert(channels.end(), row, row + std::ptrdiff_t{4} * view.size.width);
  }
  return channels;
}

std::string signalToNoise(const std::vector<std::uint16_t>& a, const std::vector<std::uint16_t>& b) {
  double squares = 0;
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double difference = (int{a[i]} - int{b[i]}) / 65535.0;
    squares += difference * difference;
  }
  char text[32];
  std::snprintf(text, sizeof text, "%.1f dB", -10.0 * std::log10(squares / static_cast<double>(a.size())));
  return text;
}

std::vector<std::uint16_t> vantorelPicture(const std::shared_ptr<const host::Module>& module,
                                           const Workload& workload) {
  host::Instance instance = instanceFor(module, workload);
  renderFrame(instance, workload, kDepth, host::Quality::High, 1);
  return channelsOf(canvas(workload.canvas, kDepth));
}

std::vector<std::uint16_t> peerPicture(const Peer& peer, const Workload& workload) {
  const Drawing drawing = peer.prepare(workload, kDepth, 1);
  drawing.run();
  if (drawing.deliver) {
    drawing.deliver();
  }
  return channelsOf(canvas(workload.canvas, kDepth));
}

}  // namespace

std::vector<std::pair<std::string, std::string>> pictureDifferences(const std::shared_ptr<const host::Module>& module) {
  pinTo(1);
  std::map<std::string, std::string> found;
  for (const Peer& peer : allPeers()) {
    for (const std::string& name : peer.workloads) {
      const Workload workload = hdWorkload(name);
      if (workload.perspective) {
        found[name + " " + peer.tool] = signalToNoise(vantorelPicture(module, workload), peerPicture(peer, workload));
      }
    }
  }
  return {found.begin(), found.end()};
}

}  // namespace vantorel::bench
