#include "tests/compat/session.h"

#include "tests/support/wait_until.h"

#include <cstring>

namespace {

constexpr char className[] = "Conformance";
constexpr DWORD memoryCaps = DDSCAPS_SYSTEMMEMORY | DDSCAPS_VIDEOMEMORY | DDSCAPS_LOCALVIDMEM;
constexpr DWORD exclusive = DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN;

const struct {
    HRESULT result;
    const char* name;
} names[] = {
    {DD_OK, "DD_OK"},
    {E_NOINTERFACE, "E_NOINTERFACE"},
    {E_FAIL, "DDERR_GENERIC"},
    {CLASS_E_NOAGGREGATION, "CLASS_E_NOAGGREGATION"},
    {DDERR_DCALREADYCREATED, "DDERR_DCALREADYCREATED"},
    {DDERR_EXCLUSIVEMODEALREADYSET, "DDERR_EXCLUSIVEMODEALREADYSET"},
    {DDERR_INVALIDCAPS, "DDERR_INVALIDCAPS"},
    {DDERR_INVALIDDIRECTDRAWGUID, "DDERR_INVALIDDIRECTDRAWGUID"},
    {DDERR_INVALIDMODE, "DDERR_INVALIDMODE"},
    {DDERR_INVALIDPARAMS, "DDERR_INVALIDPARAMS"},
    {DDERR_INVALIDRECT, "DDERR_INVALIDRECT"},
    {DDERR_NODC, "DDERR_NODC"},
    {DDERR_NOCOOPERATIVELEVELSET, "DDERR_NOCOOPERATIVELEVELSET"},
    {DDERR_NOEXCLUSIVEMODE, "DDERR_NOEXCLUSIVEMODE"},
    {DDERR_NOTFLIPPABLE, "DDERR_NOTFLIPPABLE"},
    {DDERR_NOTFOUND, "DDERR_NOTFOUND"},
    {DDERR_NOTLOCKED, "DDERR_NOTLOCKED"},
    {DDERR_OUTOFMEMORY, "DDERR_OUTOFMEMORY"},
    {DDERR_PRIMARYSURFACEALREADYEXISTS, "DDERR_PRIMARYSURFACEALREADYEXISTS"},
    {DDERR_SURFACEBUSY, "DDERR_SURFACEBUSY"},
    {DDERR_SURFACELOST, "DDERR_SURFACELOST"},
    {DDERR_UNSUPPORTED, "DDERR_UNSUPPORTED"},
    {DDERR_VERTICALBLANKINPROGRESS, "DDERR_VERTICALBLANKINPROGRESS"},
    {DDERR_WRONGMODE, "DDERR_WRONGMODE"},
};

std::string hex(DWORD value) {
    char text[16];
    snprintf(text, sizeof text, "0x%lX", value);
    return text;
}

HWND makeWindow() {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hInstance = GetModuleHandleA(nullptr);
    windowClass.lpszClassName = className;
    RegisterClassA(&windowClass);
    return CreateWindowExA(0, className, "", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr,
                           windowClass.hInstance, nullptr);
}

// The fourth byte of a pixel of 32 bits has no meaning.
DWORD checksum(const uint8_t* bytes, size_t count, DWORD depth, DWORD sum) {
    for (size_t at = 0; at < count; ++at)
        if (depth != 32 || at % 4 != 3)
            sum = (sum ^ bytes[at]) * 16777619;
    return sum;
}

} // namespace

std::string nameOf(HRESULT result) {
    for (const auto& known : names)
        if (known.result == result)
            return known.name;
    return hex(static_cast<DWORD>(result));
}

DDSURFACEDESC2 wanted(DWORD flags, DWORD caps, DWORD width, DWORD height, DWORD backs) {
    DDSURFACEDESC2 description;
    memset(&description, 0, sizeof description);
    description.dwSize = sizeof description;
    description.dwFlags = flags;
    description.ddsCaps.dwCaps = caps;
    description.dwWidth = width;
    description.dwHeight = height;
    description.dwBackBufferCount = backs;
    return description;
}

Session::Session(const char* library) : window(makeWindow()), module(LoadLibraryA(library)) {
    entry = reinterpret_cast<Create>(
        reinterpret_cast<void*>(GetProcAddress(module, "DirectDrawCreateEx")));
    ddraw = make();
}

Session::~Session() {
    for (IDirectDrawSurface7* surface : others)
        surface->Release();
    if (back)
        back->Release();
    if (primary)
        primary->Release();
    ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL);
    ddraw->Release();
    DestroyWindow(window);
    UnregisterClassA(className, GetModuleHandleA(nullptr));
    FreeLibrary(module);
}

void Session::note(const std::string& what, HRESULT result) { note(what, nameOf(result)); }

void Session::note(const std::string& what, const std::string& value) {
    notes.push_back(what + ": " + value);
}

void Session::note(const std::string& what, DWORD value) { note(what, std::to_string(value)); }

void Session::note(const std::string& what, const DDSURFACEDESC2& description) {
    const DDPIXELFORMAT& format = description.ddpfPixelFormat;
    note(what + " flags", hex(description.dwFlags));
    note(what + " width", description.dwWidth);
    note(what + " height", description.dwHeight);
    note(what + " pitch", static_cast<DWORD>(description.lPitch));
    note(what + " back buffers", description.dwBackBufferCount);
    note(what + " alpha depth", description.dwAlphaBitDepth);
    note(what + " caps", hex(description.ddsCaps.dwCaps & ~memoryCaps));
    note(what + " further caps", hex(description.ddsCaps.dwCaps2 | description.ddsCaps.dwCaps3 |
                                     description.ddsCaps.dwCaps4));
    note(what + " format size", format.dwSize);
    note(what + " format flags", hex(format.dwFlags));
    note(what + " bits", format.dwRGBBitCount);
    note(what + " red", hex(format.dwRBitMask));
    note(what + " green", hex(format.dwGBitMask));
    note(what + " blue", hex(format.dwBBitMask));
    note(what + " alpha", hex(format.dwRGBAlphaBitMask));
}

void Session::notePixels(const std::string& what, IDirectDrawSurface7* surface) {
    DDSURFACEDESC2 description = wanted(0, 0);
    const HRESULT result = surface->Lock(nullptr, &description, DDLOCK_WAIT, nullptr);
    if (result != DD_OK) {
        note(what, result);
        return;
    }
    DWORD sum = 2166136261;
    const DWORD depth = description.ddpfPixelFormat.dwRGBBitCount;
    const auto* row = static_cast<const uint8_t*>(description.lpSurface);
    for (DWORD y = 0; y < description.dwHeight; ++y, row += description.lPitch)
        sum = checksum(row, description.dwWidth * depth / 8, depth, sum);
    surface->Unlock(nullptr);
    note(what, hex(sum));
}

void Session::pump() {
    MSG message;
    while (PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE))
        DispatchMessageA(&message);
}

bool Session::isForeground() const { return GetForegroundWindow() == window; }

void Session::goAway() {
    SetForegroundWindow(GetDesktopWindow());
    waitUntil([this] {
        pump();
        return !isForeground() && primary->IsLost() == DDERR_SURFACELOST;
    });
}

void Session::comeBack() {
    ShowWindow(window, SW_RESTORE);
    SetForegroundWindow(window);
    waitUntil([this] {
        pump();
        return isForeground() && !IsIconic(window);
    });
}

HRESULT Session::create(GUID* device, void** object, const GUID& interfaceId, IUnknown* outer) {
    return entry(device, object, interfaceId, outer);
}

IDirectDraw7* Session::make() {
    void* made = nullptr;
    create(nullptr, &made, IID_IDirectDraw7, nullptr);
    return static_cast<IDirectDraw7*>(made);
}

void Session::open(DWORD depth) {
    note("exclusive", ddraw->SetCooperativeLevel(window, exclusive));
    note("mode", ddraw->SetDisplayMode(1024, 768, depth, 0, 0));
    pump();
}

void Session::makeSurfaces() {
    DDSURFACEDESC2 desc = wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT, flippingCaps, 0, 0, 1);
    note("primary", ddraw->CreateSurface(&desc, &primary, nullptr));
    DDSCAPS2 caps{};
    caps.dwCaps = DDSCAPS_3DDEVICE | DDSCAPS_BACKBUFFER;
    note("back buffer", primary->GetAttachedSurface(&caps, &back));
}

IDirectDrawSurface7* Session::makeOffscreen(DWORD width, DWORD height, DWORD caps) {
    DDSURFACEDESC2 desc =
        wanted(DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT, DDSCAPS_OFFSCREENPLAIN | caps, width, height);
    IDirectDrawSurface7* surface = nullptr;
    note("offscreen surface", ddraw->CreateSurface(&desc, &surface, nullptr));
    others.push_back(surface);
    return surface;
}
