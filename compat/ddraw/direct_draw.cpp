#include "compat/ddraw/direct_draw.h"

#include "compat/ddraw/memory.h"
#include "compat/ddraw/surface.h"

namespace {

constexpr DWORD largestSide = 8192; // of a mode

DirectDraw* exclusiveOwner = nullptr; // the process has one at most

bool isDepth(DWORD depth) { return depth == 16 || depth == 32; }

bool isSide(DWORD side) { return side > 0 && side <= largestSide; }

} // namespace

void* DirectDraw::operator new(size_t size) noexcept { return Memory_Allocate(size); }

void DirectDraw::operator delete(void* object) { Memory_Free(object); }

DirectDraw::DirectDraw() {
    screen.onLost = [](void* self) { static_cast<DirectDraw*>(self)->loseSurfaces(); };
    screen.context = this;
    takeDesktopMode();
}

DirectDraw::~DirectDraw() {
    leaveExclusive();
    VerticalBlank_End(&blank);
}

STDMETHODIMP DirectDraw::QueryInterface(REFIID interfaceId, void** object) noexcept {
    if (!object)
        return DDERR_INVALIDPARAMS;
    *object = nullptr;
    if (!IsEqualGUID(interfaceId, IID_IUnknown) && !IsEqualGUID(interfaceId, IID_IDirectDraw7))
        return E_NOINTERFACE;
    AddRef();
    *object = this;
    return DD_OK;
}

STDMETHODIMP_(ULONG) DirectDraw::AddRef() noexcept {
    return static_cast<ULONG>(InterlockedIncrement(&references));
}

STDMETHODIMP_(ULONG) DirectDraw::Release() noexcept {
    const LONG left = InterlockedDecrement(&references);
    if (left == 0)
        delete this;
    return static_cast<ULONG>(left);
}

// Returns why the surface cannot be made, or DD_OK. One back buffer is all that is offered.
HRESULT DirectDraw::refusal(const DDSURFACEDESC2& wanted) const {
    constexpr DWORD flipping = DDSCAPS_FLIP | DDSCAPS_COMPLEX;
    const DWORD caps = wanted.ddsCaps.dwCaps;
    const DWORD backs = wanted.dwFlags & DDSD_BACKBUFFERCOUNT ? wanted.dwBackBufferCount : 0;
    if ((caps & flipping) != (backs ? flipping : 0) || caps & DDSCAPS_BACKBUFFER)
        return DDERR_INVALIDCAPS;
    if (backs > 1)
        return DDERR_UNSUPPORTED;
    if (caps & DDSCAPS_PRIMARYSURFACE)
        return primaryRefusal();
    const bool hasSize = (wanted.dwFlags & DDSD_WIDTH) && (wanted.dwFlags & DDSD_HEIGHT);
    return hasSize && wanted.dwWidth && wanted.dwHeight ? DD_OK : DDERR_INVALIDPARAMS;
}

HRESULT DirectDraw::primaryRefusal() const {
    if (!isExclusive())
        return DDERR_NOEXCLUSIVEMODE;
    for (const Surface* surface = surfaces; surface; surface = surface->next)
        if (surface->isPrimary())
            return DDERR_PRIMARYSURFACEALREADYEXISTS;
    return DD_OK;
}

STDMETHODIMP DirectDraw::CreateSurface(LPDDSURFACEDESC2 wanted, LPDIRECTDRAWSURFACE7* surface,
                                       IUnknown* outer) noexcept {
    if (outer)
        return CLASS_E_NOAGGREGATION;
    if (!surface || !wanted || wanted->dwSize != sizeof *wanted)
        return DDERR_INVALIDPARAMS;
    *surface = nullptr;
    if (level == 0)
        return DDERR_NOCOOPERATIVELEVELSET;
    const HRESULT result = refusal(*wanted);
    if (result != DD_OK)
        return result;
    *surface = Surface::make(this, *wanted);
    return *surface ? DD_OK : DDERR_OUTOFMEMORY;
}

STDMETHODIMP DirectDraw::GetMonitorFrequency(LPDWORD frequency) noexcept {
    if (!frequency)
        return DDERR_INVALIDPARAMS;
    *frequency = VerticalBlank_RateOf(MonitorFromWindow(screen.window, MONITOR_DEFAULTTOPRIMARY));
    return DD_OK;
}

STDMETHODIMP DirectDraw::GetScanLine(LPDWORD line) noexcept {
    if (!line)
        return DDERR_INVALIDPARAMS;
    *line = VerticalBlank_ScanLine(blank, currentMode.height);
    return *line < currentMode.height ? DD_OK : DDERR_VERTICALBLANKINPROGRESS;
}

STDMETHODIMP DirectDraw::RestoreAllSurfaces() noexcept {
    HRESULT result = DD_OK;
    for (Surface* surface = surfaces; surface && result == DD_OK; surface = surface->next)
        result = surface->Restore();
    return result;
}

STDMETHODIMP DirectDraw::SetCooperativeLevel(HWND window, DWORD wanted) noexcept {
    const bool isExclusiveWanted = (wanted & DDSCL_EXCLUSIVE) != 0;
    if (isExclusiveWanted ? !(wanted & DDSCL_FULLSCREEN) : !(wanted & DDSCL_NORMAL))
        return DDERR_INVALIDPARAMS;
    if (isExclusiveWanted) {
        const HRESULT result = enterExclusive(window);
        if (result != DD_OK)
            return result;
    } else {
        leaveExclusive();
    }
    level = wanted;
    return DD_OK;
}

HRESULT DirectDraw::enterExclusive(HWND window) {
    if (!window)
        return DDERR_INVALIDPARAMS;
    if (exclusiveOwner && exclusiveOwner != this)
        return DDERR_EXCLUSIVEMODEALREADYSET;
    const bool isNew = !isExclusive();
    if (!FullScreen_Enter(&screen, window))
        return DDERR_INVALIDPARAMS;
    exclusiveOwner = this;
    if (isNew)
        takeDesktopMode();
    VerticalBlank_Start(&blank, VerticalBlank_RateOf(MonitorFromWindow(window, 0)));
    return DD_OK;
}

void DirectDraw::leaveExclusive() {
    if (exclusiveOwner != this)
        return;
    exclusiveOwner = nullptr;
    loseSurfaces();
    FullScreen_Leave(&screen);
    takeDesktopMode();
}

// The size and depth of a surface for which no mode was set.
void DirectDraw::takeDesktopMode() {
    currentMode.width = static_cast<DWORD>(GetSystemMetrics(SM_CXSCREEN));
    currentMode.height = static_cast<DWORD>(GetSystemMetrics(SM_CYSCREEN));
    currentMode.depth = 32;
}

STDMETHODIMP DirectDraw::SetDisplayMode(DWORD width, DWORD height, DWORD depth, DWORD,
                                        DWORD) noexcept {
    if (!isExclusive())
        return DDERR_NOEXCLUSIVEMODE;
    if (!isSide(width) || !isSide(height) || !isDepth(depth))
        return DDERR_UNSUPPORTED;
    currentMode = {width, height, depth};
    return DD_OK;
}

void DirectDraw::add(Surface* surface) {
    surface->next = surfaces;
    surfaces = surface;
}

void DirectDraw::remove(Surface* surface) {
    Surface** link = &surfaces;
    while (*link && *link != surface)
        link = &(*link)->next;
    if (*link)
        *link = surface->next;
}

void DirectDraw::loseSurfaces() {
    for (Surface* surface = surfaces; surface; surface = surface->next)
        surface->lose();
}
