// The methods of the DirectX interfaces as stand-ins have them that do not know better: each gives
// E_NOTIMPL. What a stand-in needs it overrides.
#pragma once

#include "tests/support/call_text.h"

class UnusedDirectDraw7 : public IDirectDraw7 {
public:
    STDMETHODIMP Compact() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateClipper(DWORD, LPDIRECTDRAWCLIPPER*, IUnknown*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreatePalette(DWORD, LPPALETTEENTRY, LPDIRECTDRAWPALETTE*,
                               IUnknown*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateSurface(LPDDSURFACEDESC2, LPDIRECTDRAWSURFACE7*,
                               IUnknown*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP DuplicateSurface(LPDIRECTDRAWSURFACE7, LPDIRECTDRAWSURFACE7*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumDisplayModes(DWORD, LPDDSURFACEDESC2, LPVOID,
                                  LPDDENUMMODESCALLBACK2) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumSurfaces(DWORD, LPDDSURFACEDESC2, LPVOID,
                              LPDDENUMSURFACESCALLBACK7) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP FlipToGDISurface() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetCaps(LPDDCAPS, LPDDCAPS) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplayMode(LPDDSURFACEDESC2) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFourCCCodes(LPDWORD, LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetGDISurface(LPDIRECTDRAWSURFACE7*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetMonitorFrequency(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetScanLine(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetVerticalBlankStatus(BOOL*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(GUID*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RestoreDisplayMode() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetCooperativeLevel(HWND, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetDisplayMode(DWORD, DWORD, DWORD, DWORD, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP WaitForVerticalBlank(DWORD, HANDLE) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetAvailableVidMem(LPDDSCAPS2, LPDWORD, LPDWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetSurfaceFromDC(HDC, LPDIRECTDRAWSURFACE7*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP RestoreAllSurfaces() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP TestCooperativeLevel() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDeviceIdentifier(LPDDDEVICEIDENTIFIER2, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP StartModeTest(LPSIZE, DWORD, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP EvaluateMode(DWORD, DWORD*) noexcept override { return E_NOTIMPL; }
};

class UnusedDirectDrawSurface7 : public IDirectDrawSurface7 {
public:
    STDMETHODIMP AddAttachedSurface(LPDIRECTDRAWSURFACE7) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP AddOverlayDirtyRect(LPRECT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Blt(LPRECT, LPDIRECTDRAWSURFACE7, LPRECT, DWORD, LPDDBLTFX) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP BltBatch(LPDDBLTBATCH, DWORD, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP BltFast(DWORD, DWORD, LPDIRECTDRAWSURFACE7, LPRECT, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP DeleteAttachedSurface(DWORD, LPDIRECTDRAWSURFACE7) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumAttachedSurfaces(LPVOID, LPDDENUMSURFACESCALLBACK7) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumOverlayZOrders(DWORD, LPVOID, LPDDENUMSURFACESCALLBACK7) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Flip(LPDIRECTDRAWSURFACE7, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetAttachedSurface(LPDDSCAPS2, LPDIRECTDRAWSURFACE7*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetBltStatus(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetCaps(LPDDSCAPS2) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetClipper(LPDIRECTDRAWCLIPPER*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetColorKey(DWORD, LPDDCOLORKEY) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDC(HDC*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFlipStatus(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetOverlayPosition(LPLONG, LPLONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPalette(LPDIRECTDRAWPALETTE*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPixelFormat(LPDDPIXELFORMAT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetSurfaceDesc(LPDDSURFACEDESC2) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPDIRECTDRAW, LPDDSURFACEDESC2) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP IsLost() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Lock(LPRECT, LPDDSURFACEDESC2, DWORD, HANDLE) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP ReleaseDC(HDC) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Restore() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetClipper(LPDIRECTDRAWCLIPPER) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetColorKey(DWORD, LPDDCOLORKEY) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetOverlayPosition(LONG, LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetPalette(LPDIRECTDRAWPALETTE) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Unlock(LPRECT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP UpdateOverlay(LPRECT, LPDIRECTDRAWSURFACE7, LPRECT, DWORD,
                               LPDDOVERLAYFX) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP UpdateOverlayDisplay(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP UpdateOverlayZOrder(DWORD, LPDIRECTDRAWSURFACE7) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetDDInterface(LPVOID*) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP PageLock(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP PageUnlock(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetSurfaceDesc(LPDDSURFACEDESC2, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetPrivateData(REFGUID, LPVOID, DWORD, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetPrivateData(REFGUID, LPVOID, LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP FreePrivateData(REFGUID) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetUniquenessValue(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP ChangeUniquenessValue() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetPriority(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPriority(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetLOD(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetLOD(LPDWORD) noexcept override { return E_NOTIMPL; }
};

class UnusedDirectDrawPalette : public IDirectDrawPalette {
public:
    STDMETHODIMP GetCaps(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetEntries(DWORD, DWORD, DWORD, LPPALETTEENTRY) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Initialize(LPDIRECTDRAW, DWORD, LPPALETTEENTRY) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetEntries(DWORD, DWORD, DWORD, LPPALETTEENTRY) noexcept override {
        return E_NOTIMPL;
    }
};

class UnusedDirectInput7A : public IDirectInput7A {
public:
    STDMETHODIMP CreateDevice(REFGUID, LPDIRECTINPUTDEVICEA*, LPUNKNOWN) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumDevices(DWORD, LPDIENUMDEVICESCALLBACKA, LPVOID, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetDeviceStatus(REFGUID) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RunControlPanel(HWND, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(HINSTANCE, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP FindDevice(REFGUID, LPCSTR, LPGUID) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateDeviceEx(REFGUID, REFIID, LPVOID*, LPUNKNOWN) noexcept override {
        return E_NOTIMPL;
    }
};

class UnusedDirectInputDevice7A : public IDirectInputDevice7A {
public:
    STDMETHODIMP GetCapabilities(LPDIDEVCAPS) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP EnumObjects(LPDIENUMDEVICEOBJECTSCALLBACKA, LPVOID, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetProperty(REFGUID, LPDIPROPHEADER) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetProperty(REFGUID, LPCDIPROPHEADER) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Acquire() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Unacquire() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDeviceState(DWORD, LPVOID) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetDeviceData(DWORD, LPDIDEVICEOBJECTDATA, LPDWORD, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetDataFormat(LPCDIDATAFORMAT) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetEventNotification(HANDLE) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetCooperativeLevel(HWND, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetObjectInfo(LPDIDEVICEOBJECTINSTANCEA, DWORD, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetDeviceInfo(LPDIDEVICEINSTANCEA) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP RunControlPanel(HWND, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(HINSTANCE, DWORD, REFGUID) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP CreateEffect(REFGUID, LPCDIEFFECT, LPDIRECTINPUTEFFECT*,
                              LPUNKNOWN) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumEffects(LPDIENUMEFFECTSCALLBACKA, LPVOID, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetEffectInfo(LPDIEFFECTINFOA, REFGUID) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetForceFeedbackState(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SendForceFeedbackCommand(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP EnumCreatedEffectObjects(LPDIENUMCREATEDEFFECTOBJECTSCALLBACK, LPVOID,
                                          DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Escape(LPDIEFFESCAPE) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Poll() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SendDeviceData(DWORD, LPCDIDEVICEOBJECTDATA, LPDWORD, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumEffectsInFile(LPCSTR, LPDIENUMEFFECTSINFILECALLBACK, LPVOID,
                                   DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP WriteEffectToFile(LPCSTR, DWORD, LPDIFILEEFFECT, DWORD) noexcept override {
        return E_NOTIMPL;
    }
};

class UnusedDirectSound : public IDirectSound {
public:
    STDMETHODIMP CreateSoundBuffer(LPCDSBUFFERDESC, LPDIRECTSOUNDBUFFER*,
                                   IUnknown*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetCaps(LPDSCAPS) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP DuplicateSoundBuffer(LPDIRECTSOUNDBUFFER, LPDIRECTSOUNDBUFFER*) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetCooperativeLevel(HWND, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Compact() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetSpeakerConfig(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetSpeakerConfig(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPCGUID) noexcept override { return E_NOTIMPL; }
};

class UnusedDirectSoundBuffer : public IDirectSoundBuffer {
public:
    STDMETHODIMP GetCaps(LPDSBCAPS) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetCurrentPosition(LPDWORD, LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFormat(LPWAVEFORMATEX, DWORD, LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetVolume(LPLONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetPan(LPLONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetFrequency(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP GetStatus(LPDWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPDIRECTSOUND, LPCDSBUFFERDESC) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Lock(DWORD, DWORD, LPVOID*, LPDWORD, LPVOID*, LPDWORD, DWORD) noexcept override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Play(DWORD, DWORD, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetCurrentPosition(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetFormat(LPCWAVEFORMATEX) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetVolume(LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetPan(LONG) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP SetFrequency(DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Stop() noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Unlock(LPVOID, DWORD, LPVOID, DWORD) noexcept override { return E_NOTIMPL; }
    STDMETHODIMP Restore() noexcept override { return E_NOTIMPL; }
};
