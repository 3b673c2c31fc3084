#include "compat/ddraw/surface.h"

#include "compat/ddraw/memory.h"

#include <utility>

namespace {

constexpr DWORD waits = DDBLT_WAIT | DDBLT_DONOTWAIT | DDBLT_ASYNC; // nothing ever has to wait

// A back buffer's capabilities follow from those of its front buffer.
DWORD backCaps(DWORD caps) {
    return (caps &
            ~static_cast<DWORD>(DDSCAPS_PRIMARYSURFACE | DDSCAPS_VISIBLE | DDSCAPS_FRONTBUFFER)) |
           DDSCAPS_BACKBUFFER;
}

DWORD fullCaps(const DDSURFACEDESC2& wanted) {
    DWORD caps = wanted.ddsCaps.dwCaps;
    if (!(caps & DDSCAPS_SYSTEMMEMORY))
        caps |= DDSCAPS_VIDEOMEMORY | DDSCAPS_LOCALVIDMEM;
    if (caps & DDSCAPS_PRIMARYSURFACE)
        caps |= DDSCAPS_VISIBLE;
    if (caps & DDSCAPS_FLIP)
        caps |= DDSCAPS_FRONTBUFFER;
    return caps;
}

RECT wholeOf(const Pixels& pixels) {
    return {0, 0, static_cast<LONG>(pixels.width), static_cast<LONG>(pixels.height)};
}

DDPIXELFORMAT formatOf(DWORD depth) {
    DDPIXELFORMAT format{};
    format.dwSize = sizeof format;
    format.dwFlags = DDPF_RGB;
    format.dwRGBBitCount = depth;
    format.dwRBitMask = depth == 16 ? 0xF800 : 0xFF0000;
    format.dwGBitMask = depth == 16 ? 0x07E0 : 0x00FF00;
    format.dwBBitMask = depth == 16 ? 0x001F : 0x0000FF;
    return format;
}

DWORD blanksOf(DWORD flipFlags) {
    if (flipFlags & DDFLIP_NOVSYNC)
        return 0;
    const DWORD interval = flipFlags >> 24 & 7; // DDFLIP_INTERVAL2 to 4
    return interval ? interval : 1;
}

} // namespace

void* Surface::operator new(size_t size) noexcept { return Memory_Allocate(size); }

void Surface::operator delete(void* object) { Memory_Free(object); }

Surface::Surface(DirectDraw* owner_, Surface* front_, DWORD caps_, Pixels* pixels_)
    : owner(owner_), front(front_), caps(caps_), pixels(pixels_) {
    owner->add(this);
    if (!front)
        owner->AddRef();
}

// The front buffer holds the object for both.
Surface::~Surface() {
    owner->remove(this);
    if (back)
        delete back;
    Pixels_Free(pixels);
    if (!front)
        owner->Release();
}

Surface* Surface::makeOne(DirectDraw* owner, Surface* front, DWORD caps, SIZE size) {
    Pixels* pixels =
        Pixels_Make(static_cast<DWORD>(size.cx), static_cast<DWORD>(size.cy), owner->mode().depth);
    Surface* surface = pixels ? new Surface(owner, front, caps, pixels) : nullptr;
    if (!surface)
        Pixels_Free(pixels);
    return surface;
}

Surface* Surface::make(DirectDraw* owner, const DDSURFACEDESC2& wanted) {
    const bool isPrimary = (wanted.ddsCaps.dwCaps & DDSCAPS_PRIMARYSURFACE) != 0;
    const Mode& mode = owner->mode();
    const SIZE size = {static_cast<LONG>(isPrimary ? mode.width : wanted.dwWidth),
                       static_cast<LONG>(isPrimary ? mode.height : wanted.dwHeight)};
    Surface* surface = makeOne(owner, nullptr, fullCaps(wanted), size);
    if (!surface || !(wanted.dwFlags & DDSD_BACKBUFFERCOUNT))
        return surface;
    surface->back = makeOne(owner, surface, backCaps(surface->caps), size);
    if (surface->back)
        return surface;
    delete surface;
    return nullptr;
}

STDMETHODIMP Surface::QueryInterface(REFIID interfaceId, void** object) noexcept {
    if (!object)
        return DDERR_INVALIDPARAMS;
    *object = nullptr;
    if (!IsEqualGUID(interfaceId, IID_IUnknown) &&
        !IsEqualGUID(interfaceId, IID_IDirectDrawSurface7))
        return E_NOINTERFACE;
    AddRef();
    *object = this;
    return DD_OK;
}

STDMETHODIMP_(ULONG) Surface::AddRef() noexcept {
    return static_cast<ULONG>(InterlockedIncrement(&references));
}

STDMETHODIMP_(ULONG) Surface::Release() noexcept {
    const LONG left = InterlockedDecrement(&references);
    if (left == 0 && !front)
        delete this;
    return static_cast<ULONG>(left);
}

bool Surface::contains(const RECT& area) const {
    const RECT whole = wholeOf(*pixels);
    return area.left >= 0 && area.top >= 0 && area.left < area.right && area.top < area.bottom &&
           area.right <= whole.right && area.bottom <= whole.bottom;
}

STDMETHODIMP Surface::Blt(LPRECT to, LPDIRECTDRAWSURFACE7 from, LPRECT part, DWORD flags,
                          LPDDBLTFX effects) noexcept {
    auto* source = static_cast<Surface*>(from);
    const bool isFill = (flags & DDBLT_COLORFILL) != 0;
    if (flags & ~(waits | DDBLT_COLORFILL))
        return DDERR_UNSUPPORTED;
    if (isFill ? !effects : !source)
        return DDERR_INVALIDPARAMS;
    const RECT toArea = to ? *to : wholeOf(*pixels);
    if (!contains(toArea))
        return DDERR_INVALIDRECT;
    if (lost)
        return DDERR_SURFACELOST;
    if (isBusy())
        return DDERR_SURFACEBUSY;
    const HRESULT result = isFill ? fill(toArea, effects->dwFillColor)
                                  : copy(toArea, source, part ? *part : wholeOf(*source->pixels));
    if (result == DD_OK)
        showIfPrimary();
    return result;
}

HRESULT Surface::fill(const RECT& to, DWORD value) {
    GdiFlush();
    Pixels_Fill(*pixels, to, value);
    return DD_OK;
}

HRESULT Surface::copy(const RECT& to, Surface* from, const RECT& part) {
    if (!from->contains(part))
        return DDERR_INVALIDRECT;
    if (from->lost)
        return DDERR_SURFACELOST;
    if (from->isBusy())
        return DDERR_SURFACEBUSY;
    const int modeBefore = SetStretchBltMode(pixels->dc, COLORONCOLOR);
    const bool isDone =
        StretchBlt(pixels->dc, to.left, to.top, to.right - to.left, to.bottom - to.top,
                   from->pixels->dc, part.left, part.top, part.right - part.left,
                   part.bottom - part.top, SRCCOPY) != FALSE;
    SetStretchBltMode(pixels->dc, modeBefore);
    return isDone ? DD_OK : DDERR_GENERIC;
}

STDMETHODIMP Surface::Flip(LPDIRECTDRAWSURFACE7 target, DWORD flags) noexcept {
    if (!back || (target && target != back))
        return DDERR_NOTFLIPPABLE;
    if (lost || back->lost)
        return DDERR_SURFACELOST;
    if (isBusy() || back->isBusy())
        return DDERR_SURFACEBUSY;
    std::swap(pixels, back->pixels);
    owner->show(*pixels);
    for (DWORD blanks = blanksOf(flags); blanks > 0; --blanks)
        owner->waitForBlank();
    return DD_OK;
}

STDMETHODIMP Surface::GetAttachedSurface(LPDDSCAPS2 wanted,
                                         LPDIRECTDRAWSURFACE7* attached) noexcept {
    if (!wanted || !attached)
        return DDERR_INVALIDPARAMS;
    *attached = nullptr;
    Surface* other = back ? back : front;
    if (!other || (other->caps & wanted->dwCaps) != wanted->dwCaps)
        return DDERR_NOTFOUND;
    other->AddRef();
    *attached = other;
    return DD_OK;
}

// Each context has the attributes of a new one, whatever was selected the last time.
STDMETHODIMP Surface::GetDC(HDC* dc) noexcept {
    if (!dc)
        return DDERR_INVALIDPARAMS;
    *dc = nullptr;
    if (lost)
        return DDERR_SURFACELOST;
    if (isBusy())
        return isDcOpen ? DDERR_DCALREADYCREATED : DDERR_SURFACEBUSY;
    SaveDC(pixels->dc);
    isDcOpen = true;
    *dc = pixels->dc;
    return DD_OK;
}

STDMETHODIMP Surface::ReleaseDC(HDC dc) noexcept {
    if (!isDcOpen)
        return DDERR_NODC;
    if (dc != pixels->dc)
        return DDERR_INVALIDPARAMS;
    RestoreDC(pixels->dc, -1);
    isDcOpen = false;
    showIfPrimary();
    return DD_OK;
}

void Surface::describe(DDSURFACEDESC2* description) const {
    description->dwFlags = DDSD_CAPS | DDSD_HEIGHT | DDSD_WIDTH | DDSD_PITCH | DDSD_PIXELFORMAT;
    if (back || front)
        description->dwFlags |= DDSD_BACKBUFFERCOUNT;
    description->dwBackBufferCount = back ? 1 : 0;
    description->dwWidth = pixels->width;
    description->dwHeight = pixels->height;
    description->lPitch = static_cast<LONG>(pixels->pitch);
    description->ddsCaps.dwCaps = caps;
    description->ddpfPixelFormat = formatOf(pixels->depth);
}

STDMETHODIMP Surface::Lock(LPRECT area, LPDDSURFACEDESC2 description, DWORD,
                           HANDLE event) noexcept {
    if (!description || description->dwSize != sizeof *description || event)
        return DDERR_INVALIDPARAMS;
    if (area && !contains(*area))
        return DDERR_INVALIDPARAMS;
    if (lost)
        return DDERR_SURFACELOST;
    if (isBusy())
        return DDERR_SURFACEBUSY;
    GdiFlush();
    describe(description);
    description->lpSurface = Pixels_At(*pixels, static_cast<DWORD>(area ? area->left : 0),
                                       static_cast<DWORD>(area ? area->top : 0));
    isLocked = true;
    return DD_OK;
}

STDMETHODIMP Surface::Unlock(LPRECT) noexcept {
    if (!isLocked)
        return DDERR_NOTLOCKED;
    isLocked = false;
    showIfPrimary();
    return DD_OK;
}

STDMETHODIMP Surface::IsLost() noexcept { return lost ? DDERR_SURFACELOST : DD_OK; }

// The pixels are still there, but a surface of another mode is of no use.
STDMETHODIMP Surface::Restore() noexcept {
    if (!lost)
        return DD_OK;
    if (!owner->isForeground() || pixels->depth != owner->mode().depth)
        return DDERR_WRONGMODE;
    lost = false;
    if (back)
        back->Restore();
    return DD_OK;
}

void Surface::lose() { lost = lost || !(caps & DDSCAPS_SYSTEMMEMORY); }

void Surface::showIfPrimary() {
    if (isPrimary())
        owner->show(*pixels);
}
