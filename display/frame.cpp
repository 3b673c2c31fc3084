#include "display/frame.h"

#include "display/frame_target.h"
#include "display/screen_device.h"
#include "display/surfaces.h"

namespace {

constexpr uint32_t rasterMargin = 150; // lines above the bottom at which the raster wait ends

uint32_t redOf(uint32_t colour) { return colour & 0xFF; }
uint32_t greenOf(uint32_t colour) { return (colour >> 8) & 0xFF; }
uint32_t blueOf(uint32_t colour) { return (colour >> 16) & 0xFF; }

void pumpMessages() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
}

// Lines compare as unsigned: a screen of fewer than 150 lines wraps and waits for a failing call.
bool isRasterFarFromBottom() {
    DWORD line;
    return Screen.ddraw->GetScanLine(&line) == DD_OK &&
           line < static_cast<uint32_t>(Screen.targetHeight) - rasterMargin;
}

void waitForRaster() {
    HANDLE thread = GetCurrentThread();
    const int priority = GetThreadPriority(thread);
    SetThreadPriority(thread, THREAD_PRIORITY_HIGHEST);
    while (isRasterFarFromBottom())
        Sleep(1);
    SetThreadPriority(thread, priority);
}

void restorePalette() {
    IDirectDrawPalette* palette = nullptr;
    Screen.primary->GetPalette(&palette);
    Screen.primary->SetPalette(palette);
    if (palette)
        palette->Release();
}

// No result is looked at: if a step fails, the next flip finds the surfaces lost again and the
// recovery runs again.
void recover() {
    Screen.ddraw->SetCooperativeLevel(Screen.window, DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN);
    Screen.ddraw->SetDisplayMode(
        static_cast<DWORD>(Screen.targetWidth), static_cast<DWORD>(Screen.targetHeight),
        static_cast<DWORD>(Screen.depth), static_cast<DWORD>(Screen.refreshRate), 0);
    Screen.ddraw->RestoreAllSurfaces();
    ShowWindow(Screen.window, SW_SHOWMAXIMIZED);
    Screen_RestoreSurfaces();
    if (Screen.depth == 8)
        restorePalette();
}

// The lost frame is not flipped again.
void flip(int32_t flags) {
    const DWORD flipFlags = flags & Present_Retrace ? DDFLIP_WAIT : DDFLIP_WAIT | DDFLIP_NOVSYNC;
    if (Screen.primary->Flip(nullptr, flipFlags) == DDERR_SURFACELOST)
        recover();
}

HDC openDc() { return reinterpret_cast<HDC>(Screen.targetDc); }

bool takeDc() {
    HDC dc = nullptr;
    const bool taken = Screen.backBuffer->GetDC(&dc) == DD_OK;
    Screen.targetDc = taken ? reinterpret_cast<int64_t>(dc) : TargetDc_None;
    return taken;
}

int32_t counterLow() {
    LARGE_INTEGER counter;
    while (!QueryPerformanceCounter(&counter)) {
    }
    return static_cast<int32_t>(counter.QuadPart);
}

// Wraps around, as the counter does.
int32_t ticksSince(int32_t stamp, int32_t now) {
    return static_cast<int32_t>(static_cast<uint32_t>(now) - static_cast<uint32_t>(stamp));
}

bool haveOppositeSigns(int32_t now, int32_t stamp) {
    return (now < 0 && stamp >= 0) || (now > 0 && stamp <= 0);
}

} // namespace

// DDBLT_WAIT is not given on purpose: waiting is the flip's business.
void Screen_Clear(uint32_t colour) {
    Screen.fillFx.dwFillColor =
        Screen.depth > 8 ? Screen_NativeColor(redOf(colour), greenOf(colour), blueOf(colour))
                         : colour;
    Screen.target->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL, &Screen.fillFx);
}

const DrawTarget* Screen_BackBuffer() {
    if (Screen.targetDc != TargetDc_None || !takeDc())
        return nullptr;
    DrawTarget& target = Screen.backBufferTarget;
    target.kind = DrawTarget_Surface;
    target.dc = openDc();
    target.width = Screen.targetWidth;
    target.height = Screen.targetHeight;
    target.depth = Screen.depth;
    target.format = Screen.pixelFormat;
    target.release = Screen_ReleaseTargetDc;
    target.resume = Screen_ReacquireDc;
    target.lock = Screen_LockPixels;
    return &target;
}

void Screen_ReleaseTargetDc() {
    if (Screen.targetDc == TargetDc_None)
        return;
    if (Screen.targetDc == TargetDc_Locked)
        Screen.backBuffer->Unlock(nullptr);
    else
        Screen.backBuffer->ReleaseDC(openDc());
    Screen.targetDc = TargetDc_None;
}

HDC Screen_ReacquireDc() {
    if (Screen.targetDc != TargetDc_Locked)
        return openDc();
    Screen.backBuffer->Unlock(nullptr);
    return takeDc() ? openDc() : nullptr;
}

void* Screen_LockPixels(int32_t* pitch) {
    Screen.backBuffer->ReleaseDC(openDc());
    Screen.targetDc = TargetDc_Locked; // also where the lock fails
    if (Screen.backBuffer->Lock(nullptr, &ScreenLockDesc, DDLOCK_WAIT, nullptr) != DD_OK)
        return nullptr;
    *pitch = ScreenLockDesc.lPitch;
    return ScreenLockDesc.lpSurface;
}

IDirectDrawSurface7* Screen_Flip() { return Screen_FlipWith(Present_Retrace); }

IDirectDrawSurface7* Screen_FlipWith(int32_t flags) {
    Screen_ReleaseTargetDc();
    Screen.targetWidth = Screen.screenWidth;
    Screen.targetHeight = Screen.screenHeight;
    Screen.target = Screen.backBuffer;
    Screen.present(flags);
    Screen.target = Screen.backBuffer;
    return Screen.target;
}

void Screen_Present(int32_t flags) {
    pumpMessages();
    if (Screen.active) {
        if (flags & Present_Raster)
            waitForRaster();
        flip(flags);
    }
    const bool hasOwnRate = Screen.monitorFrequency != static_cast<DWORD>(Screen.refreshRate);
    if (Screen.limiterRate != 0 && hasOwnRate)
        Screen_WaitFrame();
}

// At depth 16 the packing is 5-6-5 even where the surface was found to be 5-5-5: the format code is
// for who draws by pixels, and the fill does not look at it.
uint32_t Screen_NativeColor(uint32_t r, uint32_t g, uint32_t b) {
    switch (Screen.depth) {
    case 15: return (r / 8 * 32 + g / 8) * 32 + b / 8;
    case 16: return (r / 8 * 64 + g / 4) * 32 + b / 8;
    case 24:
    case 32:
        if (Screen.pixelFormat == PixelFormat_24RedLow ||
            Screen.pixelFormat == PixelFormat_32RedLow)
            return b * 65536 + g * 256 + r;
        return r * 65536 + g * 256 + b;
    default: return 0;
    }
}

int32_t Screen_SetFrameRate(int32_t framesPerSecond) {
    LARGE_INTEGER frequency;
    if (!QueryPerformanceFrequency(&frequency))
        return 0;
    Screen.limiterStamp = 0;
    Screen.limiterRate = framesPerSecond;
    Screen.limiterTicks = static_cast<int32_t>(frequency.QuadPart / (framesPerSecond + 1));
    return 1;
}

int32_t Screen_WaitFrame() {
    for (int32_t passes = 0;; ++passes) {
        const int32_t now = counterLow();
        if (haveOppositeSigns(now, Screen.limiterStamp)) // the low word has wrapped
            Screen.limiterStamp = now;
        if (ticksSince(Screen.limiterStamp, now) > Screen.limiterTicks) {
            Screen.limiterStamp = now;
            return passes;
        }
    }
}
