#include "cli/shots/InputGuard.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>

#include "cli/base/CommandError.h"
#include "cli/base/FileIdentity.h"

namespace vantorel::cli {

namespace {

// The most frames that are checked, which takes about a second if no output exists.
constexpr std::int64_t kMaxFrames = 1'000'000;

// Calls visit(path) for the file of each of the shot's frames.
template <typename Files, typename Visit>
void forFiles(const Files& files, const FrameRange& frames, const Visit& visit) {
  const std::int64_t count = files.hasNumber() ? std::min(frames.count(), kMaxFrames) : 1;
  for (std::int64_t i = 0; i < count; ++i) {
    visit(files.path(frames.at(i)));
  }
}

}  // namespace

void refuseToReplaceInputs(const Shot& shot) {
  std::map<FileIdentity, std::string> outputs;
  forFiles(shot.output, shot.frames, [&](const std::string& path) {
    if (const auto identity = identityOf(path)) {
      outputs.emplace(*identity, path);
    }
  });
  if (outputs.empty()) {
    return;
  }
  const auto refuse = [&](const char* role) {
    return [&outputs, role](const std::string& path) {
      const auto identity = identityOf(path);
      const auto found = identity ? outputs.find(*identity) : outputs.end();
      if (found != outputs.end()) {
        throw badArgument("--output", fmt::format("'{}' is {}, '{}'; give another name, or --overwrite to replace it",
                                                  found->second, role, path));
      }
    };
  };
  forFiles(shot.layer_files, shot.frames, refuse("the layer"));
  if (shot.plate_files) {
    forFiles(*shot.plate_files, shot.frames, refuse("the plate"));
  }
  if (shot.matte_files) {
    forFiles(*shot.matte_files, shot.frames, refuse("the matte"));
  }
  if (!shot.options.track.files.empty()) {
    for (const std::string& file : trackFiles(shot.options.track.files)) {
      refuse("the corners file")(file);
    }
  }
}

}  // namespace vantorel::cli
