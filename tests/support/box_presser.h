// A second thread that waits for a message box of this process and presses its button, as a user
// would. While the box stands it can look around.
#pragma once

#include "tests/support/wait_until.h"

#include <atomic>
#include <cstring>
#include <functional>
#include <thread>

class BoxPresser {
public:
    // Presses the button with the number `button` of the next box.
    explicit BoxPresser(int button, std::function<void(HWND box)> lookAround = nullptr)
        : thread([this, button, lookAround] {
              const QuietScope quiet;
              if (!waitUntil([this] { return isOver || findBox(); }) || !box)
                  return;
              if (lookAround)
                  lookAround(box);
              press(button);
          }) {}
    ~BoxPresser() {
        isOver = true;
        thread.join();
    }
    BoxPresser(const BoxPresser&) = delete;
    BoxPresser& operator=(const BoxPresser&) = delete;

    // Waits for the box to be gone; whether there was one.
    bool hasPressed() {
        thread.join();
        thread = std::thread([] {});
        return box != nullptr;
    }

private:
    static BOOL CALLBACK visit(HWND window, LPARAM presser) {
        auto* self = reinterpret_cast<BoxPresser*>(presser);
        if (!self->isWanted(window))
            return TRUE;
        self->box = window;
        return FALSE;
    }

    bool isWanted(HWND window) const {
        DWORD process = 0;
        char text[16] = "";
        GetWindowThreadProcessId(window, &process);
        GetClassNameA(window, text, sizeof text);
        return process == GetCurrentProcessId() && IsWindowVisible(window) &&
               strcmp(text, "#32770") == 0;
    }

    bool findBox() {
        EnumWindows(visit, reinterpret_cast<LPARAM>(this));
        return box != nullptr;
    }

    // A box that is still being built may miss the first press.
    void press(int button) {
        waitUntil([this, button] {
            PostMessageA(box, WM_COMMAND, static_cast<WPARAM>(button), 0);
            return !IsWindow(box);
        });
    }

    HWND box = nullptr;
    std::atomic<bool> isOver = false;
    std::thread thread;
};
