// Blocks from the process's heap. A block that cannot be allocated is null: this library is
// compiled without exceptions.
#pragma once

#include <cstddef>
#include <windows.h>

// Returns zeroed memory, or null.
inline void* Memory_Allocate(size_t size) {
    return HeapAlloc(GetProcessHeap(), HEAP_ZERO_MEMORY, size);
}

// Does nothing for null.
inline void Memory_Free(void* block) {
    if (block)
        HeapFree(GetProcessHeap(), 0, block);
}

template <typename Record>
Record* Memory_New() {
    return static_cast<Record*>(Memory_Allocate(sizeof(Record)));
}
