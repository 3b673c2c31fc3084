// The methods of the DirectX interfaces as stand-ins have them that do not know better: each gives
// E_NOTIMPL. What a stand-in needs it overrides.
#pragma once

#include "tests/support/call_text.h"

class UnusedDirectDraw7 : public IDirectDraw7 {
public:
    STDMETHODIMP Compact() override { return E_NOTIMPL; }
    STDMETHODIMP CreateClipper(DWORD, LPDIRECTDRAWCLIPPER*, IUnknown*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreatePalette(DWORD, LPPALETTEENTRY, LPDIRECTDRAWPALETTE*, IUnknown*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP CreateSurface(LPDDSURFACEDESC2, LPDIRECTDRAWSURFACE7*, IUnknown*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP DuplicateSurface(LPDIRECTDRAWSURFACE7, LPDIRECTDRAWSURFACE7*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumDisplayModes(DWORD, LPDDSURFACEDESC2, LPVOID,
                                  LPDDENUMMODESCALLBACK2) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumSurfaces(DWORD, LPDDSURFACEDESC2, LPVOID, LPDDENUMSURFACESCALLBACK7) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP FlipToGDISurface() override { return E_NOTIMPL; }
    STDMETHODIMP GetCaps(LPDDCAPS, LPDDCAPS) override { return E_NOTIMPL; }
    STDMETHODIMP GetDisplayMode(LPDDSURFACEDESC2) override { return E_NOTIMPL; }
    STDMETHODIMP GetFourCCCodes(LPDWORD, LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetGDISurface(LPDIRECTDRAWSURFACE7*) override { return E_NOTIMPL; }
    STDMETHODIMP GetMonitorFrequency(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetScanLine(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetVerticalBlankStatus(BOOL*) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(GUID*) override { return E_NOTIMPL; }
    STDMETHODIMP RestoreDisplayMode() override { return E_NOTIMPL; }
    STDMETHODIMP SetCooperativeLevel(HWND, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetDisplayMode(DWORD, DWORD, DWORD, DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP WaitForVerticalBlank(DWORD, HANDLE) override { return E_NOTIMPL; }
    STDMETHODIMP GetAvailableVidMem(LPDDSCAPS2, LPDWORD, LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetSurfaceFromDC(HDC, LPDIRECTDRAWSURFACE7*) override { return E_NOTIMPL; }
    STDMETHODIMP RestoreAllSurfaces() override { return E_NOTIMPL; }
    STDMETHODIMP TestCooperativeLevel() override { return E_NOTIMPL; }
    STDMETHODIMP GetDeviceIdentifier(LPDDDEVICEIDENTIFIER2, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP StartModeTest(LPSIZE, DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP EvaluateMode(DWORD, DWORD*) override { return E_NOTIMPL; }
};

class UnusedDirectDrawSurface7 : public IDirectDrawSurface7 {
public:
    STDMETHODIMP AddAttachedSurface(LPDIRECTDRAWSURFACE7) override { return E_NOTIMPL; }
    STDMETHODIMP AddOverlayDirtyRect(LPRECT) override { return E_NOTIMPL; }
    STDMETHODIMP Blt(LPRECT, LPDIRECTDRAWSURFACE7, LPRECT, DWORD, LPDDBLTFX) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP BltBatch(LPDDBLTBATCH, DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP BltFast(DWORD, DWORD, LPDIRECTDRAWSURFACE7, LPRECT, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP DeleteAttachedSurface(DWORD, LPDIRECTDRAWSURFACE7) override { return E_NOTIMPL; }
    STDMETHODIMP EnumAttachedSurfaces(LPVOID, LPDDENUMSURFACESCALLBACK7) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumOverlayZOrders(DWORD, LPVOID, LPDDENUMSURFACESCALLBACK7) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Flip(LPDIRECTDRAWSURFACE7, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetAttachedSurface(LPDDSCAPS2, LPDIRECTDRAWSURFACE7*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetBltStatus(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetCaps(LPDDSCAPS2) override { return E_NOTIMPL; }
    STDMETHODIMP GetClipper(LPDIRECTDRAWCLIPPER*) override { return E_NOTIMPL; }
    STDMETHODIMP GetColorKey(DWORD, LPDDCOLORKEY) override { return E_NOTIMPL; }
    STDMETHODIMP GetDC(HDC*) override { return E_NOTIMPL; }
    STDMETHODIMP GetFlipStatus(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetOverlayPosition(LPLONG, LPLONG) override { return E_NOTIMPL; }
    STDMETHODIMP GetPalette(LPDIRECTDRAWPALETTE*) override { return E_NOTIMPL; }
    STDMETHODIMP GetPixelFormat(LPDDPIXELFORMAT) override { return E_NOTIMPL; }
    STDMETHODIMP GetSurfaceDesc(LPDDSURFACEDESC2) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPDIRECTDRAW, LPDDSURFACEDESC2) override { return E_NOTIMPL; }
    STDMETHODIMP IsLost() override { return E_NOTIMPL; }
    STDMETHODIMP Lock(LPRECT, LPDDSURFACEDESC2, DWORD, HANDLE) override { return E_NOTIMPL; }
    STDMETHODIMP ReleaseDC(HDC) override { return E_NOTIMPL; }
    STDMETHODIMP Restore() override { return E_NOTIMPL; }
    STDMETHODIMP SetClipper(LPDIRECTDRAWCLIPPER) override { return E_NOTIMPL; }
    STDMETHODIMP SetColorKey(DWORD, LPDDCOLORKEY) override { return E_NOTIMPL; }
    STDMETHODIMP SetOverlayPosition(LONG, LONG) override { return E_NOTIMPL; }
    STDMETHODIMP SetPalette(LPDIRECTDRAWPALETTE) override { return E_NOTIMPL; }
    STDMETHODIMP Unlock(LPRECT) override { return E_NOTIMPL; }
    STDMETHODIMP UpdateOverlay(LPRECT, LPDIRECTDRAWSURFACE7, LPRECT, DWORD,
                               LPDDOVERLAYFX) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP UpdateOverlayDisplay(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP UpdateOverlayZOrder(DWORD, LPDIRECTDRAWSURFACE7) override { return E_NOTIMPL; }
    STDMETHODIMP GetDDInterface(LPVOID*) override { return E_NOTIMPL; }
    STDMETHODIMP PageLock(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP PageUnlock(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetSurfaceDesc(LPDDSURFACEDESC2, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetPrivateData(REFGUID, LPVOID, DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetPrivateData(REFGUID, LPVOID, LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP FreePrivateData(REFGUID) override { return E_NOTIMPL; }
    STDMETHODIMP GetUniquenessValue(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP ChangeUniquenessValue() override { return E_NOTIMPL; }
    STDMETHODIMP SetPriority(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetPriority(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetLOD(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetLOD(LPDWORD) override { return E_NOTIMPL; }
};

class UnusedDirectDrawPalette : public IDirectDrawPalette {
public:
    STDMETHODIMP GetCaps(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetEntries(DWORD, DWORD, DWORD, LPPALETTEENTRY) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPDIRECTDRAW, DWORD, LPPALETTEENTRY) override { return E_NOTIMPL; }
    STDMETHODIMP SetEntries(DWORD, DWORD, DWORD, LPPALETTEENTRY) override { return E_NOTIMPL; }
};

class UnusedDirectInput7A : public IDirectInput7A {
public:
    STDMETHODIMP CreateDevice(REFGUID, LPDIRECTINPUTDEVICEA*, LPUNKNOWN) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumDevices(DWORD, LPDIENUMDEVICESCALLBACKA, LPVOID, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetDeviceStatus(REFGUID) override { return E_NOTIMPL; }
    STDMETHODIMP RunControlPanel(HWND, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(HINSTANCE, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP FindDevice(REFGUID, LPCSTR, LPGUID) override { return E_NOTIMPL; }
    STDMETHODIMP CreateDeviceEx(REFGUID, REFIID, LPVOID*, LPUNKNOWN) override { return E_NOTIMPL; }
};

class UnusedDirectInputDevice7A : public IDirectInputDevice7A {
public:
    STDMETHODIMP GetCapabilities(LPDIDEVCAPS) override { return E_NOTIMPL; }
    STDMETHODIMP EnumObjects(LPDIENUMDEVICEOBJECTSCALLBACKA, LPVOID, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetProperty(REFGUID, LPDIPROPHEADER) override { return E_NOTIMPL; }
    STDMETHODIMP SetProperty(REFGUID, LPCDIPROPHEADER) override { return E_NOTIMPL; }
    STDMETHODIMP Acquire() override { return E_NOTIMPL; }
    STDMETHODIMP Unacquire() override { return E_NOTIMPL; }
    STDMETHODIMP GetDeviceState(DWORD, LPVOID) override { return E_NOTIMPL; }
    STDMETHODIMP GetDeviceData(DWORD, LPDIDEVICEOBJECTDATA, LPDWORD, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetDataFormat(LPCDIDATAFORMAT) override { return E_NOTIMPL; }
    STDMETHODIMP SetEventNotification(HANDLE) override { return E_NOTIMPL; }
    STDMETHODIMP SetCooperativeLevel(HWND, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetObjectInfo(LPDIDEVICEOBJECTINSTANCEA, DWORD, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetDeviceInfo(LPDIDEVICEINSTANCEA) override { return E_NOTIMPL; }
    STDMETHODIMP RunControlPanel(HWND, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(HINSTANCE, DWORD, REFGUID) override { return E_NOTIMPL; }
    STDMETHODIMP CreateEffect(REFGUID, LPCDIEFFECT, LPDIRECTINPUTEFFECT*, LPUNKNOWN) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumEffects(LPDIENUMEFFECTSCALLBACKA, LPVOID, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetEffectInfo(LPDIEFFECTINFOA, REFGUID) override { return E_NOTIMPL; }
    STDMETHODIMP GetForceFeedbackState(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SendForceFeedbackCommand(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP EnumCreatedEffectObjects(LPDIENUMCREATEDEFFECTOBJECTSCALLBACK, LPVOID,
                                          DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Escape(LPDIEFFESCAPE) override { return E_NOTIMPL; }
    STDMETHODIMP Poll() override { return E_NOTIMPL; }
    STDMETHODIMP SendDeviceData(DWORD, LPCDIDEVICEOBJECTDATA, LPDWORD, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP EnumEffectsInFile(LPCSTR, LPDIENUMEFFECTSINFILECALLBACK, LPVOID, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP WriteEffectToFile(LPCSTR, DWORD, LPDIFILEEFFECT, DWORD) override {
        return E_NOTIMPL;
    }
};

class UnusedDirectSound : public IDirectSound {
public:
    STDMETHODIMP CreateSoundBuffer(LPCDSBUFFERDESC, LPDIRECTSOUNDBUFFER*, IUnknown*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP GetCaps(LPDSCAPS) override { return E_NOTIMPL; }
    STDMETHODIMP DuplicateSoundBuffer(LPDIRECTSOUNDBUFFER, LPDIRECTSOUNDBUFFER*) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP SetCooperativeLevel(HWND, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Compact() override { return E_NOTIMPL; }
    STDMETHODIMP GetSpeakerConfig(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetSpeakerConfig(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPCGUID) override { return E_NOTIMPL; }
};

class UnusedDirectSoundBuffer : public IDirectSoundBuffer {
public:
    STDMETHODIMP GetCaps(LPDSBCAPS) override { return E_NOTIMPL; }
    STDMETHODIMP GetCurrentPosition(LPDWORD, LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetFormat(LPWAVEFORMATEX, DWORD, LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetVolume(LPLONG) override { return E_NOTIMPL; }
    STDMETHODIMP GetPan(LPLONG) override { return E_NOTIMPL; }
    STDMETHODIMP GetFrequency(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP GetStatus(LPDWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Initialize(LPDIRECTSOUND, LPCDSBUFFERDESC) override { return E_NOTIMPL; }
    STDMETHODIMP Lock(DWORD, DWORD, LPVOID*, LPDWORD, LPVOID*, LPDWORD, DWORD) override {
        return E_NOTIMPL;
    }
    STDMETHODIMP Play(DWORD, DWORD, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetCurrentPosition(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP SetFormat(LPCWAVEFORMATEX) override { return E_NOTIMPL; }
    STDMETHODIMP SetVolume(LONG) override { return E_NOTIMPL; }
    STDMETHODIMP SetPan(LONG) override { return E_NOTIMPL; }
    STDMETHODIMP SetFrequency(DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Stop() override { return E_NOTIMPL; }
    STDMETHODIMP Unlock(LPVOID, DWORD, LPVOID, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP Restore() override { return E_NOTIMPL; }
};
