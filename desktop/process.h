// Starts programs: as a process, and failing that through the shell, so that a file which is no
// program is opened too. Waiting is plain blocking, with no message handling.
//
// A kept child's record and handles last until the process ends; nothing frees them.
#pragma once

#include <cstdint>

constexpr int32_t PROC_WAIT = 1; // wait without limit for the child's end
constexpr int32_t PROC_HIDE = 2; // no visible window, detached from any console
constexpr int32_t PROC_KEEP = 4; // the result is a ProcessHandle
// With PROC_KEEP: a pipe from or to the child. Even without it these bar the way through the shell.
constexpr int32_t PROC_PIPE_OUT = 8;
constexpr int32_t PROC_PIPE_IN = 16;
constexpr int32_t PROC_PIPE_ERR = 32;
constexpr int32_t PROC_CHAIN = 64; // the child's input is the sender's output

struct ProcessHandle {
    void* process;     // a process handle
    int32_t processId; // -1 if the shell started it
    void* stdinWrite;  // our ends of the pipes, or null
    void* stdoutRead;
    void* stderrRead;
};
static_assert(sizeof(ProcessHandle) == 40);

void Proc_SubsystemInit();

// 0 on failure. With PROC_KEEP the ProcessHandle's address, otherwise 1. Null texts are empty; an
// empty folder is the parent's. The arguments are passed on without any escaping.
int64_t Proc_RunEx(const char* program, const char* arguments, const char* folder, int32_t flags,
                   const ProcessHandle* sender);
int64_t Proc_Run(const char* program, const char* arguments, const char* folder, int32_t flags);
int64_t Proc_RunIn(const char* program, const char* arguments, const char* folder);
int64_t Proc_RunProgram(const char* program);

// 1 when the child has ended; 0 for null, if the wait fails, and on a time-out.
int64_t Proc_WaitEnd(const ProcessHandle* child);
int64_t Proc_WaitEndFor(const ProcessHandle* child, uint32_t milliseconds);
