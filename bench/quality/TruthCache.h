// Truths cost seconds each, so they are kept in files named for all that they depend on.
#pragma once

#include <filesystem>

#include "bench/quality/Scene.h"
#include "bench/quality/Truth.h"

namespace vantorel::quality {

class TruthCache {
 public:
  // Keeps files in that folder, which it makes. Throws std::filesystem::filesystem_error when it cannot.
  explicit TruthCache(std::filesystem::path folder);

  // The truth of the layers in the scene: read when there is a whole file of it, else computed and written.
  Truth truth(const Scene& scene, std::span<const Layer> layers) const;

 private:
  std::filesystem::path folder_;
};

}  // namespace vantorel::quality
