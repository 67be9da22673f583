// Relocatable memory handles: a handle is a pointer to a pointer to a block.
#pragma once

#include <cstddef>

// A handle to `size` zeroed bytes, or null when there is no memory. Freed with DisposeHandle.
void** NewHandle(std::size_t size);

// Frees a handle from NewHandle and its block. A null handle does nothing.
void DisposeHandle(void** handle);
