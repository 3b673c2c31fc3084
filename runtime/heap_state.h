// The state of heap.cpp, for that file and its tests only.
#pragma once

#include <windows.h>

// Serialized by the system.
inline HANDLE LooseHeap = nullptr;
