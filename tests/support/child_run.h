// A part of a test that is run in a process of its own: to see a hang or a memory fault from
// outside, or to have the program's variables as at its start.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <string>
#include <windows.h>

struct ChildReport {
    bool timedOut = false; // it was ended from outside
    DWORD exitCode = 0;    // 0: the scenario ended and every expectation in it held
    std::chrono::milliseconds processorTime{};
    std::string output; // what it wrote, failed expectations among it

    // The scenario ended and every expectation in it held; otherwise its output is shown.
    bool succeeded() const;
    // It died of an access to memory that it may not touch.
    bool diedOfMemoryFault() const { return exitCode == STATUS_ACCESS_VIOLATION; }
};

// Runs `scenario` in a new process of this test program, at most for `limit`. One use a test. The
// code around it runs in both processes, so it does nothing but make and look at the report:
//
//     const ChildReport child = runInChild([] { Screen_Clear(0); });
//     EXPECT_TRUE(child.diedOfMemoryFault());
ChildReport runInChild(const std::function<void()>& scenario,
                       std::chrono::milliseconds limit = std::chrono::seconds(20));
