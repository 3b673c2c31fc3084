// A part of a test that is run in a process of its own: to see a hang or a memory fault from
// outside, or to have the program's variables as at its start.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <windows.h>

// The exit code of a program that touched memory that is not there, or that met, where it was built
// with checks for undefined behaviour, the trap in front of that access.
inline bool isMemoryFault(int exitCode) {
    const auto code = static_cast<DWORD>(exitCode);
    return code == EXCEPTION_ACCESS_VIOLATION || code == EXCEPTION_ILLEGAL_INSTRUCTION;
}

struct ChildReport {
    bool wasBusy = false;  // it had used up its processor time, and was ended from outside
    bool timedOut = false; // it neither ended nor used that much, and was ended from outside
    DWORD exitCode = 0;    // 0: the scenario ended and every expectation in it held
    std::string output;    // what it wrote, failed expectations among it

    // The scenario ended and every expectation in it held; otherwise its output is shown.
    bool succeeded() const;
    bool diedOfMemoryFault() const { return isMemoryFault(static_cast<int>(exitCode)); }
    // The fault came after this call and before any other, by what the recorder's echo() wrote.
    bool diedOfMemoryFaultAfter(const std::string& call) const;
};

// Runs `scenario` in a new process of this test program. One use a test. The code around it runs in
// both processes, so it does nothing but make and look at the report:
//
//     const ChildReport child = runInChild([] { Screen_Clear(0); });
//     EXPECT_TRUE(child.diedOfMemoryFault());
//
// The scenario may use so much processor time. By this measure, and not by the clock's, a loop that
// never waits is told from one that ends, however busy the machine is. One that waits for ever is
// ended after four minutes.
ChildReport runInChild(const std::function<void()>& scenario,
                       std::chrono::milliseconds busyLimit = std::chrono::seconds(30));
