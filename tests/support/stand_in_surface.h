// The surfaces and the palette of the stand-in for DirectDraw.
#pragma once

#include "tests/support/com_object.h"
#include "tests/support/stand_in_ddraw.h"
#include "tests/support/unused_methods.h"

// Pixels that GDI can draw on: a DIB section in a memory context.
class PixelMemory {
public:
    PixelMemory(DWORD width, DWORD height, DWORD depth, const PixelMasks& masks);
    ~PixelMemory();
    PixelMemory(const PixelMemory&) = delete;
    PixelMemory& operator=(const PixelMemory&) = delete;

    void fill(DWORD pixel);
    void spoil(); // undefined pixels, as after a restored loss
    void swapWith(PixelMemory& other);
    COLORREF colorAt(int x, int y) const;

    const DWORD width;
    const DWORD height;
    const DWORD depth;
    const PixelMasks masks;
    const DWORD pitch;
    HDC dc = nullptr;
    uint8_t* bits = nullptr;

private:
    HBITMAP bitmap = nullptr;
};

class StandInPalette final : public ComObject<StandInPalette, UnusedDirectDrawPalette> {};

class StandInSurface final : public ComObject<StandInSurface, UnusedDirectDrawSurface7> {
public:
    // A surface of `owner` with one reference, or one that is attached to `chain` with none.
    StandInSurface(StandInDDraw& owner, const DDSURFACEDESC2& wanted, StandInSurface* chain);
    ~StandInSurface();

    STDMETHODIMP Blt(LPRECT to, LPDIRECTDRAWSURFACE7 from, LPRECT part, DWORD flags,
                     LPDDBLTFX effects) noexcept override;
    STDMETHODIMP Flip(LPDIRECTDRAWSURFACE7 target, DWORD flags) noexcept override;
    STDMETHODIMP GetAttachedSurface(LPDDSCAPS2 caps,
                                    LPDIRECTDRAWSURFACE7* attached) noexcept override;
    STDMETHODIMP GetDC(HDC* dc) noexcept override;
    STDMETHODIMP ReleaseDC(HDC dc) noexcept override;
    STDMETHODIMP Lock(LPRECT area, LPDDSURFACEDESC2 description, DWORD flags,
                      HANDLE event) noexcept override;
    STDMETHODIMP Unlock(LPRECT area) noexcept override;
    STDMETHODIMP IsLost() noexcept override;
    STDMETHODIMP Restore() noexcept override;
    STDMETHODIMP GetPalette(LPDIRECTDRAWPALETTE* given) noexcept override;
    STDMETHODIMP SetPalette(LPDIRECTDRAWPALETTE wanted) noexcept override;

    void onLastRelease();

    bool isPrimary() const { return (caps & DDSCAPS_PRIMARYSURFACE) != 0; }
    bool isInSystemMemory() const { return (caps & DDSCAPS_SYSTEMMEMORY) != 0; }

    StandInSurface* back = nullptr; // owned by the primary surface
    bool lost = false;
    PixelMemory pixels;

private:
    HRESULT unusable() const; // why GetDC and Lock cannot go on, or DD_OK
    void describe(DDSURFACEDESC2& description) const;
    void dropBack();

    StandInDDraw& owner;
    StandInSurface* chain; // whose back buffer this is
    const DWORD caps;
    bool isDcOpen = false;
    bool isLocked = false;
    StandInPalette* palette = nullptr;
};
