// A CallSite is one function or method that can be watched: its fixed facts, and what the current
// recorder has planned for it. A WatchedCall is one use of it, from entry to return.
#pragma once

#include <windows.h>

#include <array>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// What a call's result stands for.
struct ResultRole {
    const char* kind = nullptr; // null: a plain value
    bool opened = false;        // live until it is closed
    bool byArgument = false;    // its number is the first argument
};

// Which argument a call gives back, if any.
struct ClosingRole {
    int argument = -1;
    bool onlyAtZero = false; // only when the result is 0: the last Release, GlobalFree
};

struct PlannedFailure {
    int atUse = 0; // counted like CallSite::uses; 0 = always
    int64_t result = 0;
    DWORD lastError = 0;
};

struct PlannedAction {
    int atUse = 0;
    bool isBefore = true;
    std::function<void()> action;
};

struct CallSite {
    const char* name;
    const char* family;
    ResultRole result;
    ClosingRole closing;

    int uses = 0;
    std::vector<PlannedFailure> failures = {};
    std::vector<PlannedAction> actions = {};
};

// The arguments of a call as text, and their raw values for the bookkeeping of names.
struct ShownArguments {
    std::vector<std::string> texts;
    std::array<uint64_t, 16> raw = {};
};

// While one lives, this thread's calls go straight to Windows and are not seen: for the test's own
// work in the middle of a recording, and for the inside of stand-ins.
class QuietScope {
public:
    QuietScope();
    ~QuietScope();
    QuietScope(const QuietScope&) = delete;
    QuietScope& operator=(const QuietScope&) = delete;
};

class WatchedCall {
public:
    // Whether a recorder lives and this thread is not in a QuietScope. Keeps the last error.
    static bool isWanted();

    explicit WatchedCall(CallSite& site);

    // Counts the use, writes the line, runs the actions that come before, and finds out whether
    // the call is to fail.
    void begin(const ShownArguments& arguments);

    bool fails() const { return failing; }
    int64_t failureResult() const { return failure.result; }

    // Directly after the call: keeps its last error, or takes the planned one.
    void happened();

    // Gives names to what the call handed out, and takes back those of what it closed.
    void noteNames(const ShownArguments& arguments, uint64_t rawResult) const;

    // Completes the line with what is known after the call, runs the actions that come after, and
    // sets the last error.
    void end(const ShownArguments& arguments, const std::string& resultText);

private:
    void findFailure();
    void runActions(bool isBefore) const;

    CallSite& site;
    uint64_t recorder; // the one that lived when the call began
    uint64_t line = 0;
    int use = 0;
    bool failing = false;
    PlannedFailure failure;
    DWORD lastError; // of before the call, then of the call
};
