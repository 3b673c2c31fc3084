// Running a program's main routine inside a test, up to its ExitProcess.
#pragma once

#include "tests/support/call_recorder.h"

struct ProgramEnd {
    bool calledExitProcess = false; // false: the routine returned
    DWORD exitCode = 0;
};

// Runs `program` on a thread of its own, which ends where it calls ExitProcess; take() and match()
// give that thread's calls. The program's variables stay as they are left: run it once a test.
ProgramEnd runToExit(CallRecorder& calls, const std::function<void()>& program);
