#include "view/session/StandInLayer.h"

#include <cstdlib>
#include <filesystem>

#include "cli/base/CommandError.h"

namespace vantorel::view {

namespace fs = std::filesystem;

StandInLayer::StandInLayer(const cli::ViewOptions& options) : options_(options) {
  if (!options_.layer.empty()) {
    return;
  }
  std::error_code fault;
  folder_ = (fs::temp_directory_path(fault) / "vantorel-XXXXXX").string();
  if (mkdtemp(folder_.data()) == nullptr) {
    throw cli::fileFailure(folder_,
                           "cannot be created for a test card; set TMPDIR to a writable folder, or "
                           "name a layer");
  }
  options_.layer = folder_ + "/card.png";
  options_.layer_label = "test card";
  cli::TestCardOptions card;
  card.output = options_.layer;
  cli::runTestCard(card, {});
}

StandInLayer::~StandInLayer() {
  if (!folder_.empty()) {
    std::error_code fault;
    fs::remove_all(folder_, fault);
  }
}

}  // namespace vantorel::view
