// A substitute layer for a view that was started without one.
#pragma once

#include <string>

#include "cli/commands/Commands.h"

namespace vantorel::view {

// If the options name no layer, draws a test card into a temporary file, and names it. The destructor removes the file.
class StandInLayer {
 public:
  // Throws CommandError if the file cannot be written.
  explicit StandInLayer(const cli::ViewOptions& options);
  ~StandInLayer();
  StandInLayer(const StandInLayer&) = delete;
  StandInLayer& operator=(const StandInLayer&) = delete;

  const cli::ViewOptions& options() const { return options_; }

 private:
  cli::ViewOptions options_;
  std::string folder_;  // empty if a layer was given
};

}  // namespace vantorel::view
