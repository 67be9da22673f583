// The commands that read and write pictures, in a separate module: the picture libraries take longer to load than
// everything else before the first pixel, and many commands do not need them.
#pragma once

#include "cli/base/OwnModules.h"
#include "cli/commands/Commands.h"

namespace vantorel::cli {

struct PictureCommands : ModuleTable {
  decltype(&runRender) render;
  decltype(&runRectify) rectify;
  decltype(&runTestCard) test_card;
  decltype(&runDescribe) describe;
  decltype(&runView) view;
};

constexpr const char* kPictureModuleName = "vantorel-pictures.so";

// The name of the function that the module exports, which returns the table.
constexpr const char* kPictureCommandsName = "vantorelPictureCommands";

}  // namespace vantorel::cli
