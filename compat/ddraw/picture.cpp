#include "compat/ddraw/picture.h"

#include "compat/ddraw/dpi_scope.h"

namespace {

constexpr wchar_t className[] = L"DirectDraw picture";

HINSTANCE libraryInstance() {
    HMODULE library = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS |
                           GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       className, &library);
    return library;
}

const Picture* pictureOf(HWND window) {
    return reinterpret_cast<const Picture*>(GetWindowLongPtrW(window, GWLP_USERDATA));
}

void copyRows(const Picture& picture, HDC to, DWORD top, DWORD bottom) {
    BitBlt(to, picture.place.left, picture.place.top + static_cast<int>(top),
           picture.place.right - picture.place.left, static_cast<int>(bottom - top),
           picture.scaled->dc, 0, static_cast<int>(top), SRCCOPY);
}

// The class's brush has drawn the black around the picture.
void paint(HWND window) {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    const Picture* picture = pictureOf(window);
    if (picture->scaled)
        copyRows(*picture, dc, 0, picture->scaled->height);
    EndPaint(window, &paint);
}

LRESULT CALLBACK onMessage(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_PAINT: paint(window); return 0;
    case WM_NCHITTEST: return HTTRANSPARENT;
    default: return DefWindowProcW(window, message, wParam, lParam);
    }
}

void registerClass() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = onMessage;
    windowClass.hInstance = libraryInstance();
    windowClass.hbrBackground = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    windowClass.lpszClassName = className;
    RegisterClassW(&windowClass);
}

RECT monitorOf(HWND window) {
    MONITORINFO info{};
    info.cbSize = sizeof info;
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &info);
    return info.rcMonitor;
}

// Whether the caller's process sees the monitor as large as it is.
bool seesTruePixels(HWND owner) {
    const RECT seen = monitorOf(owner);
    const DpiScope physical;
    const RECT area = monitorOf(owner);
    return EqualRect(&seen, &area) != FALSE;
}

void makeWindow(Picture* picture, HWND owner) {
    constexpr DWORD above = WS_EX_TOPMOST | WS_EX_NOACTIVATE | WS_EX_TOOLWINDOW;
    registerClass();
    picture->isChild = seesTruePixels(owner);
    if (picture->isChild) {
        picture->window = CreateWindowExW(WS_EX_NOPARENTNOTIFY, className, L"", WS_CHILD, 0, 0, 1,
                                          1, owner, nullptr, libraryInstance(), nullptr);
    } else {
        const DpiScope physical;
        picture->window = CreateWindowExW(above, className, L"", WS_POPUP, 0, 0, 1, 1, owner,
                                          nullptr, libraryInstance(), nullptr);
    }
    if (picture->window)
        SetWindowLongPtrW(picture->window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(picture));
}

void freeScaling(Picture* picture) {
    Scaler_Free(picture->scaler);
    Pixels_Free(picture->scaled);
    picture->scaler = nullptr;
    picture->scaled = nullptr;
}

bool fits(const Picture& picture, const Pixels& pixels) {
    return picture.scaler && picture.source.cx == static_cast<LONG>(pixels.width) &&
           picture.source.cy == static_cast<LONG>(pixels.height) && picture.depth == pixels.depth;
}

void placeIn(Picture* picture, const Pixels& pixels) {
    RECT client;
    GetClientRect(picture->window, &client);
    const SIZE fit = Scaler_Fit(pixels.width, pixels.height, static_cast<DWORD>(client.right),
                                static_cast<DWORD>(client.bottom));
    picture->place.left = (client.right - fit.cx) / 2;
    picture->place.top = (client.bottom - fit.cy) / 2;
    picture->place.right = picture->place.left + fit.cx;
    picture->place.bottom = picture->place.top + fit.cy;
    picture->source = {static_cast<LONG>(pixels.width), static_cast<LONG>(pixels.height)};
    picture->depth = pixels.depth;
}

void makeScaling(Picture* picture, const Pixels& pixels) {
    const DpiScope physical;
    freeScaling(picture);
    placeIn(picture, pixels);
    const auto width = static_cast<DWORD>(picture->place.right - picture->place.left);
    const auto height = static_cast<DWORD>(picture->place.bottom - picture->place.top);
    picture->scaler = Scaler_Make(pixels.width, pixels.height, pixels.depth, width, height);
    picture->scaled = Pixels_Make(width, height, 32);
    if (!picture->scaler || !picture->scaled)
        freeScaling(picture); // nothing is shown
    InvalidateRect(picture->window, nullptr, TRUE);
}

} // namespace

bool Picture_Cover(Picture* picture, HWND owner) {
    if (!picture->window)
        makeWindow(picture, owner);
    if (!picture->window)
        return false;
    const DpiScope physical;
    RECT area = monitorOf(owner), before;
    GetWindowRect(picture->window, &before);
    if (!EqualRect(&area, &before))
        freeScaling(picture);
    if (picture->isChild)
        OffsetRect(&area, -area.left, -area.top);
    SetWindowPos(picture->window, picture->isChild ? HWND_TOP : HWND_TOPMOST, area.left, area.top,
                 area.right - area.left, area.bottom - area.top, SWP_NOACTIVATE | SWP_SHOWWINDOW);
    return true;
}

void Picture_Hide(Picture* picture) {
    if (picture->window)
        ShowWindow(picture->window, SW_HIDE);
}

void Picture_Close(Picture* picture) {
    if (!picture->window)
        return;
    DestroyWindow(picture->window);
    UnregisterClassW(className, libraryInstance());
    freeScaling(picture);
    *picture = {};
}

void Picture_Show(Picture* picture, const Pixels& pixels) {
    if (!picture->window)
        return;
    if (!fits(*picture, pixels))
        makeScaling(picture, pixels);
    if (!picture->scaler)
        return;
    GdiFlush(); // what was drawn on the surface may still be waiting
    const ScaledRows changed = Scaler_Run(picture->scaler, pixels, *picture->scaled);
    if (changed.top == changed.bottom)
        return;
    HDC dc = GetDC(picture->window);
    copyRows(*picture, dc, changed.top, changed.bottom);
    ReleaseDC(picture->window, dc);
}
