#include "display/screen.h"

#include "display/direct_draw.h"
#include "display/frame.h"
#include "display/screen_device.h"
#include "display/screen_steps.h"
#include "display/surfaces.h"
#include "display/window.h"
#include "input/keyboard.h"

#include <cstring>
#include <mmsystem.h>

namespace {

constexpr int32_t surfacesStep = 64;
constexpr UINT timerPeriod = 1; // milliseconds

template <typename Record>
void resetSized(Record* record) {
    std::memset(record, 0, sizeof *record); // the whole of its unions, too
    record->dwSize = sizeof *record;
}

// Nothing reads the table; building it is the kit's fixed price of a start.
void buildBlendTable() {
    for (int32_t i = 0; i < 256; ++i)
        for (int32_t j = 1; j <= 256; ++j)
            Screen.blendTable[i * 256 + (j - 1)] = (i * 256) / (65280 / j);
}

void resetState() {
    resetSized(&Screen.fillFx);
    resetSized(&Screen.primaryDesc);
    resetSized(&ScreenLockDesc);
    resetSized(&ScreenCopyDesc);
    buildBlendTable();
    Screen.refreshRate = 0;
    Screen.targetDc = TargetDc_None;
    Screen.limiterRate = 0;
    Screen.limiterTicks = 0;
    Screen.limiterStamp = 0;
}

bool takeMode() {
    return Screen.ddraw->SetCooperativeLevel(Screen.window, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN) ==
               DD_OK &&
           Screen.ddraw->SetDisplayMode(static_cast<DWORD>(Screen.screenWidth),
                                        static_cast<DWORD>(Screen.screenHeight),
                                        static_cast<DWORD>(Screen.depth),
                                        static_cast<DWORD>(Screen.refreshRate), 0) == DD_OK;
}

void placeWindow(int16_t width, int16_t height, const char* title) {
    Screen.window = Screen.hiddenWindow;
    Screen.onFocusLost = Screen_SaveSurfaces;
    SetWindowTextA(Screen.window, title);
    MoveWindow(Screen.window, 0, 0, width, height, TRUE);
}

void keepSizes(int16_t width, int16_t height, int16_t depth) {
    Screen.targetWidth = Screen.screenWidth = width;
    Screen.targetHeight = Screen.screenHeight = height;
    Screen.depth = depth;
}

// The sizes are kept on the failing road too, so the next close runs in full, with a timeEndPeriod
// that has no begin. That is meant to be so.
bool openDevice(int16_t width, int16_t height, int16_t depth) {
    if (!Screen.window)
        return false;
    keepSizes(width, height, depth);
    ShowCursor(FALSE);
    return takeMode() && Screen_CreateSurfaces();
}

PixelFormatCode formatOf(const DDPIXELFORMAT& format, int32_t depth) {
    const bool redLow = format.dwRBitMask == 0xFF;
    switch (depth) {
    case 32: return redLow ? PixelFormat_32RedLow : PixelFormat_32RedHigh;
    case 24: return redLow ? PixelFormat_24RedLow : PixelFormat_24RedHigh;
    case 16: return format.dwGBitMask == 0x7E0 ? PixelFormat_565 : PixelFormat_555;
    default: return PixelFormat_Palette;
    }
}

void releaseSurface(IDirectDrawSurface7** surface) {
    if (*surface)
        (*surface)->Release();
    *surface = nullptr;
}

} // namespace

ObjectRegistry* Screen_SubsystemInit() {
    resetState();
    Screen.surfaces = Registry_New(sizeof(ScreenSurface), surfacesStep, Screen_FreeSurface);
    if (!Window_Create())
        return nullptr;
    if (!Keyboard_SubsystemInit())
        return nullptr;
    Screen.initDone = 1;
    return DirectDraw_Acquire() ? Screen.surfaces : nullptr;
}

int64_t Screen_Open(int16_t width, int16_t height, int16_t depth, const char* title) {
    Screen_Close();
    placeWindow(width, height, title);
    if (!openDevice(width, height, depth)) {
        Screen_ReleaseDevice();
        return 0;
    }
    ShowWindow(Screen.window, SW_SHOWMAXIMIZED);
    Screen_ClearBuffers();
    Screen.ddraw->GetMonitorFrequency(&Screen.monitorFrequency);
    Screen_DetectFormat();
    Screen.present = Screen_Present;
    Screen.active = 1;
    timeBeginPeriod(timerPeriod);
    return 1;
}

void Screen_Close() {
    if (Screen.screenWidth == 0)
        return;
    timeEndPeriod(timerPeriod);
    Screen_ReleaseDevice();
    Screen.screenWidth = 0;
    Screen.screenHeight = 0;
}

void Screen_SubsystemEnd() {}

void Screen_SubsystemEnd2() {
    if (!Screen.initDone)
        return;
    Screen_Close();
    DirectDraw_Release();
}

int32_t Screen_CreateSurfaces() {
    DDSURFACEDESC2 desc;
    resetSized(&desc);
    desc.dwFlags = DDSD_CAPS | DDSD_BACKBUFFERCOUNT;
    desc.dwBackBufferCount = 1;
    desc.ddsCaps.dwCaps =
        DDSCAPS_3DDEVICE | DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
    if (Screen.ddraw->CreateSurface(&desc, &Screen.primary, nullptr) != DD_OK)
        return 0;
    DDSCAPS2 caps{};
    caps.dwCaps = DDSCAPS_3DDEVICE | DDSCAPS_BACKBUFFER;
    return Screen.primary->GetAttachedSurface(&caps, &Screen.backBuffer) == DD_OK ? 1 : 0;
}

HRESULT Screen_ClearSurface(IDirectDrawSurface7* surface) {
    HDC dc;
    const HRESULT result = surface->GetDC(&dc);
    if (result != DD_OK)
        return result;
    const RECT whole{0, 0, Screen.targetWidth, Screen.targetHeight};
    FillRect(dc, &whole, static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH)));
    return surface->ReleaseDC(dc);
}

void Screen_ClearBuffers() {
    Screen_ClearSurface(Screen.backBuffer);
    Screen_ClearSurface(Screen.primary);
    Screen.target = Screen.backBuffer;
}

void Screen_DetectFormat() {
    if (!Screen.primary)
        return;
    if (Screen.primary->Lock(nullptr, &Screen.primaryDesc, DDLOCK_WAIT, nullptr) != DD_OK)
        return;
    Screen.primary->Unlock(nullptr);
    Screen.pixelFormat = formatOf(Screen.primaryDesc.ddpfPixelFormat, Screen.depth);
}

// The normal cooperative level alone gives the desktop its own mode back. The back buffer goes
// before the primary that it hangs on.
void Screen_ReleaseDevice() {
    ObjectId id;
    Registry_IterStart(Screen.surfaces);
    while (Registry_IterNext(Screen.surfaces, &id))
        Screen_FreeSurface(id);
    if (Screen.ddraw)
        Screen.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL);
    releaseSurface(&Screen.backBuffer);
    releaseSurface(&Screen.primary);
    if (Screen.window)
        ShowCursor(TRUE);
    ShowWindow(Screen.window, SW_HIDE);
}
