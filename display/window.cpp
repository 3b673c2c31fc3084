#include "display/window.h"

#include "display/screen_device.h"
#include "display/window_procedure.h"
#include "input/mouse.h"
#include "runtime/program.h"

namespace {

constexpr char className[] = "MultimediaBase Class";

bool registerClass() {
    WNDCLASSEXA windowClass{};
    windowClass.cbSize = sizeof windowClass;
    windowClass.style = CS_DBLCLKS;
    windowClass.lpfnWndProc = Screen_WindowProc;
    windowClass.hInstance = ProgramInstance;
    windowClass.hIcon = LoadIconA(ProgramInstance, MAKEINTRESOURCEA(1)); // there is none: null
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = className;
    return RegisterClassExA(&windowClass) != 0;
}

void notifyFocusLost() {
    if (!Screen.onFocusLost || Screen.lostNotified)
        return;
    Screen.onFocusLost();
    Screen.lostNotified = 1;
}

void onActivate(WPARAM wParam) {
    if (Screen.windowed)
        return;
    if (LOWORD(wParam) != 0) {
        Screen.active = 1;
        Screen.lostNotified = 0;
        return;
    }
    notifyFocusLost();
    Screen.active = 0;
    Mouse_UnacquireIfMade();
}

// Alt or Tab going up may be the start of a switch: the surfaces are saved before it can take them.
void onKeyUp(WPARAM key) {
    if (key == VK_TAB || key == VK_MENU)
        notifyFocusLost();
}

void onPaint(HWND window) {
    PAINTSTRUCT paint;
    BeginPaint(window, &paint);
    EndPaint(window, &paint);
}

} // namespace

int32_t Window_Create() {
    if (Screen.windowMade || Screen.window)
        return Screen.windowMade;
    if (!registerClass())
        return Screen.windowMade;
    Screen.hiddenWindow = CreateWindowExA(0, className, "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                                          ProgramInstance, nullptr);
    if (Screen.hiddenWindow)
        Screen.windowMade = 1;
    return Screen.windowMade;
}

void Window_SubsystemEnd() {}

LRESULT CALLBACK Screen_WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_ACTIVATE: onActivate(wParam); return 0;
    case WM_PAINT: onPaint(window); return 1;
    case WM_CLOSE: return 0; // the close command does not end the program
    case WM_ERASEBKGND: return 1;
    case WM_KEYUP:
    case WM_SYSKEYUP: onKeyUp(wParam); return 0;
    case WM_LBUTTONDOWN:
    case WM_LBUTTONUP:
    case WM_RBUTTONDOWN:
    case WM_RBUTTONUP: return 0;
    default: return DefWindowProcA(window, message, wParam, lParam);
    }
}
