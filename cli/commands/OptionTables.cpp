#include "cli/commands/OptionTables.h"

#include "cli/base/SizeParsing.h"
#include "cli/commands/OptionValues.h"

namespace vantorel::cli {

namespace {

constexpr const char* kOptions = "Options";

}  // namespace

const std::vector<OptionRow<InfoOptions>>& infoOptionTable() {
  static const std::vector<OptionRow<InfoOptions>> kTable{
      {"--module", "FILE", kOptions, "The effect module (default: the one beside the command)",
       [](InfoOptions& options, const std::string& name, const std::string& value) {
         options.module = parseFileName(name, value);
       }},
      {"--json", "", kOptions, "Print one JSON object",
       [](InfoOptions& options, const std::string&, const std::string&) { options.json = true; }},
  };
  return kTable;
}

const std::vector<OptionRow<TestCardOptions>>& testCardOptionTable() {
  static const std::vector<OptionRow<TestCardOptions>> kTable{
      {"-o,--output", "OUT", kOptions, "The picture to write: " + outputExtensions(),
       [](TestCardOptions& options, const std::string& name, const std::string& value) {
         options.output = parseFileName(name, value);
       },
       "name the picture to write with -o OUT"},
      {"--size", "WxH", kOptions, "Its size in pixels (default: 1920x1080)",
       [](TestCardOptions& options, const std::string& name, const std::string& value) {
         options.size = parseSize(name, value);
       }},
  };
  return kTable;
}

}  // namespace vantorel::cli
