#include "bench/Peers.h"

#include <algorithm>
#include <iterator>

#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

void addPeer(const Effort& effort, const Peer& peer, const Workload& workload, int threads) {
  for (const host::Depth depth : peer.depths) {
    preparePictures(workload, depth);
    add(effort, {frameLabels(workload, depth, peer.tool, threads), peer.prepare(workload, depth, threads).run,
                 std::int64_t{workload.canvas.width} * workload.canvas.height, peer.slow});
  }
}

}  // namespace

std::vector<Peer> allPeers() {
  std::vector<Peer> peers = openCvPeers();
  for (std::vector<Peer> more : {openImageIoPeers(), imageMagickPeers()}) {
    std::move(more.begin(), more.end(), std::back_inserter(peers));
  }
  return peers;
}

void addPeers(const Effort& effort) {
  for (const Peer& peer : allPeers()) {
    for (const int factor : {1, 2}) {
      for (const Workload& workload : workloadsAt(factor)) {
        if (contains(peer.workloads, workload.name) && (factor == 1 || peer.runs_at_uhd)) {
          addPeer(effort, peer, workload, 1);
        }
        if (contains(peer.two_thread_workloads, workload.name) && factor == 1) {
          addPeer(effort, peer, workload, 2);
        }
      }
    }
  }
}

}  // namespace vantorel::bench
