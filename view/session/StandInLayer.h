// A layer for a view that was given none.
#pragma once

#include <string>

#include "cli/commands/Commands.h"

namespace vantorel::view {

// Where the options name no layer, draws a test card into a file of its own, which goes with this object, and names it.
class StandInLayer {
 public:
  // Throws CommandError where the file cannot be written.
  explicit StandInLayer(const cli::ViewOptions& options);
  ~StandInLayer();
  StandInLayer(const StandInLayer&) = delete;
  StandInLayer& operator=(const StandInLayer&) = delete;

  const cli::ViewOptions& options() const { return options_; }

 private:
  cli::ViewOptions options_;
  std::string folder_;  // empty where a layer was given
};

}  // namespace vantorel::view
