// The options that say how to interpret corners files, for every command that reads them.
#pragma once

#include <string>
#include <vector>

#include "cli/commands/OptionTables.h"

namespace vantorel::cli {

// One such option: a row for a table whose struct has a TrackOptions member named `track`.
struct TrackOptionRow {
  const char* names;
  const char* value;
  const char* help;
  void (*set)(TrackOptions& options, const std::string& name, const std::string& value);
  PictureUse use = PictureUse::ChangesPicture;
};

constexpr std::size_t kTrackOptionCount = 10;
extern const TrackOptionRow kTrackOptions[kTrackOptionCount];

// Appends the rows starting at `kRow` to a command's table, under that heading.
template <typename Options, std::size_t kRow = 0>
void addTrackOptions(std::vector<OptionRow<Options>>& table, const char* group) {
  if constexpr (kRow < kTrackOptionCount) {
    table.push_back({kTrackOptions[kRow].names, kTrackOptions[kRow].value, group, kTrackOptions[kRow].help,
                     [](Options& options, const std::string& name, const std::string& value) {
                       kTrackOptions[kRow].set(options.track, name, value);
                       if (options.track.first_option.empty()) {
                         options.track.first_option = name;
                       }
                     },
                     nullptr, kTrackOptions[kRow].use});
    addTrackOptions<Options, kRow + 1>(table, group);
  }
}

// A command's own rows, followed by these.
template <typename Options>
std::vector<OptionRow<Options>> withTrackOptions(std::vector<OptionRow<Options>> rows, const char* group) {
  addTrackOptions(rows, group);
  return rows;
}

}  // namespace vantorel::cli
