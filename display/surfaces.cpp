#include "display/surfaces.h"

#include "runtime/program.h"

#include <cstring>

namespace {

constexpr size_t pitchSize = sizeof(int32_t);

ScreenSurface* lookUp(ObjectId id) {
    return static_cast<ScreenSurface*>(Registry_Lookup(Screen.surfaces, id));
}

IDirectDrawSurface7* surfaceOf(const ScreenSurface* record) {
    return static_cast<IDirectDrawSurface7*>(record->surface);
}

IDirectDrawSurface7* makeMemorySurface(const ScreenSurface* record) {
    DDSURFACEDESC2 desc{};
    desc.dwSize = sizeof desc;
    desc.dwFlags = DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH;
    desc.dwWidth = static_cast<DWORD>(record->width);
    desc.dwHeight = static_cast<DWORD>(record->height);
    desc.ddsCaps.dwCaps = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_SYSTEMMEMORY;
    IDirectDrawSurface7* surface = nullptr;
    return Screen.ddraw->CreateSurface(&desc, &surface, nullptr) == DD_OK ? surface : nullptr;
}

bool lock(IDirectDrawSurface7* surface) {
    return surface->Lock(nullptr, &ScreenCopyDesc, DDLOCK_WAIT, nullptr) == DD_OK;
}

// The locked surface's pitch and pixels in one block; null if the heap is exhausted.
void* copyLocked(int16_t height) {
    const int32_t pitch = ScreenCopyDesc.lPitch;
    const auto pixelBytes = static_cast<size_t>(pitch * height);
    auto* block = static_cast<char*>(HeapAlloc(GeneralHeap, 0, pixelBytes + pitchSize));
    if (!block)
        return nullptr;
    std::memcpy(block, &pitch, pitchSize);
    std::memcpy(block + pitchSize, ScreenCopyDesc.lpSurface, pixelBytes);
    return block;
}

void* copyPixels(IDirectDrawSurface7* memory, const ScreenSurface* record) {
    const HRESULT copied = memory->Blt(nullptr, surfaceOf(record), nullptr, DDBLT_WAIT, nullptr);
    if (copied != DD_OK || !lock(memory))
        return nullptr;
    void* block = copyLocked(record->height);
    memory->Unlock(nullptr);
    return block;
}

int32_t save(ObjectId id, void*, void*) {
    ScreenSurface* record = lookUp(id);
    if (!record || record->saved || record->kind == SurfaceKind_Memory)
        return 1;
    if (IDirectDrawSurface7* memory = makeMemorySurface(record)) {
        record->saved = copyPixels(memory, record);
        memory->Release();
    }
    return 1;
}

void writeRows(const ScreenSurface* record) {
    int32_t savedPitch;
    std::memcpy(&savedPitch, record->saved, pitchSize);
    const char* from = static_cast<const char*>(record->saved) + pitchSize;
    char* to = static_cast<char*>(ScreenCopyDesc.lpSurface);
    for (int16_t row = 0; row < record->height; ++row) {
        std::memcpy(to, from, static_cast<size_t>(savedPitch));
        from += savedPitch;
        to += ScreenCopyDesc.lPitch;
    }
}

void freeSaved(ScreenSurface* record) {
    if (record->saved)
        HeapFree(GeneralHeap, 0, record->saved);
    record->saved = nullptr;
}

void writeBack(ScreenSurface* record) {
    IDirectDrawSurface7* surface = surfaceOf(record);
    if (!lock(surface))
        return;
    writeRows(record);
    surface->Unlock(nullptr);
    freeSaved(record);
}

int32_t restore(ObjectId id, void*, void*) {
    ScreenSurface* record = lookUp(id);
    if (!record || record->kind == SurfaceKind_Memory)
        return 1;
    IDirectDrawSurface7* surface = surfaceOf(record);
    if (surface->IsLost() == DDERR_SURFACELOST)
        surface->Restore();
    if (record->saved)
        writeBack(record);
    return 1;
}

} // namespace

void Screen_SaveSurfaces() { Registry_ForEach(Screen.surfaces, save, nullptr); }

void Screen_RestoreSurfaces() { Registry_ForEach(Screen.surfaces, restore, nullptr); }

void Screen_FreeSurface(ObjectId id) {
    ScreenSurface* record = lookUp(id);
    if (!record)
        return;
    if (record->kind == SurfaceKind_Memory)
        HeapFree(GeneralHeap, 0, record->surface);
    else
        surfaceOf(record)->Release();
    freeSaved(record);
    Registry_Release(Screen.surfaces, id);
}
