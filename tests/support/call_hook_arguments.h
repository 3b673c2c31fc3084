// The calls whose argument types do not tell what the arguments mean.
#pragma once

#include "tests/support/call_hook.h"

namespace hook_detail {

using call_text::Memory;
using call_text::OutHandle;
using call_text::OutInterface;

template <>
struct ShownAs<hook::CreateProcessA> {
    static auto of(LPCSTR program, LPSTR commandLine, LPSECURITY_ATTRIBUTES process,
                   LPSECURITY_ATTRIBUTES thread, BOOL inherit, DWORD flags, LPVOID environment,
                   LPCSTR folder, LPSTARTUPINFOA startup, LPPROCESS_INFORMATION information) {
        return std::tuple(program, static_cast<const char*>(commandLine), process, thread, inherit,
                          flags, environment, folder, startup, information);
    }
};

template <>
struct ShownAs<hook::ShellExecuteExA> {
    static auto of(LPSHELLEXECUTEINFOA information) {
        return std::tuple(information, OutHandle{&information->hProcess, "process"});
    }
};

template <>
struct ShownAs<hook::CreatePipe> {
    static auto of(PHANDLE readEnd, PHANDLE writeEnd, LPSECURITY_ATTRIBUTES security, DWORD size) {
        return std::tuple(OutHandle{readEnd, "pipe"}, OutHandle{writeEnd, "pipe"}, security, size);
    }
};

template <>
struct ShownAs<hook::DuplicateHandle> {
    static auto of(HANDLE sourceProcess, HANDLE source, HANDLE targetProcess, LPHANDLE target,
                   DWORD access, BOOL inherit, DWORD options) {
        return std::tuple(sourceProcess, source, targetProcess, OutHandle{target, "handle"}, access,
                          inherit, options);
    }
};

template <>
struct ShownAs<hook::DirectDrawCreateEx> {
    static auto of(GUID* device, LPVOID* object, const GUID& interfaceId, IUnknown* outer) {
        return std::tuple(Memory{device}, OutInterface{object, &interfaceId}, interfaceId, outer);
    }
};

template <>
struct ShownAs<hook::DirectInputCreateEx> {
    static auto of(HINSTANCE module, DWORD version, const GUID& interfaceId, LPVOID* object,
                   LPUNKNOWN outer) {
        return std::tuple(module, version, interfaceId, OutInterface{object, &interfaceId}, outer);
    }
};

template <>
struct ShownAs<hook::IDirectInput7A_CreateDeviceEx> {
    static auto of(IDirectInput7A* self, const GUID& device, const GUID& interfaceId,
                   LPVOID* object, LPUNKNOWN outer) {
        return std::tuple(self, device, interfaceId, OutInterface{object, &interfaceId}, outer);
    }
};

// What Lock is given is only filled by it.
template <>
struct ShownAs<hook::IDirectDrawSurface7_Lock> {
    static auto of(IDirectDrawSurface7* self, LPRECT area, LPDDSURFACEDESC2 description,
                   DWORD flags, HANDLE event) {
        return std::tuple(self, area, Memory{description}, flags, event);
    }
};

} // namespace hook_detail
