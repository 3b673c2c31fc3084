#include "tests/support/run_to_exit.h"

namespace {

struct Run {
    const std::function<void()>* program;
    ProgramEnd end;
};

DWORD WINAPI runProgram(void* parameter) {
    const Run* run = static_cast<Run*>(parameter);
    (*run->program)();
    return 0;
}

} // namespace

ProgramEnd runToExit(CallRecorder& calls, const std::function<void()>& program) {
    Run run{&program, {}};
    // The thread's frames are left as they are, as at the end of a process.
    calls.replace<hook::ExitProcess>([&run](UINT code) {
        run.end = {true, code};
        ExitThread(0);
    });
    const QuietScope quiet;
    DWORD threadId = 0;
    HANDLE thread = CreateThread(nullptr, 0, runProgram, &run, CREATE_SUSPENDED, &threadId);
    calls.follow(threadId);
    ResumeThread(thread);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    calls.follow(GetCurrentThreadId());
    return run.end;
}
