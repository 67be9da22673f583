#include "cli/commands/PictureCommands.h"

namespace vantorel::cli {

extern "C" [[gnu::visibility("default")]] const ModuleTable* vantorelPictureCommands() {
  static constexpr PictureCommands kCommands{{VANTOREL_VERSION}, runRender,   runRectify,
                                             runTestCard,        runDescribe, runView};
  return &kCommands;
}

}  // namespace vantorel::cli
