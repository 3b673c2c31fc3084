#include "tests/support/stand_in_ddraw.h"

#include "tests/support/call_recorder.h"
#include "tests/support/stand_in_surface.h"

namespace {

StandInDDraw* living = nullptr;

bool isExclusiveLevel(DWORD level) { return (level & DDSCL_EXCLUSIVE) != 0; }

} // namespace

class StandInDirectDraw7 final : public ComObject<StandInDirectDraw7, UnusedDirectDraw7> {
public:
    explicit StandInDirectDraw7(StandInDDraw& display_) : display(display_) {}

    STDMETHODIMP SetCooperativeLevel(HWND window, DWORD level) noexcept override {
        if (isExclusiveLevel(level) && (!window || !(level & DDSCL_FULLSCREEN)))
            return DDERR_INVALIDPARAMS;
        display.cooperativeLevel = level;
        display.exclusiveWindow = isExclusiveLevel(level) ? window : nullptr;
        if (!isExclusiveLevel(level))
            display.currentMode = {}; // the desktop has its own mode back
        return DD_OK;
    }

    STDMETHODIMP SetDisplayMode(DWORD width, DWORD height, DWORD depth, DWORD refreshRate,
                                DWORD) noexcept override {
        if (!display.isExclusive())
            return DDERR_NOEXCLUSIVEMODE;
        display.currentMode = {width, height, depth, refreshRate};
        return DD_OK;
    }

    STDMETHODIMP CreateSurface(LPDDSURFACEDESC2 wanted, LPDIRECTDRAWSURFACE7* surface,
                               IUnknown* outer) noexcept override {
        const HRESULT result = refusal(*wanted);
        if (outer || result != DD_OK)
            return outer ? CLASS_E_NOAGGREGATION : result;
        *surface = new StandInSurface(display, *wanted, nullptr);
        return DD_OK;
    }

    STDMETHODIMP GetMonitorFrequency(LPDWORD frequency) noexcept override {
        *frequency = display.monitorFrequency;
        return DD_OK;
    }

    STDMETHODIMP GetScanLine(LPDWORD line) noexcept override {
        *line = display.scanLines.front();
        if (display.scanLines.size() > 1)
            display.scanLines.erase(display.scanLines.begin());
        return DD_OK;
    }

    STDMETHODIMP RestoreAllSurfaces() noexcept override {
        if (display.isAway)
            return DDERR_WRONGMODE;
        const QuietScope quiet;
        for (StandInSurface* surface : display.surfaces)
            surface->Restore();
        return DD_OK;
    }

private:
    HRESULT refusal(const DDSURFACEDESC2& wanted) const {
        if (wanted.dwSize != sizeof wanted || !(wanted.dwFlags & DDSD_CAPS))
            return DDERR_INVALIDPARAMS;
        if (display.cooperativeLevel == 0)
            return DDERR_NOCOOPERATIVELEVELSET;
        if (!(wanted.ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE))
            return DD_OK;
        if (display.primary())
            return DDERR_PRIMARYSURFACEALREADYEXISTS;
        const bool flips = (wanted.ddsCaps.dwCaps & DDSCAPS_FLIP) != 0;
        return flips && !display.isExclusive() ? DDERR_NOEXCLUSIVEMODE : DD_OK;
    }

    StandInDDraw& display;
};

StandInDDraw::StandInDDraw() { living = this; }

StandInDDraw::~StandInDDraw() { living = nullptr; }

void StandInDDraw::loseSurfaces() {
    for (StandInSurface* surface : surfaces)
        surface->lost = surface->lost || !surface->isInSystemMemory();
}

StandInSurface* StandInDDraw::primary() const {
    for (StandInSurface* surface : surfaces)
        if (surface->isPrimary() && surface->back)
            return surface;
    return nullptr;
}

COLORREF StandInDDraw::shown(int x, int y) const {
    return primary() ? primary()->pixels.colorAt(x, y) : CLR_INVALID;
}

COLORREF StandInDDraw::drawn(int x, int y) const {
    return primary() ? primary()->back->pixels.colorAt(x, y) : CLR_INVALID;
}

int StandInDDraw::shownCount(const RECT& area, COLORREF color) const {
    int count = 0;
    for (LONG y = area.top; y < area.bottom; ++y)
        for (LONG x = area.left; x < area.right; ++x)
            count += shown(x, y) == color ? 1 : 0;
    return count;
}

HRESULT WINAPI StandIn_DirectDrawCreateEx(GUID* device, void** object, const GUID& interfaceId,
                                          IUnknown* outer) {
    if (!living || device || outer || !IsEqualGUID(interfaceId, IID_IDirectDraw7))
        return DDERR_INVALIDPARAMS;
    *object = new StandInDirectDraw7(*living);
    ++living->madeCount;
    return DD_OK;
}
