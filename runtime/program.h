// The two program variables that the runtime itself needs. The launcher sets them before any
// subsystem is set up; nothing else writes to them.
#pragma once

#include <windows.h>

// The general-purpose heap of the whole runtime, serialised by the system. The launcher makes it
// first and destroys it last.
inline HANDLE GeneralHeap = nullptr;

// The running program's module: owner of the window class, and DirectInput's caller.
inline HMODULE ProgramInstance = nullptr;
