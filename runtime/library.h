// Libraries that are loaded at run time.
#pragma once

#include <bit>
#include <windows.h>

// Returns the library's function of that name, or null.
template <typename Function>
Function Library_Find(HMODULE library, const char* name) {
    return std::bit_cast<Function>(GetProcAddress(library, name));
}
