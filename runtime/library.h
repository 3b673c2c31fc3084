// Libraries that are loaded at run time.
#pragma once

#include <windows.h>

// Returns the library's function of that name, or null.
template <typename Function>
Function Library_Find(HMODULE library, const char* name) {
    return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name)));
}
