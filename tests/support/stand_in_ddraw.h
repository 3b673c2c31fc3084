// The stand-in for DirectDraw: a display without hardware, whose surfaces are DIB sections, so that
// GDI really draws on them and the test can look at the pixels. Made by StandInDevices.
//
// It insists on what DirectDraw insists on: exclusive mode before a display mode or a flipping
// primary surface, one device context or lock at a time, lost surfaces until they are restored.
#pragma once

#include <cstdint>
#include <vector>
#include <windows.h>

struct DisplayMode {
    DWORD width = 0; // 0: the desktop's own mode
    DWORD height = 0;
    DWORD depth = 0;
    DWORD refreshRate = 0;
};

struct PixelMasks {
    DWORD red = 0;
    DWORD green = 0;
    DWORD blue = 0;
};

class StandInSurface;

// The entry point that programs fetch from DDRAW.DLL; serves the living StandInDDraw.
HRESULT WINAPI StandIn_DirectDrawCreateEx(GUID* device, void** object, const GUID& interfaceId,
                                          IUnknown* outer);

class StandInDDraw {
public:
    StandInDDraw();
    ~StandInDDraw();
    StandInDDraw(const StandInDDraw&) = delete;
    StandInDDraw& operator=(const StandInDDraw&) = delete;

    // --- Decided by the test ---

    // All surfaces in display memory are lost, as on a switch to another program: their methods
    // give DDERR_SURFACELOST until they are restored. Restored ones hold `undefinedPixels`.
    void loseSurfaces();
    // While set, lost surfaces cannot be restored (DDERR_WRONGMODE).
    bool isAway = false;
    // The form of pixels of modes set from now on; 0: by depth, 5-6-5 at 16 bits.
    PixelMasks masks;
    // What GetScanLine gives, one after the other; the last one stays.
    std::vector<DWORD> scanLines = {0};
    DWORD monitorFrequency = 60;

    // --- Seen by the test ---

    bool wasMade() const { return madeCount > 0; }
    int made() const { return madeCount; } // IDirectDraw7 objects made
    bool isExclusive() const { return exclusiveWindow != nullptr; }
    const DisplayMode& mode() const { return currentMode; }
    size_t surfaceCount() const { return surfaces.size(); }
    int flips() const { return flipCount; }

    // Pixels as GDI colours, red in the low byte. `shown` is what the last flip brought to the
    // screen, `drawn` is the back buffer. CLR_INVALID without a flipping surface or outside of it.
    COLORREF shown(int x, int y) const;
    COLORREF drawn(int x, int y) const;
    // How many pixels of the shown picture, in an area, have a colour.
    int shownCount(const RECT& area, COLORREF color) const;

    static constexpr uint8_t undefinedPixels = 0xA5;

private:
    friend class StandInDirectDraw7;
    friend class StandInSurface;

    friend HRESULT WINAPI StandIn_DirectDrawCreateEx(GUID*, void**, const GUID&, IUnknown*);

    StandInSurface* primary() const;

    std::vector<StandInSurface*> surfaces;
    HWND exclusiveWindow = nullptr;
    DWORD cooperativeLevel = 0;
    DisplayMode currentMode;
    int madeCount = 0;
    int flipCount = 0;
};
