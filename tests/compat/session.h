// A DirectDraw library under test: the system's own, or the one that lies beside the program. What
// its calls returned is written down in lines of text, so that two libraries can be compared.
#pragma once

#include <string>
#include <vector>
#include <windows.h>

#define DIRECTDRAW_VERSION 0x0700
#include <ddraw.h>

using Notes = std::vector<std::string>;

class Session {
public:
    // Loads the library and makes a window and a DirectDraw object.
    explicit Session(const char* library);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    void note(const std::string& what, HRESULT result);
    void note(const std::string& what, const std::string& value);
    void note(const std::string& what, DWORD value);

    // Notes every field of a description that is not an address. Which memory a surface lies in is
    // left out: it depends on what Wine draws with.
    void note(const std::string& what, const DDSURFACEDESC2& description);

    // Notes a checksum of all pixels, as Lock shows them.
    void notePixels(const std::string& what, IDirectDrawSurface7* surface);

    // Dispatches all waiting messages.
    void pump();

    // Gives the foreground to the desktop, or back to the window, and waits until it is there.
    void goAway();
    void comeBack();

    HRESULT create(GUID* device, void** object, const GUID& interfaceId, IUnknown* outer);
    IDirectDraw7* make();

    // Takes the exclusive mode and the display mode 1024 by 768.
    void open(DWORD depth);

    // Makes a primary surface with a back buffer, which end with the session.
    void makeSurfaces();
    IDirectDrawSurface7* makeOffscreen(DWORD width, DWORD height, DWORD caps);

    IDirectDraw7* ddraw = nullptr;
    IDirectDrawSurface7* primary = nullptr;
    IDirectDrawSurface7* back = nullptr;
    HWND window = nullptr;
    Notes notes;

private:
    using Create = HRESULT(WINAPI*)(GUID*, void**, REFIID, IUnknown*);
    bool isForeground() const;

    HMODULE module = nullptr;
    Create entry = nullptr;
    std::vector<IDirectDrawSurface7*> others;
};

// Returns the platform's name of a result.
std::string nameOf(HRESULT result);

// Returns a description that asks for what its flags and capabilities say, and for no more.
DDSURFACEDESC2 wanted(DWORD flags, DWORD caps, DWORD width = 0, DWORD height = 0, DWORD backs = 0);

constexpr DWORD flippingCaps =
    DDSCAPS_3DDEVICE | DDSCAPS_PRIMARYSURFACE | DDSCAPS_FLIP | DDSCAPS_COMPLEX;
