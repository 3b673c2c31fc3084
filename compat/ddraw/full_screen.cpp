#include "compat/ddraw/full_screen.h"

#include <commctrl.h>

namespace {

constexpr UINT_PTR subclassId = 0x44445237;

RECT monitorOf(HWND window) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
    return info.rcMonitor;
}

void moveTo(HWND window, const RECT& area, UINT flags) {
    RECT before;
    GetWindowRect(window, &before);
    if (EqualRect(&before, &area) && !flags)
        return;
    SetWindowPos(window, HWND_TOPMOST, area.left, area.top, area.right - area.left,
                 area.bottom - area.top, flags);
}

// The window's program may move it, and so may the system after a change of the monitors.
void cover(FullScreen* screen, UINT flags = 0) {
    if (screen->isPlacing || !screen->isForeground || IsIconic(screen->window))
        return;
    screen->isPlacing = true;
    moveTo(screen->window, monitorOf(screen->window), flags);
    if (IsWindowVisible(screen->window))
        Picture_Cover(&screen->picture, screen->window);
    else
        Picture_Hide(&screen->picture);
    screen->isPlacing = false;
}

void loseForeground(FullScreen* screen) {
    if (!screen->isForeground)
        return;
    screen->isForeground = false;
    screen->onLost(screen->context);
    Picture_Hide(&screen->picture);
    ShowWindow(screen->window, SW_SHOWMINNOACTIVE);
}

void regainForeground(FullScreen* screen) {
    screen->isForeground = true;
    if (IsIconic(screen->window))
        ShowWindow(screen->window, SW_RESTORE);
    cover(screen);
}

void loseWindow(FullScreen* screen) {
    screen->onLost(screen->context);
    FullScreen_Leave(screen);
}

// A thread that waited for another program has not seen yet that it lost the foreground meanwhile:
// that must not count as a loss in the mode that begins now.
void receivePending() {
    MSG message;
    PeekMessageW(&message, nullptr, 0, 0, PM_NOREMOVE);
}

// The window's own procedure comes last: it may end the exclusive mode.
LRESULT CALLBACK onMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
                           DWORD_PTR data) {
    auto* screen = reinterpret_cast<FullScreen*>(data);
    switch (message) {
    case WM_ACTIVATEAPP: wParam ? regainForeground(screen) : loseForeground(screen); break;
    case WM_DISPLAYCHANGE:
    case WM_WINDOWPOSCHANGED: cover(screen); break;
    case WM_NCDESTROY: loseWindow(screen); break;
    default: break;
    }
    return DefSubclassProc(window, message, wParam, lParam);
}

} // namespace

bool FullScreen_Enter(FullScreen* screen, HWND window) {
    receivePending();
    if (screen->window != window) {
        if (GetAncestor(window, GA_ROOT) != window ||
            !SetWindowSubclass(window, onMessage, subclassId, reinterpret_cast<DWORD_PTR>(screen)))
            return false;
        FullScreen_Leave(screen);
        screen->window = window;
    }
    screen->isForeground = true;
    if (IsIconic(window))
        ShowWindow(window, SW_RESTORE);
    cover(screen, SWP_SHOWWINDOW);
    SetForegroundWindow(window);
    return true;
}

void FullScreen_Leave(FullScreen* screen) {
    HWND window = screen->window;
    if (!window)
        return;
    screen->window = nullptr;
    screen->isForeground = false;
    Picture_Close(&screen->picture);
    RemoveWindowSubclass(window, onMessage, subclassId);
    SetWindowPos(window, HWND_NOTOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE);
}
