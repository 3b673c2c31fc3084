// The same calls to the system's own DirectDraw and to the one that lies beside the program:
// results, descriptions and pixels are compared line by line. Where the two differ, the table says
// why.

#include "tests/compat/session.h"

#include <algorithm>
#include <functional>
#include <gtest/gtest.h>
#include <iterator>
#include <map>

namespace {

constexpr DWORD exclusive = DDSCL_EXCLUSIVE | DDSCL_FULLSCREEN;
constexpr DWORD offscreen = DDSCAPS_OFFSCREENPLAIN;
constexpr DWORD systemMemory = DDSCAPS_OFFSCREENPLAIN | DDSCAPS_SYSTEMMEMORY;
constexpr DWORD sized = DDSD_CAPS | DDSD_WIDTH | DDSD_HEIGHT;
const GUID someGuid = {1, 2, 3, {4, 5, 6, 7, 8, 9, 10, 11}};

template <typename... Values>
std::string words(Values... values) {
    std::string text;
    ((text += (text.empty() ? "" : " ") + std::to_string(values)), ...);
    return text;
}

std::string flagsText(DWORD flags) {
    char text[16];
    snprintf(text, sizeof text, "%lX", flags);
    return text;
}

DDBLTFX fillWith(DWORD value) {
    DDBLTFX effects{};
    effects.dwSize = sizeof effects;
    effects.dwFillColor = value;
    return effects;
}

HRESULT fill(IDirectDrawSurface7* surface, DWORD value, RECT* area = nullptr) {
    DDBLTFX effects = fillWith(value);
    return surface->Blt(area, nullptr, nullptr, DDBLT_COLORFILL | DDBLT_WAIT, &effects);
}

HRESULT lock(IDirectDrawSurface7* surface, RECT* area = nullptr) {
    DDSURFACEDESC2 description = wanted(0, 0);
    return surface->Lock(area, &description, DDLOCK_WAIT, nullptr);
}

void createObjects(Session& session) {
    void* made = nullptr;
    session.note("another interface", session.create(nullptr, &made, IID_IDirectDraw, nullptr));
    session.note("an unknown interface", session.create(nullptr, &made, someGuid, nullptr));
    session.note("IUnknown", session.create(nullptr, &made, IID_IUnknown, nullptr));
    session.note("an outer object",
                 session.create(nullptr, &made, IID_IDirectDraw7, session.ddraw));
    for (INT_PTR special : {DDCREATE_HARDWAREONLY, DDCREATE_EMULATIONONLY}) {
        made = nullptr;
        session.note("a special device", session.create(reinterpret_cast<GUID*>(special), &made,
                                                        IID_IDirectDraw7, nullptr));
        if (made)
            session.note("its last release", static_cast<IDirectDraw7*>(made)->Release());
    }
}

void countReferences(Session& session) {
    IDirectDraw7* ddraw = session.ddraw;
    session.note("object", ddraw->AddRef());
    session.note("object", ddraw->Release());
    for (const GUID& id : {IID_IUnknown, IID_IDirectDraw7, IID_IDirectDrawSurface7, someGuid}) {
        void* other = &session;
        session.note("query", ddraw->QueryInterface(id, &other));
        session.note("result of query", other == nullptr ? "null" : "an object");
        if (other)
            session.note("its release", static_cast<IUnknown*>(other)->Release());
    }
    session.open(16);
    session.makeSurfaces();
    session.note("object with surfaces", ddraw->AddRef());
    session.note("object with surfaces", ddraw->Release());
    session.note("primary", session.primary->AddRef());
    session.note("primary", session.primary->Release());
    session.note("back buffer", session.back->AddRef());
    session.note("back buffer", session.back->Release());
    for (const GUID& id : {IID_IUnknown, IID_IDirectDrawSurface7, IID_IDirectDraw7, someGuid}) {
        void* other = &session;
        session.note("query of a surface", session.primary->QueryInterface(id, &other));
        session.note("result of query", other == nullptr ? "null" : "an object");
        if (other)
            session.note("its release", static_cast<IUnknown*>(other)->Release());
    }
    IDirectDrawSurface7* memory = session.makeOffscreen(8, 8, DDSCAPS_SYSTEMMEMORY);
    session.note("offscreen", memory->AddRef());
    session.note("offscreen", memory->Release());
    session.note("object with more surfaces", ddraw->AddRef());
    session.note("object with more surfaces", ddraw->Release());
    session.note("back buffer's last release", session.back->Release());
    session.back = nullptr;
    session.note("primary's last release", session.primary->Release());
    session.primary = nullptr;
    session.note("object with one surface", ddraw->AddRef());
    session.note("object with one surface", ddraw->Release());
}

void setLevels(Session& session) {
    HWND child = CreateWindowExA(0, "STATIC", "", WS_CHILD, 0, 0, 8, 8, session.window, nullptr,
                                 nullptr, nullptr);
    HWND gone =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    DestroyWindow(gone);
    const struct {
        const char* name;
        HWND window;
    } windows[] = {{"no window", nullptr},
                   {"the window", session.window},
                   {"a child", child},
                   {"a dead window", gone},
                   {"a window of another process", GetDesktopWindow()}};
    const DWORD levels[] = {0,
                            DDSCL_NORMAL,
                            DDSCL_EXCLUSIVE,
                            DDSCL_FULLSCREEN,
                            exclusive,
                            exclusive | DDSCL_NORMAL,
                            DDSCL_NORMAL | DDSCL_FULLSCREEN,
                            DDSCL_NORMAL | DDSCL_EXCLUSIVE,
                            exclusive | DDSCL_ALLOWREBOOT,
                            exclusive | DDSCL_MULTITHREADED | DDSCL_FPUSETUP,
                            DDSCL_NORMAL | DDSCL_FPUPRESERVE};
    for (const auto& row : windows)
        for (DWORD level : levels) {
            session.note(row.name + (" level " + flagsText(level)),
                         session.ddraw->SetCooperativeLevel(row.window, level));
            session.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL);
            session.pump();
        }
    DestroyWindow(child);
}

void callTooEarly(Session& session) {
    DDSURFACEDESC2 primary = wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT, flippingCaps, 0, 0, 1);
    DDSURFACEDESC2 memory = wanted(sized, systemMemory, 8, 8);
    IDirectDrawSurface7* made = nullptr;
    session.note("primary without a level", session.ddraw->CreateSurface(&primary, &made, nullptr));
    session.note("memory without a level", session.ddraw->CreateSurface(&memory, &made, nullptr));
    session.note("mode without a level", session.ddraw->SetDisplayMode(1024, 768, 16, 0, 0));
    session.note("restore without a level", session.ddraw->RestoreAllSurfaces());
    session.note("normal level", session.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL));
    session.note("flipping primary", session.ddraw->CreateSurface(&primary, &made, nullptr));
    session.note("memory", session.ddraw->CreateSurface(&memory, &made, nullptr));
    if (made)
        session.note("its last release", made->Release());
}

void setModes(Session& session) {
    session.note("exclusive", session.ddraw->SetCooperativeLevel(session.window, exclusive));
    const DWORD modes[][3] = {{1024, 768, 16}, {1024, 768, 32}, {1024, 768, 8}, {1024, 768, 4},
                              {1024, 768, 15}, {1024, 768, 24}, {1024, 768, 0}, {0, 768, 16},
                              {1024, 0, 16},   {99999, 768, 16}};
    for (const auto& mode : modes)
        session.note("mode " + words(mode[0], mode[1], mode[2]),
                     session.ddraw->SetDisplayMode(mode[0], mode[1], mode[2], 0, 0));
    session.note("another size", session.ddraw->SetDisplayMode(1027, 771, 16, 0, 0));
    session.note("a rate", session.ddraw->SetDisplayMode(1024, 768, 16, 60, 0));
    DWORD frequency = 0;
    session.note("frequency", session.ddraw->GetMonitorFrequency(&frequency));
    DWORD line = 5000;
    HRESULT result = session.ddraw->GetScanLine(&line);
    session.note("scan line", result == DDERR_VERTICALBLANKINPROGRESS ? DD_OK : result);
    session.note("scan line is on the screen or in the blank", line < 1024 ? "yes" : "no");
}

void createSurfaces(Session& session) {
    session.open(16);
    const struct {
        const char* name;
        DDSURFACEDESC2 description;
    } rows[] = {
        {"a plain primary", wanted(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE)},
        {"flip without a count", wanted(DDSD_CAPS, flippingCaps)},
        {"no back buffers", wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT, flippingCaps, 0, 0, 0)},
        {"one back buffer", wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT, flippingCaps, 0, 0, 1)},
        {"back buffer without flip", wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT,
                                            DDSCAPS_PRIMARYSURFACE | DDSCAPS_COMPLEX, 0, 0, 1)},
        {"back buffer without complex",
         wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT, DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP, 0, 0, 1)},
        {"a primary with a size", wanted(sized, DDSCAPS_PRIMARYSURFACE, 1024, 768)},
        {"a primary that is a back buffer",
         wanted(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE | DDSCAPS_BACKBUFFER)},
        {"a primary in system memory",
         wanted(DDSD_CAPS, DDSCAPS_PRIMARYSURFACE | DDSCAPS_SYSTEMMEMORY)},
        {"offscreen", wanted(sized, offscreen, 16, 16)},
        {"offscreen in system memory", wanted(sized, systemMemory, 16, 16)},
        {"no size", wanted(DDSD_CAPS, offscreen)},
        {"no height", wanted(DDSD_CAPS | DDSD_WIDTH, offscreen, 16)},
        {"no width", wanted(sized, offscreen, 0, 16)},
        {"height of 0", wanted(sized, offscreen, 16, 0)},
        {"no caps", wanted(sized & ~DDSD_CAPS, 0, 16, 16)},
        {"caps of 0", wanted(sized, 0, 16, 16)},
        {"a small one", wanted(sized, systemMemory, 8, 3)},
    };
    for (const auto& row : rows) {
        DDSURFACEDESC2 description = row.description;
        IDirectDrawSurface7* made = nullptr;
        session.note(row.name, session.ddraw->CreateSurface(&description, &made, nullptr));
        if (!made)
            continue;
        DDSURFACEDESC2 found = wanted(0, 0);
        session.note(row.name + std::string(" locked"),
                     made->Lock(nullptr, &found, DDLOCK_WAIT, nullptr));
        session.note(row.name, found);
        made->Unlock(nullptr);
        session.note("its last release", made->Release());
    }
    IDirectDrawSurface7* made = nullptr;
    DDSURFACEDESC2 memory = wanted(sized, systemMemory, 8, 8);
    session.note("no place", session.ddraw->CreateSurface(&memory, nullptr, nullptr));
    session.note("no description", session.ddraw->CreateSurface(nullptr, &made, nullptr));
    session.note("an outer object", session.ddraw->CreateSurface(&memory, &made, session.ddraw));
    memory.dwSize = 8;
    session.note("a wrong size", session.ddraw->CreateSurface(&memory, &made, nullptr));
}

void describe(Session& session, DWORD depth) {
    session.open(depth);
    session.makeSurfaces();
    DDSURFACEDESC2 again = wanted(DDSD_CAPS | DDSD_BACKBUFFERCOUNT, flippingCaps, 0, 0, 1);
    IDirectDrawSurface7* made = nullptr;
    session.note("a second primary", session.ddraw->CreateSurface(&again, &made, nullptr));
    RECT part = {10, 20, 30, 40};
    RECT areas[] = {{30, 30, 20, 40}, {-1, 0, 5, 5}, {0, 0, 1025, 5}, {0, 0, 5, 769}};
    IDirectDrawSurface7* surfaces[] = {
        session.primary, session.back, session.makeOffscreen(48, 60, DDSCAPS_SYSTEMMEMORY),
        session.makeOffscreen(40, 60, DDSCAPS_SYSTEMMEMORY), session.makeOffscreen(64, 64, 0)};
    for (size_t at = 0; at < std::size(surfaces); ++at) {
        const std::string name = "surface " + std::to_string(at);
        IDirectDrawSurface7* surface = surfaces[at];
        DDSURFACEDESC2 whole = wanted(0, 0), locked = wanted(0, 0);
        session.note(name + " lock", surface->Lock(nullptr, &whole, DDLOCK_WAIT, nullptr));
        session.note(name, whole);
        session.note(name + " unlock", surface->Unlock(nullptr));
        session.note(name + " lock part", surface->Lock(&part, &locked, DDLOCK_WAIT, nullptr));
        session.note(name + " part", locked);
        session.note(name + " offset", static_cast<DWORD>(static_cast<char*>(locked.lpSurface) -
                                                          static_cast<char*>(whole.lpSurface)));
        session.note(name + " unlock part", surface->Unlock(&part));
        for (RECT& area : areas) {
            session.note(name + " lock " + words(area.left, area.top, area.right, area.bottom),
                         lock(surface, &area));
            surface->Unlock(&area);
        }
        session.note(name + " lock without a place",
                     surface->Lock(nullptr, nullptr, DDLOCK_WAIT, nullptr));
        session.note(name + " is lost", surface->IsLost());
    }
}

void describe16(Session& session) { describe(session, 16); }
void describe32(Session& session) { describe(session, 32); }

void findAttached(Session& session) {
    session.open(16);
    session.makeSurfaces();
    IDirectDrawSurface7* memory = session.makeOffscreen(8, 8, DDSCAPS_SYSTEMMEMORY);
    const DWORD asked[] = {0,
                           DDSCAPS_BACKBUFFER,
                           DDSCAPS_BACKBUFFER | DDSCAPS_3DDEVICE,
                           DDSCAPS_3DDEVICE,
                           DDSCAPS_FLIP,
                           DDSCAPS_FRONTBUFFER,
                           DDSCAPS_PRIMARYSURFACE,
                           DDSCAPS_ZBUFFER,
                           DDSCAPS_BACKBUFFER | DDSCAPS_ZBUFFER,
                           DDSCAPS_OFFSCREENPLAIN};
    for (IDirectDrawSurface7* surface : {session.primary, session.back, memory})
        for (DWORD caps : asked) {
            DDSCAPS2 sought{};
            sought.dwCaps = caps;
            IDirectDrawSurface7* found = nullptr;
            session.note("attached " + flagsText(caps),
                         surface->GetAttachedSurface(&sought, &found));
            session.note("is", !found                     ? "none"
                               : found == session.primary ? "primary"
                               : found == session.back    ? "back buffer"
                                                          : "another");
            if (found)
                session.note("references", found->Release());
        }
}

// Everything that can be done to a surface that is in some state.
void tryAll(Session& session, const std::string& state, IDirectDrawSurface7* surface,
            IDirectDrawSurface7* other) {
    HDC dc = nullptr;
    HRESULT result = surface->GetDC(&dc);
    session.note(state + " GetDC", result);
    if (result == DD_OK)
        session.note(state + " ReleaseDC", surface->ReleaseDC(dc));
    result = lock(surface);
    session.note(state + " Lock", result);
    if (result == DD_OK)
        session.note(state + " Unlock", surface->Unlock(nullptr));
    session.note(state + " fill", fill(surface, 5));
    session.note(state + " copy onto", surface->Blt(nullptr, other, nullptr, DDBLT_WAIT, nullptr));
    session.note(state + " copy from", other->Blt(nullptr, surface, nullptr, DDBLT_WAIT, nullptr));
    session.note(state + " IsLost", surface->IsLost());
    session.note(state + " Restore", surface->Restore());
    session.note(state + " RestoreAllSurfaces", session.ddraw->RestoreAllSurfaces());
}

void useBusySurfaces(Session& session) {
    session.open(16);
    session.makeSurfaces();
    IDirectDrawSurface7* memory = session.makeOffscreen(1024, 768, DDSCAPS_SYSTEMMEMORY);
    IDirectDrawSurface7* other = session.makeOffscreen(1024, 768, DDSCAPS_SYSTEMMEMORY);
    const struct {
        const char* name;
        IDirectDrawSurface7* surface;
    } rows[] = {{"primary", session.primary}, {"back", session.back}, {"memory", memory}};
    for (const auto& row : rows) {
        const std::string name = row.name;
        HDC dc = nullptr;
        tryAll(session, name + " free", row.surface, other);
        session.note(name + " unlock unlocked", row.surface->Unlock(nullptr));
        session.note(name + " release no context", row.surface->ReleaseDC(nullptr));
        session.note(name + " open", row.surface->GetDC(&dc));
        tryAll(session, name + " with context", row.surface, other);
        session.note(name + " close", row.surface->ReleaseDC(dc));
        session.note(name + " close twice", row.surface->ReleaseDC(dc));
        session.note(name + " lock", lock(row.surface));
        tryAll(session, name + " locked", row.surface, other);
        session.note(name + " release context while locked", row.surface->ReleaseDC(nullptr));
        session.note(name + " unlock", row.surface->Unlock(nullptr));
        session.note(name + " unlock twice", row.surface->Unlock(nullptr));
    }
    session.note("context without a place", session.primary->GetDC(nullptr));
}

void noteAttributes(Session& session, HDC dc) {
    session.note("text color", GetTextColor(dc));
    session.note("background color", GetBkColor(dc));
    session.note("background mode", static_cast<DWORD>(GetBkMode(dc)));
    session.note("raster operation", static_cast<DWORD>(GetROP2(dc)));
    session.note("bits", static_cast<DWORD>(GetDeviceCaps(dc, BITSPIXEL)));
    session.note("a pixel", GetPixel(dc, 3, 3));
    RECT clip;
    session.note("clip", static_cast<DWORD>(GetClipBox(dc, &clip)));
    session.note("clip is", words(clip.left, clip.top, clip.right, clip.bottom));
}

void drawShapes(HDC dc) {
    for (int n = 0; n < 40; ++n) {
        HBRUSH brush = CreateSolidBrush(RGB(n * 6, 255 - n * 5, n * 37 % 256));
        const RECT area = {n * 20, n * 15, n * 20 + 90, n * 15 + 70};
        FillRect(dc, &area, brush);
        DeleteObject(brush);
    }
    Ellipse(dc, 200, 100, 700, 500);
    SetBkColor(dc, RGB(10, 200, 90));
    SetTextColor(dc, RGB(250, 5, 90));
    TextOutA(dc, 30, 600, "Letters of the screen", 21);
}

void draw(Session& session, DWORD depth) {
    session.open(depth);
    session.makeSurfaces();
    HDC dc = nullptr;
    session.note("fill", fill(session.back, 0xF81F));
    session.note("context", session.back->GetDC(&dc));
    noteAttributes(session, dc);
    drawShapes(dc);
    session.note("release", session.back->ReleaseDC(dc));
    session.notePixels("shapes", session.back);
    session.note("context", session.back->GetDC(&dc));
    noteAttributes(session, dc);
    session.note("release", session.back->ReleaseDC(dc));

    for (DWORD color : {0ul, 1ul, 0x7E0ul, 0xFFFFul, 0x12345678ul, 0xFFFFFFFFul}) {
        session.note("fill", fill(session.primary, color));
        session.notePixels("filled with " + flagsText(color), session.primary);
    }
    RECT areas[] = {{5, 6, 70, 80},  {0, 0, 1024, 768}, {1023, 767, 1024, 768}, {9, 9, 9, 20},
                    {20, 9, 10, 20}, {-5, 0, 10, 10},   {1000, 0, 1030, 10},    {0, 760, 10, 770}};
    for (RECT& area : areas) {
        session.note("fill " + words(area.left, area.top, area.right, area.bottom),
                     fill(session.primary, 0x8410, &area));
        session.notePixels("filled", session.primary);
    }
    DDBLTFX effects = fillWith(3);
    session.note("fill without effects",
                 session.primary->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL, nullptr));
    session.note("fill without flags",
                 session.primary->Blt(nullptr, nullptr, nullptr, 0, &effects));
    effects.dwSize = 4;
    session.note("fill with a wrong size",
                 session.primary->Blt(nullptr, nullptr, nullptr, DDBLT_COLORFILL, &effects));
}

void draw16(Session& session) { draw(session, 16); }
void draw32(Session& session) { draw(session, 32); }

void copy(Session& session) {
    session.open(16);
    session.makeSurfaces();
    IDirectDrawSurface7* memory = session.makeOffscreen(1024, 768, DDSCAPS_SYSTEMMEMORY);
    HDC dc = nullptr;
    memory->GetDC(&dc);
    drawShapes(dc);
    memory->ReleaseDC(dc);
    fill(session.back, 0);
    session.note("whole", session.back->Blt(nullptr, memory, nullptr, DDBLT_WAIT, nullptr));
    session.notePixels("whole", session.back);
    const struct {
        RECT to, from;
    } rows[] = {{{10, 10, 110, 110}, {50, 50, 150, 150}}, {{0, 0, 200, 200}, {50, 50, 150, 150}},
                {{0, 0, 50, 50}, {50, 50, 150, 150}},     {{-1, 0, 50, 50}, {50, 50, 150, 150}},
                {{0, 0, 50, 50}, {1000, 50, 1050, 100}},  {{5, 5, 5, 5}, {50, 50, 150, 150}},
                {{0, 0, 50, 50}, {50, 50, 40, 150}}};
    for (const auto& row : rows) {
        RECT to = row.to, from = row.from;
        session.note("copy " + words(to.left, to.top, to.right, to.bottom, from.left, from.top,
                                     from.right, from.bottom),
                     session.back->Blt(&to, memory, &from, DDBLT_WAIT, nullptr));
        session.notePixels("copied", session.back);
    }
    RECT here = {100, 100, 300, 300}, there = {120, 130, 320, 330};
    session.note("within itself",
                 session.back->Blt(&there, session.back, &here, DDBLT_WAIT, nullptr));
    session.notePixels("within itself", session.back);
    session.note("back again", session.back->Blt(&here, session.back, &there, DDBLT_WAIT, nullptr));
    session.notePixels("back again", session.back);
    session.note("out", memory->Blt(nullptr, session.back, nullptr, DDBLT_WAIT, nullptr));
    session.notePixels("out", memory);
    session.note("no source", session.back->Blt(nullptr, nullptr, nullptr, DDBLT_WAIT, nullptr));
}

void flip(Session& session) {
    session.open(16);
    session.makeSurfaces();
    IDirectDrawSurface7* memory = session.makeOffscreen(8, 8, DDSCAPS_SYSTEMMEMORY);
    fill(session.primary, 0x1111);
    fill(session.back, 0x2222);
    for (DWORD flags : std::initializer_list<DWORD>{0, DDFLIP_WAIT, DDFLIP_WAIT | DDFLIP_NOVSYNC,
                                                    DDFLIP_WAIT | DDFLIP_INTERVAL2}) {
        session.note("flip " + flagsText(flags), session.primary->Flip(nullptr, flags));
        session.notePixels("primary", session.primary);
        session.notePixels("back buffer", session.back);
    }
    session.note("flip to the back buffer", session.primary->Flip(session.back, DDFLIP_WAIT));
    session.notePixels("primary", session.primary);
    session.note("flip to the primary", session.primary->Flip(session.primary, DDFLIP_WAIT));
    session.note("flip to another", session.primary->Flip(memory, DDFLIP_WAIT));
    session.note("flip the back buffer", session.back->Flip(nullptr, DDFLIP_WAIT));
    session.note("flip memory", memory->Flip(nullptr, DDFLIP_WAIT));
}

void noteWindow(Session& session, const std::string& when) {
    RECT area;
    GetWindowRect(session.window, &area);
    session.note(when + " visible", IsWindowVisible(session.window) ? "yes" : "no");
    session.note(when + " minimized", IsIconic(session.window) ? "yes" : "no");
    if (!IsIconic(session.window))
        session.note(when + " area", words(area.left, area.top, area.right, area.bottom));
    const LONG_PTR extended = GetWindowLongPtrA(session.window, GWL_EXSTYLE);
    session.note(when + " topmost", extended & WS_EX_TOPMOST ? "yes" : "no");
    session.note(when + " foreground", GetForegroundWindow() == session.window ? "yes" : "no");
}

void coverTheMonitor(Session& session) {
    noteWindow(session, "before");
    session.note("exclusive", session.ddraw->SetCooperativeLevel(session.window, exclusive));
    session.pump();
    noteWindow(session, "exclusive");
    session.note("mode", session.ddraw->SetDisplayMode(1024, 768, 16, 0, 0));
    session.pump();
    noteWindow(session, "with mode");
    ShowWindow(session.window, SW_SHOWMAXIMIZED);
    session.pump();
    noteWindow(session, "maximized");
    session.note("normal", session.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL));
    session.pump();
    session.note("visible after", IsWindowVisible(session.window) ? "yes" : "no");
    const LONG_PTR extended = GetWindowLongPtrA(session.window, GWL_EXSTYLE);
    session.note("topmost after", extended & WS_EX_TOPMOST ? "yes" : "no");
}

void loseTheForeground(Session& session) {
    session.open(16);
    session.makeSurfaces();
    ShowWindow(session.window, SW_SHOWMAXIMIZED);
    session.pump();
    IDirectDrawSurface7* other = session.makeOffscreen(1024, 768, DDSCAPS_SYSTEMMEMORY);
    for (int turn = 0; turn < 3; ++turn) {
        session.goAway();
        noteWindow(session, "away");
        tryAll(session, "away primary", session.primary, other);
        tryAll(session, "away back buffer", session.back, other);
        session.note("away memory", other->IsLost());
        session.comeBack();
        session.note("back primary", session.primary->IsLost());
        session.note("back flip", session.primary->Flip(nullptr, DDFLIP_WAIT));
        session.note("back lock", lock(session.back));
        session.note("exclusive", session.ddraw->SetCooperativeLevel(session.window, exclusive));
        session.note("mode", session.ddraw->SetDisplayMode(1024, 768, 16, 0, 0));
        session.note("still lost", session.primary->IsLost());
        session.note("restore", session.ddraw->RestoreAllSurfaces());
        session.note("restored primary", session.primary->IsLost());
        session.note("restored back buffer", session.back->IsLost());
        ShowWindow(session.window, SW_SHOWMAXIMIZED);
        session.pump();
        noteWindow(session, "back");
        session.note("flip", session.primary->Flip(nullptr, DDFLIP_WAIT));
    }
}

void leaveWithSurfaces(Session& session) {
    session.open(16);
    session.makeSurfaces();
    session.note("normal", session.ddraw->SetCooperativeLevel(nullptr, DDSCL_NORMAL));
    session.pump();
    session.note("primary", session.primary->IsLost());
    session.note("back buffer", session.back->IsLost());
    session.note("flip", session.primary->Flip(nullptr, DDFLIP_WAIT));
    session.note("restore", session.ddraw->RestoreAllSurfaces());
    session.note("mode", session.ddraw->SetDisplayMode(1024, 768, 16, 0, 0));
    session.note("back buffer's last release", session.back->Release());
    session.back = nullptr;
    session.note("primary's last release", session.primary->Release());
    session.primary = nullptr;
    session.open(16);
    session.makeSurfaces();
    session.note("opened again", session.primary->Flip(nullptr, DDFLIP_WAIT));
}

void useTwoObjects(Session& session) {
    session.open(16);
    session.makeSurfaces();
    IDirectDraw7* second = session.make();
    HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    session.note("is another", second == session.ddraw ? "no" : "yes");
    session.note("exclusive with the window",
                 second->SetCooperativeLevel(session.window, exclusive));
    session.note("exclusive with its own", second->SetCooperativeLevel(window, exclusive));
    session.note("normal", second->SetCooperativeLevel(nullptr, DDSCL_NORMAL));
    DDSURFACEDESC2 memory = wanted(sized, systemMemory, 8, 8);
    IDirectDrawSurface7* made = nullptr;
    session.note("memory", second->CreateSurface(&memory, &made, nullptr));
    if (made)
        session.note("its last release", made->Release());
    session.note("mode", second->SetDisplayMode(1024, 768, 16, 0, 0));
    session.note("flip of the first", session.primary->Flip(nullptr, DDFLIP_WAIT));
    session.note("last release", second->Release());
    session.note("flip of the first", session.primary->Flip(nullptr, DDFLIP_WAIT));
    DestroyWindow(window);
}

struct Scenario {
    const char* name;
    void (*run)(Session&);
};

void PrintTo(const Scenario& scenario, std::ostream* out) { *out << scenario.name; }

const Scenario scenarios[] = {{"CreateObjects", createObjects},
                              {"CountReferences", countReferences},
                              {"SetLevels", setLevels},
                              {"CallTooEarly", callTooEarly},
                              {"SetModes", setModes},
                              {"CreateSurfaces", createSurfaces},
                              {"Describe16", describe16},
                              {"Describe32", describe32},
                              {"FindAttached", findAttached},
                              {"UseBusySurfaces", useBusySurfaces},
                              {"Draw16", draw16},
                              {"Draw32", draw32},
                              {"Copy", copy},
                              {"Flip", flip},
                              {"CoverTheMonitor", coverTheMonitor},
                              {"LoseTheForeground", loseTheForeground},
                              {"LeaveWithSurfaces", leaveWithSurfaces},
                              {"UseTwoObjects", useTwoObjects}};

Notes run(const Scenario& scenario, const char* library) {
    Session session(library);
    scenario.run(session);
    return session.notes;
}

// A note without its value, and how many of that name came before it.
using Name = std::pair<std::string, int>;

std::map<Name, std::string> byName(const Notes& notes) {
    std::map<std::string, int> seen;
    std::map<Name, std::string> named;
    for (const std::string& note : notes) {
        const size_t end = note.find(": ");
        const std::string name = note.substr(0, end);
        named[{name, seen[name]++}] = note.substr(end + 2);
    }
    return named;
}

// Where the two are known to differ: the notes of a scenario whose names begin so. Other versions
// of the system's library may agree in some of them.
const struct Difference {
    const char* scenario;
    const char* name;
    const char* system;
    const char* ours;
    const char* reason;
} differences[] = {
    {"CountReferences", "its release", "0", "1", "Wine counts each interface of an object"},
    {"SetLevels", "a child", "DD_OK", "DDERR_INVALIDPARAMS",
     "only a top-level window can cover a monitor"},
    {"SetLevels", "a dead window", "DD_OK", "DDERR_INVALIDPARAMS", "documented; Wine looks later"},
    {"SetLevels", "a window of another process", "DD_OK", "DDERR_INVALIDPARAMS",
     "only a window of the caller's thread can be subclassed"},
    {"CallTooEarly", "mode without a level", "DD_OK", "DDERR_NOEXCLUSIVEMODE",
     "there is no window yet that could show the mode"},
    {"SetModes", "another size", "DDERR_UNSUPPORTED", "DD_OK", "a mode of any size can be shown"},
    {"SetModes", "mode 1024 768", "DD_OK", "DDERR_UNSUPPORTED", "only 16 and 32 bits are offered"},
    {"SetModes", "mode 0", "DD_OK", "DDERR_UNSUPPORTED", "no size; Wine keeps the desktop's"},
    {"SetModes", "mode 1024 0", "DD_OK", "DDERR_UNSUPPORTED", "no size; Wine keeps the desktop's"},
    {"Describe16", "a second primary", "DD_OK", "DDERR_PRIMARYSURFACEALREADYEXISTS", "documented"},
    {"Describe32", "a second primary", "DD_OK", "DDERR_PRIMARYSURFACEALREADYEXISTS", "documented"},
    {"UseBusySurfaces", "", "DD_OK", "DDERR_SURFACEBUSY",
     "documented; Wine draws on busy surfaces in system memory"},
    {"UseBusySurfaces", "", "DD_OK", "-", "the release of a context that only Wine opens"},
    {"UseBusySurfaces", "", "DDERR_SURFACEBUSY", "-",
     "the release of a context that only Wine opens"},
    {"Draw16", "bits", "16", "32",
     "the bits of a context's device; a memory context says the desktop's"},
    {"CoverTheMonitor", "exclusive visible", "no", "yes",
     "the mode comes later and changes nothing"},
    {"CoverTheMonitor", "", "no", "yes", "topmost: the window covers the taskbar"},
    {"LoseTheForeground", "away topmost", "no", "yes", "the window stays so while it is minimized"},
    {"LoseTheForeground", "away", "DD_OK", "DDERR_SURFACELOST",
     "documented; Wine draws on lost surfaces in system memory"},
    {"LoseTheForeground", "away", "DD_OK", "-", "the release of a context that only Wine opens"},
    {"LoseTheForeground", "away", "DD_OK", "DDERR_WRONGMODE",
     "as Restore says of each surface, in Wine as well"},
    {"LeaveWithSurfaces", "mode", "DD_OK", "DDERR_NOEXCLUSIVEMODE",
     "there is no window that could show the mode"},
    {"LeaveWithSurfaces", "restore", "DD_OK", "DDERR_WRONGMODE", "as above"},
    {"UseTwoObjects", "exclusive", "DD_OK", "DDERR_EXCLUSIVEMODEALREADYSET", "documented"},
    {"UseTwoObjects", "mode", "DD_OK", "DDERR_NOEXCLUSIVEMODE",
     "there is no window that could show the mode"},
};

bool isKnown(const char* scenario, const std::string& name, const std::string& system,
             const std::string& ours) {
    return std::any_of(std::begin(differences), std::end(differences), [&](const Difference& row) {
        return scenario == std::string(row.scenario) && name.starts_with(row.name) &&
               system == row.system && ours == row.ours;
    });
}

std::string valueOf(const std::map<Name, std::string>& notes, const Name& name) {
    const auto found = notes.find(name);
    return found == notes.end() ? "-" : found->second;
}

class Conformance : public testing::TestWithParam<Scenario> {};

TEST_P(Conformance, AgreesWithTheSystemsOwn) {
    const auto system = byName(run(GetParam(), "ddraw.dll"));
    const auto ours = byName(run(GetParam(), "compat.dll"));
    auto all = system;
    all.insert(ours.begin(), ours.end());
    ASSERT_GE(all.size(), 8u) << "the scenario was noted";
    for (const auto& note : all) {
        const Name& name = note.first;
        const std::string theirs = valueOf(system, name), own = valueOf(ours, name);
        EXPECT_TRUE(theirs == own || isKnown(GetParam().name, name.first, theirs, own))
            << name.first << " (" << name.second << "): " << theirs << " of the system's, " << own
            << " of ours";
    }
}

INSTANTIATE_TEST_SUITE_P(, Conformance, testing::ValuesIn(scenarios),
                         [](const auto& test) { return std::string(test.param.name); });

} // namespace
