#include "host/module/SharedLibrary.h"

#include <dlfcn.h>

#include <cerrno>
#include <cstring>

#include "host/Error.h"

namespace vantorel::host {

namespace {

// The loader's message without the path in front, which the error already names.
std::string loaderMessage(const std::string& path) {
  const char* const text = dlerror();
  const std::string message = text != nullptr ? text : "the loader gave no reason";
  return message.starts_with(path + ": ") ? message.substr(path.size() + 2) : message;
}

}  // namespace

void SharedLibrary::Close::operator()(void* library) const {
  dlclose(library);
}

Result<SharedLibrary> SharedLibrary::open(const std::string& path) {
  if (path.empty()) {
    return failure(ErrorKind::ModuleUnusable, "module path", "it is empty; give the path of an effect module");
  }
  // Without a slash the loader would search the system's library folders.
  const std::string file = path.find('/') == std::string::npos ? "./" + path : path;
  SharedLibrary library;
  library.library_.reset(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL));
  if (!library.library_) {
    const std::string message = loaderMessage(file);
    const bool no_memory = message.ends_with(std::strerror(ENOMEM));
    return failure(no_memory ? ErrorKind::OutOfMemory : ErrorKind::ModuleUnusable, path,
                   "cannot be loaded as an effect module: " + message);
  }
  return library;
}

void* SharedLibrary::symbol(const char* name) const {
  return dlsym(library_.get(), name);
}

}  // namespace vantorel::host
