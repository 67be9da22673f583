// The commands that read and write pictures, in a module of their own: the picture libraries take longer to load than
// all else that the command does before the first pixel, and most of what it can answer needs none of them.
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

// What the module exports, under this name: a function that returns the table.
constexpr const char* kPictureCommandsName = "vantorelPictureCommands";

}  // namespace vantorel::cli
