// Each truth takes seconds to compute, so they are cached in files, named by a hash of everything that they depend on.
#pragma once

#include <filesystem>

#include "bench/quality/Scene.h"
#include "bench/quality/Truth.h"

namespace vantorel::quality {

class TruthCache {
 public:
  // Caches files in that folder, which it creates. Throws std::filesystem::filesystem_error if it cannot.
  explicit TruthCache(std::filesystem::path folder);

  // The truth of the layers in the scene: read if there is a complete file of it, else computed and written.
  Truth truth(const Scene& scene, std::span<const Layer> layers) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace vantorel::quality
