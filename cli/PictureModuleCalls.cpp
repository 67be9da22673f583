// The picture commands as the executable has them: each loads the module and calls the one there.
#include <dlfcn.h>
#include <fmt/format.h>

#include <string>
#include <string_view>

#include "cli/base/CommandError.h"
#include "cli/commands/PictureCommands.h"
#include "cli/shots/ModuleLocation.h"

namespace vantorel::cli {

namespace {

constexpr const char* kReinstall = "install vantorel again";

// The module stays loaded until the process ends. Its symbols are bound as they are needed: of the hundreds of
// libraries behind it a picture uses few.
const PictureCommands& pictureCommands() {
  const std::string path = findModule(kPictureModuleName, kReinstall);
  void* const module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (module == nullptr) {
    throw fileFailure(path, fmt::format("cannot be loaded ({}); {} with the libraries that it needs, or raise the "
                                        "limit on memory (ulimit -v)",
                                        dlerror(), kReinstall));
  }
  const auto get = reinterpret_cast<GetPictureCommands*>(dlsym(module, kPictureCommandsName));
  if (get == nullptr || std::string_view(get()->version) != VANTOREL_VERSION) {
    throw fileFailure(path, fmt::format("is not that of vantorel {}; {}", VANTOREL_VERSION, kReinstall));
  }
  return *get();
}

}  // namespace

ExitCode runRender(const RenderOptions& options, const std::stop_token& stop) {
  return pictureCommands().render(options, stop);
}

ExitCode runRectify(const RectifyOptions& options, const std::stop_token& stop) {
  return pictureCommands().rectify(options, stop);
}

ExitCode runTestCard(const TestCardOptions& options, const std::stop_token& stop) {
  return pictureCommands().test_card(options, stop);
}

ExitCode runDescribe(const InfoOptions& options) {
  return pictureCommands().describe(options);
}

ExitCode runView(const ViewOptions& options, const std::stop_token& stop) {
  return pictureCommands().view(options, stop);
}

}  // namespace vantorel::cli
