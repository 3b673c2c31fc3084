#include "compat/ddraw/direct_draw.h"

// What a program gets this library for. The other entries are there because parts of the system may
// ask a library of this name for them; they offer nothing.

extern "C" HRESULT WINAPI DirectDrawCreateEx(GUID* device, void** object, REFIID interfaceId,
                                             IUnknown* outer) {
    if (outer)
        return CLASS_E_NOAGGREGATION;
    if (!object || !IsEqualGUID(interfaceId, IID_IDirectDraw7))
        return DDERR_INVALIDPARAMS;
    *object = nullptr;
    if (device && device != reinterpret_cast<GUID*>(INT_PTR{DDCREATE_HARDWAREONLY}) &&
        device != reinterpret_cast<GUID*>(INT_PTR{DDCREATE_EMULATIONONLY}))
        return DDERR_INVALIDDIRECTDRAWGUID;
    *object = new DirectDraw;
    return *object ? DD_OK : DDERR_OUTOFMEMORY;
}

extern "C" HRESULT WINAPI DirectDrawCreate(GUID*, IDirectDraw**, IUnknown*) {
    return DDERR_UNSUPPORTED;
}

extern "C" HRESULT WINAPI DirectDrawEnumerateA(LPDDENUMCALLBACKA, void*) {
    return DDERR_UNSUPPORTED;
}

extern "C" HRESULT WINAPI DirectDrawEnumerateW(LPDDENUMCALLBACKW, void*) {
    return DDERR_UNSUPPORTED;
}

extern "C" HRESULT WINAPI DirectDrawEnumerateExA(LPDDENUMCALLBACKEXA, void*, DWORD) {
    return DDERR_UNSUPPORTED;
}

extern "C" HRESULT WINAPI DirectDrawEnumerateExW(LPDDENUMCALLBACKEXW, void*, DWORD) {
    return DDERR_UNSUPPORTED;
}

extern "C" HRESULT WINAPI DllGetClassObject(REFCLSID, REFIID, void**) {
    return CLASS_E_CLASSNOTAVAILABLE;
}

extern "C" HRESULT WINAPI DllCanUnloadNow() { return S_FALSE; }
