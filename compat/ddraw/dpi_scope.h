// While one exists, the thread deals in the monitor's own pixels, also if the process asks the
// system to scale its windows. Systems before Windows 10 do not tell the two apart per thread.
#pragma once

#include <windows.h>

class DpiScope {
public:
    DpiScope() : change(find()), before(change ? change(perMonitor()) : nullptr) {}
    ~DpiScope() {
        if (before)
            change(before);
    }
    DpiScope(const DpiScope&) = delete;
    DpiScope& operator=(const DpiScope&) = delete;

private:
    using Change = HANDLE(WINAPI*)(HANDLE);

    static Change find() {
        HMODULE user = GetModuleHandleA("user32.dll");
        return reinterpret_cast<Change>(
            reinterpret_cast<void*>(GetProcAddress(user, "SetThreadDpiAwarenessContext")));
    }
    static HANDLE perMonitor() { return reinterpret_cast<HANDLE>(INT_PTR{-3}); }

    Change change;
    HANDLE before;
};
