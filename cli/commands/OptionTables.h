// The options of each subcommand. The command line and its help are built from these tables. To add an option, add a
// row here and a field to the options' struct, and document it in the man page and the completion.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "cli/commands/Commands.h"

namespace vantorel::cli {

enum class PictureUse { ChangesPicture, LeavesPicture };

template <typename Options>
struct OptionRow {
  const char* names;  // "--size", "-o,--output", or a word without dashes for an argument
  const char* value;  // the placeholder for the value in the help, or the choices: "high|standard"; empty for a flag
  const char* group;  // the heading in the help
  std::string help;
  // Parses the value as written on the command line (empty for a flag) and stores it in the struct. Throws CommandError
  // (bad argument), naming `name`, for an invalid value.
  std::function<void(Options& options, const std::string& name, const std::string& value)> set;
  const char* if_missing = nullptr;  // for required options: what to do if it is missing
  // Whether the picture depends on the option, so that --resume redoes a frame made with another value.
  PictureUse use = PictureUse::ChangesPicture;
};

const std::vector<OptionRow<RenderOptions>>& renderOptionTable();
const std::vector<OptionRow<InfoOptions>>& infoOptionTable();
const std::vector<OptionRow<RectifyOptions>>& rectifyOptionTable();
const std::vector<OptionRow<CornersOptions>>& cornersOptionTable();
const std::vector<OptionRow<TestCardOptions>>& testCardOptionTable();
const std::vector<OptionRow<ViewOptions>>& viewOptionTable();

}  // namespace vantorel::cli
