#include "tests/support/child_run.h"

#include "tests/support/call_recorder.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

// In the environment of the new process: the handle of the SharedTime that it inherits.
constexpr char childMark[] = "RUNS_AS_CHILD";
constexpr UINT endedFromOutside = 0xC000013A;
constexpr auto patience = std::chrono::minutes(4); // for one that waits for ever

bool isChild() { return GetEnvironmentVariableA(childMark, nullptr, 0) > 0; }

// Without a debugger and its box, and with the same code under every system.
LONG WINAPI endByFault(EXCEPTION_POINTERS* fault) {
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

// The new process notes its own processor time here: not every system tells it to others.
class SharedTime {
public:
    SharedTime() {
        SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
        mapping = CreateFileMappingA(INVALID_HANDLE_VALUE, &inherited, PAGE_READWRITE, 0,
                                     sizeof(int64_t), nullptr);
        view = viewOf(mapping);
    }
    ~SharedTime() {
        UnmapViewOfFile(view);
        CloseHandle(mapping);
    }
    SharedTime(const SharedTime&) = delete;
    SharedTime& operator=(const SharedTime&) = delete;

    std::string handleText() const { return std::to_string(reinterpret_cast<uint64_t>(mapping)); }
    std::chrono::milliseconds value() const { return std::chrono::milliseconds(view->load()); }

    static std::atomic<int64_t>* viewOf(HANDLE mapping) {
        return static_cast<std::atomic<int64_t>*>(
            MapViewOfFile(mapping, FILE_MAP_WRITE, 0, 0, sizeof(int64_t)));
    }

private:
    HANDLE mapping = nullptr;
    std::atomic<int64_t>* view = nullptr;
};

int64_t ownProcessorMilliseconds() {
    FILETIME created{}, ended{}, kernel{}, user{};
    GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
    constexpr uint64_t ticksInMillisecond = 10000;
    const uint64_t ticks = (uint64_t{kernel.dwHighDateTime} << 32 | kernel.dwLowDateTime) +
                           (uint64_t{user.dwHighDateTime} << 32 | user.dwLowDateTime);
    return static_cast<int64_t>(ticks / ticksInMillisecond);
}

DWORD WINAPI noteProcessorTime(void* parameter) {
    const QuietScope quiet;
    auto* noted = static_cast<std::atomic<int64_t>*>(parameter);
    for (;;) {
        *noted = ownProcessorMilliseconds();
        Sleep(20);
    }
}

void startNotingTime() {
    char handle[32] = "";
    GetEnvironmentVariableA(childMark, handle, sizeof handle);
    auto* mapping = reinterpret_cast<HANDLE>(strtoull(handle, nullptr, 10));
    CloseHandle(
        CreateThread(nullptr, 0, noteProcessorTime, SharedTime::viewOf(mapping), 0, nullptr));
}

[[noreturn]] void runAsChild(const std::function<void()>& scenario) {
    SetUnhandledExceptionFilter(endByFault);
    startNotingTime();
    scenario();
    fflush(stdout);
    exit(testing::Test::HasFailure() ? 1 : 0);
}

std::string temporaryFile() {
    char folder[MAX_PATH];
    char path[MAX_PATH];
    GetTempPathA(sizeof folder, folder);
    GetTempFileNameA(folder, "run", 0, path);
    return path;
}

std::string contentOf(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::stringstream content;
    content << file.rdbuf();
    return content.str();
}

HANDLE openOutput(const std::string& path) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    return CreateFileA(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

std::string commandLine() {
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    return std::string("\"") + program + "\" --gtest_filter=" + test->test_suite_name() + "." +
           test->name();
}

HANDLE startChild(HANDLE output, const SharedTime& time) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION child{};
    std::string command = commandLine();
    SetEnvironmentVariableA(childMark, time.handleText().c_str());
    CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                   &child);
    SetEnvironmentVariableA(childMark, nullptr);
    if (child.hThread)
        CloseHandle(child.hThread);
    return child.hProcess;
}

void watchToEnd(HANDLE process, const SharedTime& used, std::chrono::milliseconds busyLimit,
                ChildReport& report) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (WaitForSingleObject(process, 20) == WAIT_TIMEOUT) {
        report.wasBusy = used.value() >= busyLimit;
        report.timedOut = !report.wasBusy && std::chrono::steady_clock::now() > end;
        if (report.wasBusy || report.timedOut) {
            TerminateProcess(process, endedFromOutside);
            break;
        }
    }
    WaitForSingleObject(process, INFINITE);
    GetExitCodeProcess(process, &report.exitCode);
    CloseHandle(process);
}

} // namespace

bool ChildReport::succeeded() const {
    if (exitCode != 0)
        printf("The child %s with code 0x%lX. It wrote:\n%s\n",
               wasBusy || timedOut ? "was ended from outside" : "ended", exitCode, output.c_str());
    return exitCode == 0;
}

bool ChildReport::diedOfMemoryFaultAfter(const std::string& call) const {
    // The process then ends itself, for which it asks for its own handle.
    const bool wasLast = output.ends_with(call + "\r\nGetCurrentProcess()\r\n");
    if (!diedOfMemoryFault() || !wasLast)
        printf("The child ended with code 0x%lX. It wrote:\n%s\n", exitCode, output.c_str());
    return diedOfMemoryFault() && wasLast;
}

ChildReport runInChild(const std::function<void()>& scenario, std::chrono::milliseconds busyLimit) {
    if (isChild())
        runAsChild(scenario);
    ChildReport report;
    const std::string path = temporaryFile();
    HANDLE output = openOutput(path);
    const SharedTime time;
    HANDLE process = startChild(output, time);
    CloseHandle(output);
    if (process)
        watchToEnd(process, time, busyLimit, report);
    else
        ADD_FAILURE() << "the child could not be started";
    report.output = contentOf(path);
    DeleteFileA(path.c_str());
    return report;
}
