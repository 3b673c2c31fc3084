#include "stage.h"

#include "sound.h"

#include <windows.h>

namespace {
constexpr char className[] = "Ostrik Intro";
constexpr float frameSeconds = 1.0f / 60.0f;

Canvas canvas;
bool isCurtainDown = false; // while Escape is held: the picture is gone, the window waits

RECT placeCanvas(const RECT& room) {
    const int width = int(std::min(room.right, room.bottom * Canvas_Width / Canvas_Height));
    const int height = width * Canvas_Height / Canvas_Width;
    const int left = (int(room.right) - width) / 2, top = (int(room.bottom) - height) / 2;
    return {left, top, left + width, top + height};
}

void showCanvas(HWND window) {
    BITMAPINFO info = {};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = Canvas_Width;
    info.bmiHeader.biHeight = -Canvas_Height; // rows run downwards
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    RECT room;
    GetClientRect(window, &room);
    const RECT place = placeCanvas(room);
    HDC device = GetDC(window);
    SetStretchBltMode(device, COLORONCOLOR);
    StretchDIBits(device, place.left, place.top, place.right - place.left, place.bottom - place.top,
                  0, 0, Canvas_Width, Canvas_Height, canvas.pixels, &info, DIB_RGB_COLORS, SRCCOPY);
    ReleaseDC(window, device);
}

void coverScreen(HWND window) {
    SetWindowPos(window, HWND_TOP, 0, 0, GetSystemMetrics(SM_CXSCREEN),
                 GetSystemMetrics(SM_CYSCREEN), SWP_SHOWWINDOW);
}

void dropCurtain(HWND window) {
    isCurtainDown = true;
    Sound_FadeOut();
    canvas = {};
    showCanvas(window);
}

// Escape ends the intro when it is let go: whoever started it may look at the keys themselves and
// would otherwise meet an Escape that is still held.
LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM word, LPARAM more) {
    switch (message) {
    case WM_KEYDOWN:
        if (word == VK_ESCAPE)
            dropCurtain(window);
        return 0;
    case WM_KEYUP:
        if (word == VK_ESCAPE)
            DestroyWindow(window);
        return 0;
    case WM_SYSKEYDOWN:
        if (word == VK_F4)
            DestroyWindow(window);
        return 0;
    case WM_KILLFOCUS: // the release would go to somebody else
        if (isCurtainDown)
            DestroyWindow(window);
        return 0;
    case WM_SETCURSOR: SetCursor(nullptr); return TRUE;
    case WM_DISPLAYCHANGE: coverScreen(window); return 0;
    case WM_DESTROY: PostQuitMessage(0); return 0;
    default: return DefWindowProcA(window, message, word, more);
    }
}

HWND openWindow(HINSTANCE program) {
    WNDCLASSA windowClass = {};
    windowClass.lpfnWndProc = handleMessage;
    windowClass.hInstance = program;
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = className;
    RegisterClassA(&windowClass);
    HWND window = CreateWindowExA(0, className, Intro_Title, WS_POPUP, 0, 0, 0, 0, nullptr, nullptr,
                                  program, nullptr);
    coverScreen(window);
    SetForegroundWindow(window);
    SetFocus(window);
    return window;
}

float readClock() {
    static LARGE_INTEGER start = {}, ticksPerSecond;
    LARGE_INTEGER now;
    QueryPerformanceCounter(&now);
    if (start.QuadPart == 0) {
        QueryPerformanceFrequency(&ticksPerSecond);
        start = now;
    }
    return float(double(now.QuadPart - start.QuadPart) / double(ticksPerSecond.QuadPart));
}

// False when the window has gone.
bool handleMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (message.message == WM_QUIT)
            return false;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return true;
}

// Waits for the moment of the next picture, or for a message.
void waitUntil(float moment) {
    const float left = moment - readClock();
    if (left > 0.0f)
        MsgWaitForMultipleObjects(0, nullptr, FALSE, DWORD(left * 1000.0f), QS_ALLINPUT);
}

// The first picture takes longer: many intros make their tables for it. The sound waits for it.
void startShow(HWND window) {
    Intro_Draw(canvas, 0.0f);
    showCanvas(window);
    Sound_Start(window, Music_Tune());
}

void runShow(HWND window) {
    float next = 0.0f;
    while (handleMessages()) {
        const float now = readClock();
        if (!isCurtainDown && now >= next) {
            Intro_Draw(canvas, Sound_TimeAt(now));
            showCanvas(window);
            next = std::max(next + frameSeconds, now); // a late picture is not made up for
        }
        waitUntil(isCurtainDown ? now + frameSeconds : next);
    }
}
} // namespace

int WINAPI WinMain(HINSTANCE program, HINSTANCE, LPSTR, int) {
    SetProcessDPIAware(); // or the desktop enlarges a window that it believes to be small
    timeBeginPeriod(1);
    HWND window = openWindow(program);
    startShow(window);
    runShow(window);
    Sound_Stop();
    timeEndPeriod(1);
    return 0;
}
