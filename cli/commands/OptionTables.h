// The options of each subcommand. The command line and its help are built from these tables; an option is added by a
// row here and a field in the options' struct, and told in the man page and the completion.
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
  const char* value;  // what stands for the value in the help, choices as "high|standard"; empty for a flag
  const char* group;  // the heading in the help
  std::string help;
  // Takes the value as it stands on the command line (empty for a flag) into the struct. Throws CommandError (bad
  // argument), naming `name`, for a value that is not understood.
  std::function<void(Options& options, const std::string& name, const std::string& value)> set;
  const char* if_missing = nullptr;  // for what must be given: what to do when it is not
  // Whether the picture depends on the option, so that a frame made with another value is not taken for done.
  PictureUse use = PictureUse::ChangesPicture;
};

const std::vector<OptionRow<RenderOptions>>& renderOptionTable();
const std::vector<OptionRow<InfoOptions>>& infoOptionTable();
const std::vector<OptionRow<RectifyOptions>>& rectifyOptionTable();
const std::vector<OptionRow<CornersOptions>>& cornersOptionTable();
const std::vector<OptionRow<TestCardOptions>>& testCardOptionTable();
const std::vector<OptionRow<ViewOptions>>& viewOptionTable();

}  // namespace vantorel::cli
