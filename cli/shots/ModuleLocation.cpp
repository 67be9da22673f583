#include "cli/shots/ModuleLocation.h"

#include "cli/base/CommandError.h"
#include "cli/base/Files.h"
#include "cli/base/OwnModules.h"
#include "host/Simd.h"

namespace vantorel::cli {

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
