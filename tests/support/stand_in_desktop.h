// The stand-in for the desktop: one window that exists only here, and the messages that the test
// puts in its queue. Nothing appears on a screen and nothing comes but what the test sends.
#pragma once

#include "tests/support/call_recorder.h"

#include <deque>
#include <string>

class StandInDesktop {
public:
    // Takes over the window functions of `calls` for the life of the recorder.
    explicit StandInDesktop(CallRecorder& calls);
    StandInDesktop(const StandInDesktop&) = delete;
    StandInDesktop& operator=(const StandInDesktop&) = delete;

    // --- Decided by the test ---

    // Puts a message in the queue: the program pumps it out.
    void post(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // Calls the window procedure at once, as the system does from inside of its functions.
    LRESULT send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0);
    // What GetForegroundWindow gives; at first the window itself once it is shown.
    HWND foreground = nullptr;
    // What MessageBoxA gives.
    int messageBoxAnswer = IDOK;

    // --- Seen by the test ---

    HWND window() const { return made; }
    bool isShown() const { return shown; }
    int cursorCount() const { return cursor; } // below 0: hidden
    const std::string& title() const { return windowTitle; }
    const RECT& place() const { return windowPlace; }
    size_t queued() const { return queue.size(); }
    struct Box {
        HWND parent;
        std::string title;
        std::string text;
        UINT flags;
    };
    std::vector<Box> messageBoxes;

private:
    void takeOverWindow(CallRecorder& calls);
    void takeOverMessages(CallRecorder& calls);
    void takeOverDesktop(CallRecorder& calls);
    HWND make(const char* text);
    void show(bool isVisible);

    WNDPROC procedure = nullptr;
    HWND made = nullptr;
    bool shown = false;
    int cursor = 0;
    std::string windowTitle;
    RECT windowPlace{};
    std::deque<MSG> queue;
};
