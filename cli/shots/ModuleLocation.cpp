#include "cli/shots/ModuleLocation.h"

#include <fmt/format.h>

#include <filesystem>

#include "cli/base/CommandError.h"
#include "cli/base/Files.h"
#include "host/Simd.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* kModuleName = "vantorel.so";

std::string findModule() {
  std::error_code fault;
  const fs::path folder = fs::read_symlink("/proc/self/exe", fault).parent_path();
  // VANTOREL_MODULE_FOLDER is where the module is installed, seen from the command's folder.
  const fs::path places[] = {folder / kModuleName, (folder / VANTOREL_MODULE_FOLDER).lexically_normal() / kModuleName};
  for (const fs::path& place : places) {
    if (fs::is_regular_file(place, fault)) {
      return place.string();
    }
  }
  throw fileFailure(kModuleName, fmt::format("was found neither in '{}' nor in '{}'; name it with --module FILE",
                                             places[0].parent_path().string(), places[1].parent_path().string()));
}

}  // namespace

std::shared_ptr<const host::Module> loadModule(const std::string& path) {
  if (const auto simd = host::checkSimdChoice(); !simd) {
    throw badArgument(simd.error().input, simd.error().message);
  }
  if (!path.empty()) {
    requireReadableFile(path, "the file of the effect module");
  }
  return valueOrThrow(host::Module::load(path.empty() ? findModule() : path));
}

}  // namespace vantorel::cli
