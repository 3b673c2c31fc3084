#include "tests/support/child_run.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>
#include <vector>

namespace {

constexpr char childMark[] = "RUNS_AS_CHILD"; // set in the environment of the new process
constexpr UINT endedFromOutside = 0xC000013A;

bool isChild() { return GetEnvironmentVariableA(childMark, nullptr, 0) > 0; }

// Without a debugger and its box, and with the same code under every system.
LONG WINAPI endByFault(EXCEPTION_POINTERS* fault) {
    TerminateProcess(GetCurrentProcess(), fault->ExceptionRecord->ExceptionCode);
    return EXCEPTION_EXECUTE_HANDLER;
}

[[noreturn]] void runAsChild(const std::function<void()>& scenario) {
    SetUnhandledExceptionFilter(endByFault);
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

HANDLE startChild(HANDLE output) {
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output;
    startup.hStdError = output;
    PROCESS_INFORMATION child{};
    std::string command = commandLine();
    SetEnvironmentVariableA(childMark, "1");
    CreateProcessA(nullptr, command.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup,
                   &child);
    SetEnvironmentVariableA(childMark, nullptr);
    if (child.hThread)
        CloseHandle(child.hThread);
    return child.hProcess;
}

std::chrono::milliseconds processorTime(HANDLE process) {
    FILETIME created{}, ended{}, kernel{}, user{};
    GetProcessTimes(process, &created, &ended, &kernel, &user);
    constexpr uint64_t ticksInMillisecond = 10000;
    const uint64_t ticks = (uint64_t{kernel.dwHighDateTime} << 32 | kernel.dwLowDateTime) +
                           (uint64_t{user.dwHighDateTime} << 32 | user.dwLowDateTime);
    return std::chrono::milliseconds(ticks / ticksInMillisecond);
}

void watchToEnd(HANDLE process, std::chrono::milliseconds limit, ChildReport& report) {
    report.timedOut =
        WaitForSingleObject(process, static_cast<DWORD>(limit.count())) == WAIT_TIMEOUT;
    report.processorTime = processorTime(process);
    if (report.timedOut)
        TerminateProcess(process, endedFromOutside);
    WaitForSingleObject(process, INFINITE);
    GetExitCodeProcess(process, &report.exitCode);
    CloseHandle(process);
}

} // namespace

bool ChildReport::succeeded() const {
    const bool isGood = !timedOut && exitCode == 0;
    if (!isGood)
        printf("The child %s with code 0x%lX. It wrote:\n%s\n",
               timedOut ? "was ended from outside" : "ended", exitCode, output.c_str());
    return isGood;
}

ChildReport runInChild(const std::function<void()>& scenario, std::chrono::milliseconds limit) {
    if (isChild())
        runAsChild(scenario);
    ChildReport report;
    const std::string path = temporaryFile();
    HANDLE output = openOutput(path);
    HANDLE process = startChild(output);
    CloseHandle(output);
    if (process)
        watchToEnd(process, limit, report);
    else
        ADD_FAILURE() << "the child could not be started";
    report.output = contentOf(path);
    DeleteFileA(path.c_str());
    return report;
}
