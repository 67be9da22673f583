#include <algorithm>
#include <array>
#include <string_view>

#include "cli/base/NumberParsing.h"
#include "cli/commands/OptionTables.h"

namespace vantorel::cli {

namespace {

constexpr const char* kPage = "The page";
constexpr int kMaxPort = 65535;

// Options of `render` that make no sense for viewing: those about repeating, amount and reporting, and those that
// drafts do not support.
constexpr std::array<std::string_view, 14> kNotForLooking{
    "--fit",     "--downsample", "--protocol", "--placement",  "--enlarge",  "--from-ul",     "--from-ur",
    "--from-ll", "--from-lr",    "--resume",   "--keep-going", "--progress", "--no-progress", "--json"};
// Options that the page's command text sets itself.
constexpr std::array<std::string_view, 10> kToldOtherwise{
    "--at", "LAYER", "-o,--output", "--corners", "--corners-order", "--ul", "--ur", "--ll", "--lr", "--overwrite"};

template <std::size_t N>
bool isAmong(const std::array<std::string_view, N>& names, std::string_view name) {
  return std::ranges::find(names, name) != names.end();
}

OptionRow<ViewOptions> forView(const OptionRow<RenderOptions>& row) {
  const std::string_view name = row.names;
  OptionRow<ViewOptions> view{row.names, row.value, row.group, row.help, row.set, nullptr, row.use};
  if (name == "LAYER") {
    view.help = "The picture to place, or a sequence of them (default: a test card)";
  } else if (name == "-o,--output") {
    view.help = "Where the page's Render button writes: " + outputExtensions();
  } else if (name == "--corners") {
    view.help += "; the page saves to it, and creates a .csv or .json that does not exist";
  }
  if (!isAmong(kToldOtherwise, name)) {
    view.set = [set = row.set](ViewOptions& options, const std::string& option, const std::string& value) {
      set(options, option, value);
      options.given.push_back({option, value});
    };
  }
  return view;
}

std::vector<OptionRow<ViewOptions>> makeTable() {
  std::vector<OptionRow<ViewOptions>> table;
  for (const OptionRow<RenderOptions>& row : renderOptionTable()) {
    if (!isAmong(kNotForLooking, row.names)) {
      table.push_back(forView(row));
    }
  }
  table.push_back({"--port", "N", kPage, "Serve on this port of the loopback (default: any free one)",
                   [](ViewOptions& options, const std::string& name, const std::string& value) {
                     options.port = parseIntInRange(name, value, 0, kMaxPort);
                   },
                   nullptr, PictureUse::LeavesPicture});
  table.push_back({"--no-browser", "", kPage, "Print the address, but do not open a browser",
                   [](ViewOptions& options, const std::string&, const std::string&) { options.open_browser = false; },
                   nullptr, PictureUse::LeavesPicture});
  return table;
}

}  // namespace

const std::vector<OptionRow<ViewOptions>>& viewOptionTable() {
  static const std::vector<OptionRow<ViewOptions>> kTable = makeTable();
  return kTable;
}

}  // namespace vantorel::cli
