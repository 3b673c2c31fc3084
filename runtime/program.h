// The two program variables that the runtime itself needs. The launcher sets them before any
// subsystem is set up; nothing else writes to them.
#pragma once

struct HINSTANCE__; // what the platform's HMODULE points to

// The general-purpose heap of the whole runtime, serialized by the system. The launcher makes it
// first and destroys it last.
inline void* GeneralHeap = nullptr;

// The running program's module: owner of the window class, and DirectInput's caller.
inline HINSTANCE__* ProgramInstance = nullptr;
