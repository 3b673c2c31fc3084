// How the values of recorded calls are written. Every value is shown once before the call; what
// the call may have written through a pointer is shown again after it.
#pragma once

#include "tests/support/call_names.h"

#define DIRECTDRAW_VERSION 0x0700
#define DIRECTINPUT_VERSION 0x0700
#include <windows.h>

#include <ddraw.h>
#include <dinput.h>
#include <dsound.h>
#include <shellapi.h>

#include <string>
#include <type_traits>

namespace call_text {

// What is known of memory that the call writes to.
enum class Known { not_yet, now };

std::string number(int64_t value);
std::string quoted(const char* text);
std::string guid(const GUID& value);

// Arguments whose type does not tell what they mean are passed as one of these.
struct Memory {
    const void* address;
};
struct OutHandle {
    HANDLE* handle;
    const char* kind;
};
struct OutInterface {
    void** object;
    const GUID* interfaceId;
};

// The fields of structures, in braces.
std::string fields(const POINT& value);
std::string fields(const RECT& value);
std::string fields(const MSG& value);
std::string fields(const LARGE_INTEGER& value);
std::string fields(const ICONINFO& value);
std::string fields(const WIN32_FIND_DATAA& value);
std::string fields(const PROCESS_INFORMATION& value);
std::string fields(const SECURITY_ATTRIBUTES& value);
std::string fields(const STARTUPINFOA& value);
std::string fields(const SHELLEXECUTEINFOA& value);
std::string fields(const WNDCLASSEXA& value);
std::string fields(const BITMAPINFO& value);
std::string fields(const DDSURFACEDESC2& value);
std::string fields(const DDSCAPS2& value);
std::string fields(const DDBLTFX& value);
std::string fields(const DIDATAFORMAT& value);
std::string fields(const DIPROPHEADER& value);
std::string fields(const DSBUFFERDESC& value);

template <typename T, typename = void>
constexpr bool hasFields = false;
template <typename T>
constexpr bool hasFields<T, std::void_t<decltype(fields(std::declval<const T&>()))>> = true;

// Structures that callers pass through a pointer to non-const, but fill themselves.
template <typename T>
constexpr bool isFilledByCaller =
    std::is_same_v<T, SECURITY_ATTRIBUTES> || std::is_same_v<T, STARTUPINFOA> ||
    std::is_same_v<T, SHELLEXECUTEINFOA> || std::is_same_v<T, DDSURFACEDESC2> ||
    std::is_same_v<T, DDSCAPS2> || std::is_same_v<T, DDBLTFX>;

// The kind by which a handle or an interface of this type is named when it first appears, or null.
template <typename T>
constexpr const char* kindOf = nullptr;
template <>
inline constexpr const char* kindOf<HWND> = "window";
template <>
inline constexpr const char* kindOf<HDC> = "dc";
template <>
inline constexpr const char* kindOf<HBRUSH> = "brush";
template <>
inline constexpr const char* kindOf<HBITMAP> = "bitmap";
template <>
inline constexpr const char* kindOf<HFONT> = "font";
template <>
inline constexpr const char* kindOf<HPEN> = "pen";
template <>
inline constexpr const char* kindOf<HICON> = "icon";
template <>
inline constexpr const char* kindOf<HPALETTE> = "palette";
template <>
inline constexpr const char* kindOf<HINSTANCE> = "module";
template <>
inline constexpr const char* kindOf<IDirectDraw7*> = "ddraw";
template <>
inline constexpr const char* kindOf<IDirectDrawSurface7*> = "surface";
template <>
inline constexpr const char* kindOf<IDirectDrawPalette*> = "colors";
template <>
inline constexpr const char* kindOf<IDirectInput7A*> = "input";
template <>
inline constexpr const char* kindOf<IDirectInputDevice7A*> = "device";
template <>
inline constexpr const char* kindOf<IDirectSound*> = "sound";
template <>
inline constexpr const char* kindOf<IDirectSoundBuffer*> = "buffer";

std::string show(Memory value, Known);
std::string show(const OutHandle& value, Known known);
std::string show(const OutInterface& value, Known known);
std::string show(const GUID& value, Known);
std::string show(const char* value, Known);
std::string show(char* value, Known known);
std::string show(const void* value, Known);

// Notes that a call handed this out: it is live, and the methods of an interface are watched.
void handedOut(HDC dc);
void handedOut(IDirectDraw7* object);
void handedOut(IDirectDrawSurface7* object);
void handedOut(IDirectDrawPalette* object);
void handedOut(IDirectInput7A* object);
void handedOut(IDirectInputDevice7A* object);
void handedOut(IDirectSound* object);
void handedOut(IDirectSoundBuffer* object);

template <typename T>
std::string showPointee(T* at, Known known) {
    if (!at)
        return "null";
    if (known == Known::not_yet)
        return "&?";
    if constexpr (std::is_pointer_v<T> && kindOf<T> != nullptr) {
        handedOut(*at);
        return "&" + call_names::of(reinterpret_cast<uint64_t>(*at), kindOf<T>);
    } else if constexpr (std::is_pointer_v<T>) {
        return "&" + call_names::of(reinterpret_cast<uint64_t>(*at), nullptr);
    } else if constexpr (std::is_integral_v<T>) {
        return "&" + number(static_cast<int64_t>(*at));
    } else {
        return "&" + fields(*at);
    }
}

template <typename T>
std::string show(T value, Known known) {
    using Pointee = std::remove_pointer_t<T>;
    using Plain = std::remove_const_t<Pointee>;
    if constexpr (!std::is_pointer_v<T>)
        return number(static_cast<int64_t>(value));
    else if constexpr (std::is_function_v<Pointee>)
        return value ? "routine" : "null";
    else if constexpr (kindOf<T> != nullptr)
        return call_names::of(reinterpret_cast<uint64_t>(value), kindOf<T>);
    else if constexpr (hasFields<Plain> && (std::is_const_v<Pointee> || isFilledByCaller<Plain>))
        return value ? fields(*value) : "null";
    else if constexpr (hasFields<Plain> || std::is_pointer_v<Plain> || std::is_integral_v<Plain>)
        return showPointee(value, known);
    else
        return show(Memory{value}, known);
}

// Whether `show` returns more after the call than before it.
template <typename T>
constexpr bool isWrittenByCall = std::is_same_v<T, OutHandle> || std::is_same_v<T, OutInterface>;
template <typename T>
constexpr bool isWrittenByCall<T*> = !std::is_const_v<T> && !isFilledByCaller<T>;

} // namespace call_text
