// Relocatable memory handles: a handle is a pointer to a pointer to a block.
#pragma once

#include <cstddef>

// A handle to `size` zeroed bytes, or null when out of memory. Free it with DisposeHandle.
void** NewHandle(std::size_t size);

// Frees a handle from NewHandle and its block. Does nothing for a null handle.
void DisposeHandle(void** handle);
