// Other tools' libraries, doing the same works on the same pictures in the same process.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/Case.h"

namespace vantorel::bench {

// A work made ready for a peer.
struct Drawing {
  std::function<void()> run;  // what is measured
  std::function<void()>
      deliver;  // puts the result into the shared canvas where `run` leaves it elsewhere; may be empty
};

struct Peer {
  std::string tool;
  std::vector<std::string> works;         // measured at 1920x1080 and one thread
  std::vector<std::string> works_at_two;  // and at two threads
  std::vector<host::Depth> depths;
  bool at_uhd;  // measured at 3840x2160 too
  bool slow;    // takes a second or more
  Drawing (*prepare)(const Work& work, host::Depth depth, int threads);
};

std::vector<Peer> openCvPeers();
std::vector<Peer> openImageIoPeers();
std::vector<Peer> imageMagickPeers();
std::vector<Peer> allPeers();

void addPeers(const Effort& effort);

}  // namespace vantorel::bench
