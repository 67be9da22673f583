// The options about corners files.
#pragma once

#include <string>

#include "tracks/Resolve.h"

namespace vantorel::cli {

struct TrackOptions {
  std::string files;               // FILE, or four of one point each as FILE,FILE,FILE,FILE; "-" is standard input
  tracks::ResolveOptions resolve;  // without the pictures' sizes
  std::string first_option;        // the first given option that applies to the files; empty if none
};

}  // namespace vantorel::cli
