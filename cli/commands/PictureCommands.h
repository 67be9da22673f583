// The commands that read and write pictures, in a module of their own: the picture libraries take longer to load than
// all else that the command does before the first pixel, and most of what it can answer needs none of them.
#pragma once

#include "cli/commands/Commands.h"

namespace vantorel::cli {

struct PictureCommands {
  const char* version;  // the module's; that of the command, or the structs below may differ
  decltype(&runRender) render;
  decltype(&runRectify) rectify;
  decltype(&runTestCard) test_card;
  decltype(&runDescribe) describe;
  decltype(&runView) view;
};

constexpr const char* kPictureModuleName = "vantorel-pictures.so";

// What the module exports, under this name: a table that lives as long as the module is loaded.
constexpr const char* kPictureCommandsName = "vantorelPictureCommands";
using GetPictureCommands = const PictureCommands*();

}  // namespace vantorel::cli
