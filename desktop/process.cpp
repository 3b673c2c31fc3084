#include "desktop/process.h"

#include "desktop/process_state.h"
#include "runtime/program.h"

#include <cstring>
#include <windows.h>

#include <shellapi.h>

namespace {

constexpr int32_t shellBarred = PROC_PIPE_OUT | PROC_PIPE_IN | PROC_PIPE_ERR | PROC_CHAIN;

CRITICAL_SECTION processLock; // around the insertion into processList, and nothing more

struct Pipe {
    HANDLE read;
    HANDLE write;
};

// All that a start is made of.
struct Start {
    const char* program;
    const char* arguments;
    const char* folder; // or null
    int32_t flags;
    char* commandLine; // on the GeneralHeap
    STARTUPINFOA info;
    DWORD creationFlags;
    bool inherit;
    Pipe input;
    Pipe output;
    Pipe error;
};

bool has(const Start& start, int32_t flag) { return (start.flags & flag) != 0; }

WORD showCommand(const Start& start) { return has(start, PROC_HIDE) ? SW_HIDE : SW_SHOWNORMAL; }

void prepare(Start* start) {
    start->info.cb = sizeof start->info;
    start->info.dwFlags = STARTF_USESHOWWINDOW;
    start->info.wShowWindow = showCommand(*start);
    start->creationFlags = NORMAL_PRIORITY_CLASS;
    if (has(*start, PROC_HIDE))
        start->creationFlags |= DETACHED_PROCESS;
}

// A child with any redirection inherits handles and is not detached, even when hidden.
void redirect(Start* start) {
    start->info.dwFlags |= STARTF_USESTDHANDLES;
    start->inherit = true;
    start->creationFlags &= ~static_cast<DWORD>(DETACHED_PROCESS);
}

bool makePipe(Pipe* pipe) {
    SECURITY_ATTRIBUTES inheritable{sizeof inheritable, nullptr, TRUE};
    if (CreatePipe(&pipe->read, &pipe->write, &inheritable, 0))
        return true;
    *pipe = {};
    return false;
}

// On failure the handle stays as it was.
void keepFromChild(HANDLE* handle) {
    HANDLE process = GetCurrentProcess();
    HANDLE copy;
    if (!DuplicateHandle(process, *handle, process, &copy, 0, FALSE, DUPLICATE_SAME_ACCESS))
        return;
    CloseHandle(*handle);
    *handle = copy;
}

bool wantsPipe(const Start& start, int32_t flag) {
    return has(start, PROC_KEEP) && has(start, flag);
}

void connectInput(Start* start, const ProcessHandle* sender) {
    if (has(*start, PROC_CHAIN) && sender && sender->stdoutRead) {
        start->info.hStdInput = sender->stdoutRead;
        redirect(start);
    } else if (wantsPipe(*start, PROC_PIPE_IN) && makePipe(&start->input)) {
        start->info.hStdInput = start->input.read;
        keepFromChild(&start->input.write);
        redirect(start);
    }
}

void connectOutput(Start* start, int32_t flag, Pipe* pipe, HANDLE* childEnd) {
    if (!wantsPipe(*start, flag) || !makePipe(pipe))
        return;
    *childEnd = pipe->write;
    keepFromChild(&pipe->read);
    redirect(start);
}

void fillFromParent(HANDLE* handle, DWORD which) {
    if (!*handle)
        *handle = GetStdHandle(which);
}

void connectStreams(Start* start, const ProcessHandle* sender) {
    connectInput(start, sender);
    connectOutput(start, PROC_PIPE_OUT, &start->output, &start->info.hStdOutput);
    connectOutput(start, PROC_PIPE_ERR, &start->error, &start->info.hStdError);
    if (!(start->info.dwFlags & STARTF_USESTDHANDLES))
        return;
    fillFromParent(&start->info.hStdInput, STD_INPUT_HANDLE);
    fillFromParent(&start->info.hStdOutput, STD_OUTPUT_HANDLE);
    fillFromParent(&start->info.hStdError, STD_ERROR_HANDLE);
}

void buildCommandLine(Start* start) {
    const size_t size = std::strlen(start->program) + std::strlen(start->arguments) + 4;
    start->commandLine = static_cast<char*>(HeapAlloc(GeneralHeap, 0, size));
    const char* quote = *start->program == '"' ? "" : "\"";
    std::strcpy(start->commandLine, quote);
    std::strcat(start->commandLine, start->program);
    std::strcat(start->commandLine, quote);
    if (*start->arguments) {
        std::strcat(start->commandLine, " ");
        std::strcat(start->commandLine, start->arguments);
    }
}

void closeIfOpen(HANDLE handle) {
    if (handle)
        CloseHandle(handle);
}

void closePipe(const Pipe& pipe) {
    closeIfOpen(pipe.read);
    closeIfOpen(pipe.write);
}

ProcessHandle* newRecord() {
    EnterCriticalSection(&processLock);
    void* record = LooseList_Alloc(&processList, sizeof(LooseBlock) + sizeof(ProcessHandle));
    LeaveCriticalSection(&processLock);
    return static_cast<ProcessHandle*>(record);
}

// Waits, keeps or lets go of the child, as the flags say; gives the start's result.
int64_t finish(const Start& start, const ProcessHandle& child) {
    if (has(start, PROC_WAIT))
        WaitForSingleObject(child.process, INFINITE);
    if (!has(start, PROC_KEEP)) {
        CloseHandle(child.process);
        return 1;
    }
    ProcessHandle* record = newRecord();
    *record = child;
    return reinterpret_cast<int64_t>(record);
}

int64_t finishProcess(const Start& start, const PROCESS_INFORMATION& made) {
    closeIfOpen(start.output.write);
    closeIfOpen(start.input.read);
    closeIfOpen(start.error.write);
    CloseHandle(made.hThread);
    return finish(start, {made.hProcess, static_cast<int32_t>(made.dwProcessId), start.input.write,
                          start.output.read, start.error.read});
}

// The folder of the program's path, cut in the command-line buffer, which is free by now. Null if
// the path names none.
const char* folderOfProgram(const Start& start) {
    std::strcpy(start.commandLine, start.program);
    char* backslash = std::strrchr(start.commandLine, '\\');
    if (!backslash || backslash == start.commandLine)
        return nullptr;
    backslash[1] = 0;
    return start.commandLine;
}

int64_t runThroughShell(const Start& start) {
    SHELLEXECUTEINFOA info{};
    info.cbSize = sizeof info;
    info.fMask = SEE_MASK_NOCLOSEPROCESS;
    info.lpVerb = "";
    info.lpFile = start.program;
    info.lpParameters = start.arguments;
    info.lpDirectory = start.folder ? start.folder : folderOfProgram(start);
    info.nShow = showCommand(start);
    return ShellExecuteExA(&info) ? finish(start, {info.hProcess, -1, nullptr, nullptr, nullptr})
                                  : 0;
}

int64_t run(Start* start) {
    PROCESS_INFORMATION made;
    if (CreateProcessA(nullptr, start->commandLine, nullptr, nullptr, start->inherit,
                       start->creationFlags, nullptr, start->folder, &start->info, &made))
        return finishProcess(*start, made);
    closePipe(start->input);
    closePipe(start->output);
    closePipe(start->error);
    return has(*start, shellBarred) ? 0 : runThroughShell(*start);
}

const char* orEmpty(const char* text) { return text ? text : ""; }

} // namespace

void Proc_SubsystemInit() { InitializeCriticalSection(&processLock); }

int64_t Proc_RunEx(const char* program, const char* arguments, const char* folder, int32_t flags,
                   const ProcessHandle* sender) {
    Start start{};
    start.program = orEmpty(program);
    start.arguments = orEmpty(arguments);
    start.folder = folder && *folder ? folder : nullptr;
    start.flags = flags;
    prepare(&start);
    connectStreams(&start, sender);
    buildCommandLine(&start);
    const int64_t result = run(&start);
    HeapFree(GeneralHeap, 0, start.commandLine);
    return result;
}

int64_t Proc_Run(const char* program, const char* arguments, const char* folder, int32_t flags) {
    return Proc_RunEx(program, arguments, folder, flags, nullptr);
}

int64_t Proc_RunIn(const char* program, const char* arguments, const char* folder) {
    return Proc_RunEx(program, arguments, folder, 0, nullptr);
}

int64_t Proc_RunProgram(const char* program) { return Proc_RunEx(program, "", "", 0, nullptr); }

int64_t Proc_WaitEnd(const ProcessHandle* child) { return Proc_WaitEndFor(child, INFINITE); }

int64_t Proc_WaitEndFor(const ProcessHandle* child, uint32_t milliseconds) {
    if (!child)
        return 0;
    return WaitForSingleObject(child->process, milliseconds) == WAIT_OBJECT_0 ? 1 : 0;
}
