// Other tools' libraries, measured on the same workloads and pictures in the same process.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "bench/Case.h"

namespace vantorel::bench {

// A workload prepared for a peer.
struct Drawing {
  std::function<void()> run;  // what is measured
  // Copies the result into the shared canvas; empty if `run` draws there itself.
  std::function<void()> deliver;
};

struct Peer {
  std::string tool;
  std::vector<std::string> workloads;             // measured at 1920x1080 and one thread
  std::vector<std::string> two_thread_workloads;  // measured at 1920x1080 and two threads too
  std::vector<host::Depth> depths;
  bool runs_at_uhd;  // measured at 3840x2160 too
  bool slow;         // takes a second or more
  Drawing (*prepare)(const Workload& workload, host::Depth depth, int threads);
};

std::vector<Peer> openCvPeers();
std::vector<Peer> openImageIoPeers();
std::vector<Peer> imageMagickPeers();
std::vector<Peer> allPeers();

void addPeers(const Effort& effort);

}  // namespace vantorel::bench
