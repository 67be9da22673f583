#include "Handles.h"

#include <cstdlib>

void** NewHandle(std::size_t size) {
  void** const handle = static_cast<void**>(std::malloc(sizeof(void*)));
  if (handle == nullptr) {
    return nullptr;
  }
  *handle = std::calloc(1, size);
  if (*handle == nullptr) {
    std::free(handle);
    return nullptr;
  }
  return handle;
}

void DisposeHandle(void** handle) {
  if (handle == nullptr) {
    return;
  }
  std::free(*handle);
  std::free(handle);
}
