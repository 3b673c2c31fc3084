// A surface. Those that a loss of the foreground takes keep their memory, but are unusable until
// they are restored.
#pragma once

#include "compat/ddraw/direct_draw.h"
#include "compat/ddraw/pixels.h"

class Surface final : public UnsupportedSurface {
public:
    static void* operator new(size_t size) noexcept;
    static void operator delete(void* object);

    // Makes a surface with its back buffer, if it is to have one. Returns null if there is no
    // memory.
    static Surface* make(DirectDraw* owner, const DDSURFACEDESC2& wanted);

    STDMETHODIMP QueryInterface(REFIID interfaceId, void** object) noexcept override;
    STDMETHODIMP_(ULONG) AddRef() noexcept override;
    STDMETHODIMP_(ULONG) Release() noexcept override;

    STDMETHODIMP Blt(LPRECT to, LPDIRECTDRAWSURFACE7 from, LPRECT part, DWORD flags,
                     LPDDBLTFX effects) noexcept override;
    STDMETHODIMP Flip(LPDIRECTDRAWSURFACE7 target, DWORD flags) noexcept override;
    STDMETHODIMP GetAttachedSurface(LPDDSCAPS2 wanted,
                                    LPDIRECTDRAWSURFACE7* attached) noexcept override;
    STDMETHODIMP GetDC(HDC* dc) noexcept override;
    STDMETHODIMP IsLost() noexcept override;
    STDMETHODIMP Lock(LPRECT area, LPDDSURFACEDESC2 description, DWORD flags,
                      HANDLE event) noexcept override;
    STDMETHODIMP ReleaseDC(HDC dc) noexcept override;
    STDMETHODIMP Restore() noexcept override;
    STDMETHODIMP Unlock(LPRECT area) noexcept override;

    bool isPrimary() const { return (caps & DDSCAPS_PRIMARYSURFACE) != 0; }
    void lose();

    Surface* next = nullptr; // in the owner's list

private:
    Surface(DirectDraw* owner, Surface* front, DWORD caps, Pixels* pixels);
    ~Surface();
    static Surface* makeOne(DirectDraw* owner, Surface* front, DWORD caps, SIZE size);
    bool isBusy() const { return isLocked || isDcOpen; }
    bool contains(const RECT& area) const;
    void describe(DDSURFACEDESC2* description) const;
    HRESULT fill(const RECT& to, DWORD value);
    HRESULT copy(const RECT& to, Surface* from, const RECT& part);
    void showIfPrimary();

    LONG references = 1; // of a back buffer, one is its front buffer's, which it never outlives
    DirectDraw* owner;
    Surface* front; // null for all but back buffers
    Surface* back = nullptr;
    DWORD caps;
    Pixels* pixels; // exchanged with the back buffer's by each flip
    bool lost = false;
    bool isLocked = false;
    bool isDcOpen = false;
};
