// A shared library that stays loaded for the lifetime of the object.
#pragma once

#include <memory>
#include <string>

#include "host/Error.h"

namespace vantorel::host {

class SharedLibrary {
 public:
  // Loads the file at `path`. ModuleUnusable with the reason, or OutOfMemory.
  static Result<SharedLibrary> open(const std::string& path);

  // The address of an exported symbol, or null.
  void* symbol(const char* name) const;

 private:
  struct Close {
    void operator()(void* library) const;
  };
  std::unique_ptr<void, Close> library_;
};

}  // namespace vantorel::host
