#include "tests/support/stand_in_desktop.h"

StandInDesktop::StandInDesktop(CallRecorder& calls) {
    takeOverWindow(calls);
    takeOverMessages(calls);
    takeOverDesktop(calls);
}

HWND StandInDesktop::make(const char* text) {
    made = reinterpret_cast<HWND>(this); // any value that is no window's
    windowTitle = text;
    return made;
}

void StandInDesktop::show(bool isVisible) {
    shown = isVisible;
    foreground = isVisible ? made : nullptr;
}

void StandInDesktop::takeOverWindow(CallRecorder& calls) {
    calls.substitute<hook::RegisterClassExA>([this](const WNDCLASSEXA* window) {
        procedure = window->lpfnWndProc;
        return ATOM{0xC001};
    });
    calls.substitute<hook::CreateWindowExA>([this](DWORD, LPCSTR, LPCSTR title, DWORD, int x, int y,
                                                   int width, int height, HWND, HMENU, HINSTANCE,
                                                   LPVOID) {
        windowPlace = {x, y, x + width, y + height};
        return make(title);
    });
    calls.substitute<hook::SetWindowTextA>([this](HWND, LPCSTR title) {
        windowTitle = title;
        return TRUE;
    });
    calls.substitute<hook::MoveWindow>([this](HWND, int x, int y, int width, int height, BOOL) {
        windowPlace = {x, y, x + width, y + height};
        return TRUE;
    });
    calls.substitute<hook::ShowWindow>([this](HWND, int how) {
        const bool wasShown = shown;
        show(how != SW_HIDE);
        return wasShown ? TRUE : FALSE;
    });
    calls.substitute<hook::GetWindowRect>([this](HWND, LPRECT place_) {
        *place_ = windowPlace;
        return TRUE;
    });
}

void StandInDesktop::takeOverMessages(CallRecorder& calls) {
    calls.substitute<hook::PeekMessageA>([this](LPMSG message, HWND, UINT, UINT, UINT) {
        if (queue.empty())
            return FALSE;
        *message = queue.front();
        queue.pop_front();
        return TRUE;
    });
    calls.substitute<hook::TranslateMessage>([](const MSG*) { return FALSE; });
    calls.substitute<hook::DispatchMessageA>([this](const MSG* message) {
        return send(message->message, message->wParam, message->lParam);
    });
    calls.substitute<hook::DefWindowProcA>([](HWND, UINT, WPARAM, LPARAM) { return LRESULT{0}; });
    calls.substitute<hook::BeginPaint>([](HWND, LPPAINTSTRUCT) { return HDC{}; });
    calls.substitute<hook::EndPaint>([](HWND, const PAINTSTRUCT*) { return TRUE; });
}

void StandInDesktop::takeOverDesktop(CallRecorder& calls) {
    calls.substitute<hook::ShowCursor>([this](BOOL isMore) { return cursor += isMore ? 1 : -1; });
    calls.substitute<hook::GetForegroundWindow>([this] { return foreground; });
    calls.substitute<hook::MessageBoxA>(
        [this](HWND parent, LPCSTR text, LPCSTR title_, UINT flags) {
            messageBoxes.push_back({parent, title_, text, flags});
            return messageBoxAnswer;
        });
    calls.substitute<hook::EnumWindows>(
        [this](WNDENUMPROC visit, LPARAM value) { return made ? visit(made, value) : TRUE; });
    calls.substitute<hook::GetWindowThreadProcessId>([](HWND, LPDWORD process) {
        if (process)
            *process = hook::GetCurrentProcessId::real();
        return hook::GetCurrentThreadId::real();
    });
    calls.substitute<hook::IsWindowVisible>([this](HWND) { return shown ? TRUE : FALSE; });
    calls.substitute<hook::IsWindowEnabled>([](HWND) { return TRUE; });
    calls.substitute<hook::EnableWindow>([](HWND, BOOL) { return FALSE; });
}

void StandInDesktop::post(UINT message, WPARAM wParam, LPARAM lParam) {
    MSG added{};
    added.hwnd = made;
    added.message = message;
    added.wParam = wParam;
    added.lParam = lParam;
    queue.push_back(added);
}

LRESULT StandInDesktop::send(UINT message, WPARAM wParam, LPARAM lParam) {
    return procedure ? procedure(made, message, wParam, lParam) : 0;
}
