#include "cli/shots/ModuleLocation.h"

#include <fmt/format.h>

#include <filesystem>

#include "cli/base/CommandError.h"
#include "cli/base/Files.h"
#include "host/Simd.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

std::string findModule(const char* name, const char* remedy) {
  std::error_code fault;
  const fs::path folder = fs::read_symlink("/proc/self/exe", fault).parent_path();
  // VANTOREL_MODULE_FOLDER is where the modules are installed, seen from the command's folder.
  const fs::path places[] = {folder / name, (folder / VANTOREL_MODULE_FOLDER).lexically_normal() / name};
  for (const fs::path& place : places) {
    if (fs::is_regular_file(place, fault)) {
      return place.string();
    }
  }
  throw fileFailure(name, fmt::format("was found neither in '{}' nor in '{}'; {}", places[0].parent_path().string(),
                                      places[1].parent_path().string(), remedy));
}

std::shared_ptr<const host::Module> loadModule(const std::string& path) {
  if (const auto simd = host::checkSimdChoice(); !simd) {
    throw badArgument(simd.error().input, simd.error().message);
  }
  if (!path.empty()) {
    requireReadableFile(path, "the file of the effect module");
  }
  return valueOrThrow(
      host::Module::load(path.empty() ? findModule("vantorel.so", "name it with --module FILE") : path));
}

}  // namespace vantorel::cli
