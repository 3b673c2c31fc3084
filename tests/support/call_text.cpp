#include "tests/support/call_text.h"

#include "tests/support/call_hook.h"

#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <utility>

namespace {

std::string format(const char* pattern, uint64_t value) {
    char text[32];
    snprintf(text, sizeof text, pattern, static_cast<unsigned long long>(value));
    return text;
}

std::string braces(std::initializer_list<std::string> parts) {
    std::string text = "{";
    for (const std::string& part : parts)
        text += (text.size() > 1 ? ", " : "") + part;
    return text + "}";
}

template <typename T>
std::string value(T plain) {
    return call_text::show(plain, call_text::Known::now);
}

std::string escaped(char letter) {
    switch (letter) {
    case '"':
    case '\\': return std::string("\\") + letter;
    case '\n': return "\\n";
    case '\r': return "\\r";
    case '\t': return "\\t";
    default: return std::string(1, letter);
    }
}

struct KnownGuid {
    const GUID* id;
    const char* name;
};

const KnownGuid knownGuids[] = {
    {&IID_IDirectDraw7, "IID_IDirectDraw7"},
    {&IID_IDirectInput7A, "IID_IDirectInput7A"},
    {&IID_IDirectInputDevice7A, "IID_IDirectInputDevice7A"},
    {&GUID_SysKeyboard, "GUID_SysKeyboard"},
    {&GUID_SysMouse, "GUID_SysMouse"},
};

std::string wave(const WAVEFORMATEX* format) {
    if (!format)
        return "null";
    return braces({value(format->wFormatTag), value(format->nChannels),
                   value(format->nSamplesPerSec), value(format->nAvgBytesPerSec),
                   value(format->nBlockAlign), value(format->wBitsPerSample)});
}

template <typename Interface>
void openInterface(Interface* object, const char* interfaceName) {
    if (!object)
        return;
    call_names::open(reinterpret_cast<uint64_t>(object), call_text::kindOf<Interface*>);
    watchMethods(object, interfaceName);
}

template <typename Interface>
std::string handOut(void* object) {
    auto* typed = static_cast<Interface*>(object);
    return call_text::showPointee(&typed, call_text::Known::now);
}

// Shown fields are taken out of a copy; what is left of it must be zeros.
template <typename Field>
Field taken(Field* field) {
    return std::exchange(*field, Field{});
}

template <typename Record>
const char* andMore(const Record& rest) {
    const Record zeros = {};
    return memcmp(&rest, &zeros, sizeof rest) == 0 ? "" : ", and more";
}

} // namespace

namespace call_text {

std::string number(int64_t value) {
    if (value > -65536 && value < 65536)
        return std::to_string(value);
    if (value >= INT32_MIN && value < 0)
        return format("0x%llX", static_cast<uint32_t>(value));
    return format("0x%llX", static_cast<uint64_t>(value));
}

std::string quoted(const char* text) {
    std::string result = "\"";
    for (; *text; ++text)
        result += escaped(*text);
    return result + "\"";
}

std::string guid(const GUID& id) {
    // DirectInput's properties are small numbers in the place of addresses.
    const auto address = reinterpret_cast<uint64_t>(&id);
    if (address < 0x10000)
        return "DIPROP(" + std::to_string(address) + ")";
    for (const KnownGuid& known : knownGuids)
        if (memcmp(known.id, &id, sizeof id) == 0)
            return known.name;
    return "guid";
}

std::string fields(const POINT& at) { return braces({value(at.x), value(at.y)}); }

std::string fields(const RECT& area) {
    return braces({value(area.left), value(area.top), value(area.right), value(area.bottom)});
}

std::string fields(const MSG& message) {
    return braces({value(message.hwnd), value(message.message), value(message.wParam),
                   value(message.lParam)});
}

std::string fields(const LARGE_INTEGER& count) { return value(count.QuadPart); }

std::string fields(const ICONINFO& icon) {
    call_names::open(reinterpret_cast<uint64_t>(icon.hbmMask), "bitmap");
    call_names::open(reinterpret_cast<uint64_t>(icon.hbmColor), "bitmap");
    return braces({"mask " + value(icon.hbmMask), "color " + value(icon.hbmColor)});
}

std::string fields(const WIN32_FIND_DATAA& found) { return quoted(found.cFileName); }

std::string fields(const PROCESS_INFORMATION& started) {
    call_names::open(reinterpret_cast<uint64_t>(started.hProcess), "process");
    call_names::open(reinterpret_cast<uint64_t>(started.hThread), "thread");
    return braces({value(started.hProcess), value(started.hThread)});
}

std::string fields(const SECURITY_ATTRIBUTES& security) {
    return braces({value(security.nLength), value(security.lpSecurityDescriptor),
                   "inherit " + value(security.bInheritHandle)});
}

std::string fields(const STARTUPINFOA& startup) {
    return braces({value(startup.cb), "flags " + value(startup.dwFlags),
                   "show " + value(startup.wShowWindow), "in " + value(startup.hStdInput),
                   "out " + value(startup.hStdOutput), "err " + value(startup.hStdError)});
}

std::string fields(const SHELLEXECUTEINFOA& start) {
    return braces({value(start.cbSize), "mask " + value(start.fMask), value(start.hwnd),
                   "verb " + value(start.lpVerb), "file " + value(start.lpFile),
                   "arguments " + value(start.lpParameters), "folder " + value(start.lpDirectory),
                   "show " + value(start.nShow)});
}

std::string fields(const WNDCLASSEXA& window) {
    return braces({value(window.cbSize), "style " + value(window.style), value(window.lpfnWndProc),
                   value(window.cbClsExtra), value(window.cbWndExtra), value(window.hInstance),
                   "icon " + value(window.hIcon), "cursor " + value(window.hCursor),
                   "brush " + value(window.hbrBackground), "menu " + value(window.lpszMenuName),
                   value(window.lpszClassName), "small " + value(window.hIconSm)});
}

std::string fields(const BITMAPINFO& info) {
    BITMAPINFOHEADER rest = info.bmiHeader;
    const std::string shown = value(taken(&rest.biSize)) + ", " + value(taken(&rest.biWidth)) +
                              ", " + value(taken(&rest.biHeight)) + ", " +
                              value(taken(&rest.biPlanes)) + ", " + value(taken(&rest.biBitCount)) +
                              ", " + value(taken(&rest.biCompression));
    return "{" + shown + andMore(rest) + "}";
}

std::string fields(const DDSURFACEDESC2& surface) {
    DDSURFACEDESC2 rest = surface;
    const DWORD flags = taken(&rest.dwFlags);
    std::string text = "{" + value(taken(&rest.dwSize)) + ", flags " + value(flags);
    if (flags & DDSD_WIDTH)
        text += ", width " + value(taken(&rest.dwWidth));
    if (flags & DDSD_HEIGHT)
        text += ", height " + value(taken(&rest.dwHeight));
    if (flags & DDSD_BACKBUFFERCOUNT)
        text += ", backs " + value(taken(&rest.dwBackBufferCount));
    if (flags & DDSD_CAPS)
        text += ", caps " + value(taken(&rest.ddsCaps.dwCaps));
    return text + andMore(rest) + "}";
}

std::string fields(const DDSCAPS2& caps) {
    DDSCAPS2 rest = caps;
    const std::string shown = "caps " + value(taken(&rest.dwCaps));
    return "{" + shown + andMore(rest) + "}";
}

std::string fields(const DDBLTFX& effects) {
    DDBLTFX rest = effects;
    const std::string shown =
        value(taken(&rest.dwSize)) + ", fill " + value(taken(&rest.dwFillColor));
    return "{" + shown + andMore(rest) + "}";
}

std::string fields(const DIDATAFORMAT& format) {
    return braces({value(format.dwSize), value(format.dwObjSize), "flags " + value(format.dwFlags),
                   "bytes " + value(format.dwDataSize), "objects " + value(format.dwNumObjs)});
}

std::string fields(const DIPROPHEADER& property) {
    const auto* number = reinterpret_cast<const DIPROPDWORD*>(&property);
    return braces({value(property.dwSize), value(property.dwHeaderSize),
                   "object " + value(property.dwObj), "how " + value(property.dwHow),
                   "value " + value(number->dwData)});
}

std::string fields(const DSBUFFERDESC& buffer) {
    return braces({value(buffer.dwSize), "flags " + value(buffer.dwFlags),
                   "bytes " + value(buffer.dwBufferBytes), value(buffer.dwReserved),
                   wave(buffer.lpwfxFormat)});
}

std::string show(Memory memory, Known) {
    const auto address = reinterpret_cast<int64_t>(memory.address);
    if (address >= -16 && address < 0)
        return number(address); // pseudo handles and INVALID_HANDLE_VALUE
    return call_names::of(static_cast<uint64_t>(address), nullptr);
}

std::string show(const OutHandle& out, Known known) {
    if (!out.handle || known == Known::not_yet)
        return out.handle ? "&?" : "null";
    call_names::open(reinterpret_cast<uint64_t>(*out.handle), out.kind);
    return "&" + value(*out.handle);
}

std::string show(const OutInterface& out, Known known) {
    if (!out.object || known == Known::not_yet)
        return out.object ? "&?" : "null";
    if (IsEqualGUID(*out.interfaceId, IID_IDirectDraw7))
        return handOut<IDirectDraw7>(*out.object);
    if (IsEqualGUID(*out.interfaceId, IID_IDirectInput7A))
        return handOut<IDirectInput7A>(*out.object);
    if (IsEqualGUID(*out.interfaceId, IID_IDirectInputDevice7A))
        return handOut<IDirectInputDevice7A>(*out.object);
    return "&" + value(*out.object);
}

std::string show(const GUID& id, Known) { return guid(id); }

std::string show(const char* text, Known) {
    if (!text)
        return "null";
    const auto address = reinterpret_cast<uint64_t>(text);
    return address < 0x10000 ? "#" + std::to_string(address) : quoted(text);
}

std::string show(char* text, Known known) {
    if (!text)
        return "null";
    return known == Known::now ? "&" + quoted(text) : "&?";
}

std::string show(const void* address, Known known) { return show(Memory{address}, known); }

void handedOut(HDC dc) { call_names::open(reinterpret_cast<uint64_t>(dc), kindOf<HDC>); }
void handedOut(IDirectDraw7* object) { openInterface(object, "IDirectDraw7"); }
void handedOut(IDirectDrawSurface7* object) { openInterface(object, "IDirectDrawSurface7"); }
void handedOut(IDirectDrawPalette* object) { openInterface(object, "IDirectDrawPalette"); }
void handedOut(IDirectInput7A* object) { openInterface(object, "IDirectInput7A"); }
void handedOut(IDirectInputDevice7A* object) { openInterface(object, "IDirectInputDevice7A"); }
void handedOut(IDirectSound* object) { openInterface(object, "IDirectSound"); }
void handedOut(IDirectSoundBuffer* object) { openInterface(object, "IDirectSoundBuffer"); }

} // namespace call_text
