#include "bench/Peers.h"

#include <algorithm>
#include <iterator>

#include "bench/Pictures.h"

namespace vantorel::bench {

namespace {

bool contains(const std::vector<std::string>& names, const std::string& name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

void addPeer(const Effort& effort, const Peer& peer, const Work& work, int threads) {
  for (const host::Depth depth : peer.depths) {
    preparePictures(work, depth);
    add(effort, {frameLabels(work, depth, peer.tool, threads), peer.prepare(work, depth, threads).run,
                 std::int64_t{work.canvas.width} * work.canvas.height, peer.slow});
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
      for (const Work& work : worksAt(factor)) {
        if (contains(peer.works, work.name) && (factor == 1 || peer.at_uhd)) {
          addPeer(effort, peer, work, 1);
        }
        if (contains(peer.works_at_two, work.name) && factor == 1) {
          addPeer(effort, peer, work, 2);
        }
      }
    }
  }
}

}  // namespace vantorel::bench
