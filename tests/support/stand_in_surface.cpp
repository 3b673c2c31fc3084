#include "tests/support/stand_in_surface.h"

#include "tests/support/call_recorder.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

struct BitmapHeader {
    BITMAPINFOHEADER header;
    DWORD masks[256]; // as well a colour table of zeros
};

PixelMasks usualMasks(DWORD depth) {
    switch (depth) {
    case 16: return {0xF800, 0x07E0, 0x001F};
    case 24:
    case 32: return {0xFF0000, 0x00FF00, 0x0000FF};
    default: return {};
    }
}

bool takesMasks(DWORD depth) { return depth == 16 || depth == 32; }

BitmapHeader headerOf(const PixelMemory& pixels) {
    BitmapHeader info{};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = static_cast<LONG>(pixels.width);
    info.header.biHeight = -static_cast<LONG>(pixels.height); // the top row first
    info.header.biPlanes = 1;
    info.header.biBitCount = static_cast<WORD>(pixels.depth);
    info.header.biCompression = takesMasks(pixels.depth) ? BI_BITFIELDS : BI_RGB;
    if (takesMasks(pixels.depth)) {
        info.masks[0] = pixels.masks.red;
        info.masks[1] = pixels.masks.green;
        info.masks[2] = pixels.masks.blue;
    }
    return info;
}

// Where the caller does not say, a surface is as large as the mode.
DWORD chosen(const DDSURFACEDESC2& wanted, DWORD flag, DWORD value, DWORD otherwise) {
    return wanted.dwFlags & flag ? value : otherwise;
}

PixelMasks chosenMasks(const PixelMasks& byTest, DWORD depth) {
    return byTest.green ? byTest : usualMasks(depth);
}

} // namespace

PixelMemory::PixelMemory(DWORD width_, DWORD height_, DWORD depth_, const PixelMasks& masks_)
    : width(width_), height(height_), depth(depth_), masks(masks_),
      pitch((width_ * depth_ + 31) / 32 * 4) {
    const QuietScope quiet;
    const BitmapHeader info = headerOf(*this);
    void* memory = nullptr;
    dc = CreateCompatibleDC(nullptr);
    bitmap = CreateDIBSection(dc, reinterpret_cast<const BITMAPINFO*>(&info), DIB_RGB_COLORS,
                              &memory, nullptr, 0);
    bits = static_cast<uint8_t*>(memory);
    SelectObject(dc, bitmap);
}

PixelMemory::~PixelMemory() {
    const QuietScope quiet;
    DeleteDC(dc);
    DeleteObject(bitmap);
}

void PixelMemory::fill(DWORD pixel) {
    const size_t bytes = depth / 8;
    for (DWORD x = 0; x < width; ++x)
        memcpy(bits + x * bytes, &pixel, bytes);
    for (DWORD y = 1; y < height; ++y)
        memcpy(bits + size_t{y} * pitch, bits, width * bytes);
}

void PixelMemory::spoil() { memset(bits, StandInDDraw::undefinedPixels, size_t{pitch} * height); }

void PixelMemory::swapWith(PixelMemory& other) {
    std::vector<uint8_t> row(pitch);
    for (size_t at = 0; at < size_t{pitch} * height; at += pitch) {
        memcpy(row.data(), bits + at, pitch);
        memcpy(bits + at, other.bits + at, pitch);
        memcpy(other.bits + at, row.data(), pitch);
    }
}

COLORREF PixelMemory::colorAt(int x, int y) const {
    const QuietScope quiet;
    return GetPixel(dc, x, y);
}

StandInSurface::StandInSurface(StandInDDraw& owner_, const DDSURFACEDESC2& wanted,
                               StandInSurface* chain_)
    : ComObject(chain_ ? 0 : 1),
      pixels(chosen(wanted, DDSD_WIDTH, wanted.dwWidth, owner_.mode().width),
             chosen(wanted, DDSD_HEIGHT, wanted.dwHeight, owner_.mode().height),
             owner_.mode().depth ? owner_.mode().depth : 32,
             chosenMasks(owner_.masks, owner_.mode().depth ? owner_.mode().depth : 32)),
      owner(owner_), chain(chain_), caps(wanted.ddsCaps.dwCaps) {
    pixels.spoil();
    owner.surfaces.push_back(this);
    if (!chain && wanted.dwFlags & DDSD_BACKBUFFERCOUNT) {
        back = new StandInSurface(owner, wanted, this);
        palette = pixels.depth == 8 ? new StandInPalette : nullptr;
    }
}

StandInSurface::~StandInSurface() {
    const QuietScope quiet; // the methods used in here are nobody's calls
    std::erase(owner.surfaces, this);
    dropBack();
    if (palette)
        palette->Release();
}

void StandInSurface::dropBack() {
    if (!back)
        return;
    back->chain = nullptr;
    if (back->references() == 0)
        delete back;
}

// A back buffer stays until its primary surface goes.
void StandInSurface::onLastRelease() {
    if (!chain)
        delete this;
}

HRESULT StandInSurface::unusable() const {
    if (lost)
        return DDERR_SURFACELOST;
    if (isLocked)
        return DDERR_SURFACEBUSY;
    return isDcOpen ? DDERR_DCALREADYCREATED : DD_OK;
}

HRESULT StandInSurface::Blt(LPRECT to, LPDIRECTDRAWSURFACE7 from, LPRECT part, DWORD flags,
                            LPDDBLTFX effects) noexcept {
    const QuietScope quiet;
    auto* source = static_cast<StandInSurface*>(from);
    if (to || part)
        return E_NOTIMPL;
    if (lost || (source && source->lost))
        return DDERR_SURFACELOST;
    if (isLocked || isDcOpen)
        return DDERR_SURFACEBUSY;
    if (flags & DDBLT_COLORFILL)
        pixels.fill(effects->dwFillColor);
    else if (source)
        BitBlt(pixels.dc, 0, 0, static_cast<int>(pixels.width), static_cast<int>(pixels.height),
               source->pixels.dc, 0, 0, SRCCOPY);
    else
        return DDERR_INVALIDPARAMS;
    return DD_OK;
}

HRESULT StandInSurface::Flip(LPDIRECTDRAWSURFACE7, DWORD) noexcept {
    if (!back)
        return DDERR_NOTFLIPPABLE;
    if (lost || back->lost)
        return DDERR_SURFACELOST;
    if (isDcOpen || isLocked || back->isDcOpen || back->isLocked)
        return DDERR_SURFACEBUSY;
    pixels.swapWith(back->pixels);
    ++owner.flipCount;
    return DD_OK;
}

HRESULT StandInSurface::GetAttachedSurface(LPDDSCAPS2 wanted,
                                           LPDIRECTDRAWSURFACE7* attached) noexcept {
    if (!back || !(wanted->dwCaps & DDSCAPS_BACKBUFFER))
        return DDERR_NOTFOUND;
    const QuietScope quiet;
    back->AddRef();
    *attached = back;
    return DD_OK;
}

// Each time with the attributes of a new context, whatever was selected the last time.
HRESULT StandInSurface::GetDC(HDC* dc) noexcept {
    const HRESULT result = unusable();
    if (result != DD_OK)
        return result;
    SaveDC(pixels.dc);
    isDcOpen = true;
    *dc = pixels.dc;
    return DD_OK;
}

HRESULT StandInSurface::ReleaseDC(HDC dc) noexcept {
    if (!isDcOpen || dc != pixels.dc)
        return DDERR_INVALIDPARAMS;
    RestoreDC(pixels.dc, -1);
    isDcOpen = false;
    return DD_OK;
}

void StandInSurface::describe(DDSURFACEDESC2& description) const {
    description.dwFlags =
        DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH | DDSD_PITCH | DDSD_PIXELFORMAT | DDSD_LPSURFACE;
    description.dwWidth = pixels.width;
    description.dwHeight = pixels.height;
    description.lPitch = static_cast<LONG>(pixels.pitch);
    description.lpSurface = pixels.bits;
    description.ddsCaps.dwCaps = caps;
    DDPIXELFORMAT& format = description.ddpfPixelFormat;
    format = DDPIXELFORMAT{};
    format.dwSize = sizeof format;
    format.dwFlags = pixels.depth == 8 ? DDPF_RGB | DDPF_PALETTEINDEXED8 : DDPF_RGB;
    format.dwRGBBitCount = pixels.depth;
    format.dwRBitMask = pixels.masks.red;
    format.dwGBitMask = pixels.masks.green;
    format.dwBBitMask = pixels.masks.blue;
}

HRESULT StandInSurface::Lock(LPRECT, LPDDSURFACEDESC2 description, DWORD, HANDLE) noexcept {
    if (description->dwSize != sizeof *description)
        return DDERR_INVALIDPARAMS;
    const HRESULT result = unusable();
    if (result != DD_OK)
        return result;
    describe(*description);
    isLocked = true;
    return DD_OK;
}

HRESULT StandInSurface::Unlock(LPRECT) noexcept {
    if (!isLocked)
        return DDERR_NOTLOCKED;
    isLocked = false;
    return DD_OK;
}

HRESULT StandInSurface::IsLost() noexcept { return lost ? DDERR_SURFACELOST : DD_OK; }

HRESULT StandInSurface::Restore() noexcept {
    const QuietScope quiet;
    if (owner.isAway)
        return DDERR_WRONGMODE;
    if (lost)
        pixels.spoil();
    lost = false;
    if (back)
        back->Restore();
    return DD_OK;
}

HRESULT StandInSurface::GetPalette(LPDIRECTDRAWPALETTE* given) noexcept {
    if (!palette)
        return DDERR_NOPALETTEATTACHED;
    const QuietScope quiet;
    palette->AddRef();
    *given = palette;
    return DD_OK;
}

HRESULT StandInSurface::SetPalette(LPDIRECTDRAWPALETTE wanted) noexcept {
    const QuietScope quiet;
    if (wanted)
        wanted->AddRef();
    if (palette)
        palette->Release();
    palette = static_cast<StandInPalette*>(wanted);
    return DD_OK;
}
