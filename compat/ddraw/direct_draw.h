// The DirectDraw object: cooperative level, mode, and the list of its surfaces. Not thread-safe;
// the platform asks for the thread that made the window anyway.
//
// A display mode is only a size and a depth here: the monitor keeps its own, and full_screen.h
// shows the picture on it.
#pragma once

#include "compat/ddraw/full_screen.h"
#include "compat/ddraw/unsupported.h"
#include "compat/ddraw/vertical_blank.h"

class Surface;

struct Mode {
    DWORD width;
    DWORD height;
    DWORD depth; // bits per pixel
};

class DirectDraw final : public UnsupportedDirectDraw {
public:
    static void* operator new(size_t size) noexcept;
    static void operator delete(void* object);
    DirectDraw();

    STDMETHODIMP QueryInterface(REFIID interfaceId, void** object) noexcept override;
    STDMETHODIMP_(ULONG) AddRef() noexcept override;
    STDMETHODIMP_(ULONG) Release() noexcept override;

    STDMETHODIMP CreateSurface(LPDDSURFACEDESC2 wanted, LPDIRECTDRAWSURFACE7* surface,
                               IUnknown* outer) noexcept override;
    STDMETHODIMP GetMonitorFrequency(LPDWORD frequency) noexcept override;
    STDMETHODIMP GetScanLine(LPDWORD line) noexcept override;
    STDMETHODIMP RestoreAllSurfaces() noexcept override;
    STDMETHODIMP SetCooperativeLevel(HWND window, DWORD level) noexcept override;
    STDMETHODIMP SetDisplayMode(DWORD width, DWORD height, DWORD depth, DWORD rate,
                                DWORD flags) noexcept override;

    bool isExclusive() const { return screen.window != nullptr; }
    bool isForeground() const { return screen.isForeground; }
    const Mode& mode() const { return currentMode; }

    // What surfaces ask for.
    void add(Surface* surface);
    void remove(Surface* surface);
    void show(const Pixels& pixels) { Picture_Show(&screen.picture, pixels); }
    void waitForBlank() { VerticalBlank_Wait(&blank); }

private:
    ~DirectDraw();
    HRESULT refusal(const DDSURFACEDESC2& wanted) const;
    HRESULT primaryRefusal() const;
    HRESULT enterExclusive(HWND window);
    void leaveExclusive();
    void takeDesktopMode();
    void loseSurfaces();

    LONG references = 1;
    DWORD level = 0; // the flags of the cooperative level; 0 until it is set
    FullScreen screen{};
    VerticalBlank blank{};
    Mode currentMode{};
    Surface* surfaces = nullptr; // the youngest; the others follow
};
