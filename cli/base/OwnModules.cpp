#include "cli/base/OwnModules.h"

#include <dlfcn.h>
#include <fmt/format.h>

#include <filesystem>
#include <string_view>

#include "cli/base/CommandError.h"

namespace vantorel::cli {

namespace fs = std::filesystem;

namespace {

constexpr const char* kReinstall = "install vantorel again";

}  // namespace

std::string findModule(const char* name, const char* remedy) {
  std::error_code fault;
  const fs::path folder = fs::read_symlink("/proc/self/exe", fault).parent_path();
  // VANTOREL_MODULE_FOLDER is the modules' install folder, relative to the command's folder.
  const fs::path places[] = {folder / name, (folder / VANTOREL_MODULE_FOLDER).lexically_normal() / name};
  for (const fs::path& place : places) {
    if (fs::is_regular_file(place, fault)) {
      return place.string();
    }
  }
  throw fileFailure(name, fmt::format("was found neither in '{}' nor in '{}'; {}", places[0].parent_path().string(),
                                      places[1].parent_path().string(), remedy));
}

const ModuleTable& loadOwnModule(const char* name, const char* entry) {
  const std::string path = findModule(name, kReinstall);
  // Lazy binding: a module depends on hundreds of libraries, of which a picture uses only a few.
  void* const module = dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
  if (module == nullptr) {
    throw fileFailure(path, fmt::format("cannot be loaded ({}); {} with the libraries that it needs, or raise the "
                                        "limit on memory (ulimit -v)",
                                        dlerror(), kReinstall));
  }
  const auto table = reinterpret_cast<const ModuleTable* (*)()>(dlsym(module, entry));
  if (table == nullptr || std::string_view(table()->version) != VANTOREL_VERSION) {
    throw fileFailure(path, fmt::format("does not belong to vantorel {}; {}", VANTOREL_VERSION, kReinstall));
  }
  return *table();
}

}  // namespace vantorel::cli
