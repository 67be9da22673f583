// The picture commands of the executable: each loads the module and calls its function there.
#include "cli/commands/PictureCommands.h"

namespace vantorel::cli {

namespace {

const PictureCommands& pictureCommands() {
  return static_cast<const PictureCommands&>(loadOwnModule(kPictureModuleName, kPictureCommandsName));
}

}  // namespace

ExitCode runRender(const RenderOptions& options, const std::stop_token& stop) {
  return pictureCommands().render(options, stop);
}

ExitCode runRectify(const RectifyOptions& options, const std::stop_token& stop) {
  return pictureCommands().rectify(options, stop);
}

ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop) {
  return pictureCommands().test_card(options, stop);
}

ExitCode runDescribe(const InfoOptions& options) {
  return pictureCommands().describe(options);
}

ExitCode runView(const ViewOptions& options, const std::stop_token& stop) {
  return pictureCommands().view(options, stop);
}

}  // namespace vantorel::cli
