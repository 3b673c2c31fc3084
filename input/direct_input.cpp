#include "input/direct_input.h"

#include "runtime/program.h"

namespace {

struct DirectInputLoader {
    IDirectInput7A* directInput;
    HMODULE library;
    int directInputUsers;
};

DirectInputLoader Loader;

using CreateFunction = HRESULT(WINAPI*)(HINSTANCE, DWORD, REFIID, void**, IUnknown*);

void load() {
    Loader.library = LoadLibraryA("DINPUT.DLL");
    if (!Loader.library)
        return;
    auto create = reinterpret_cast<CreateFunction>(
        reinterpret_cast<void*>(GetProcAddress(Loader.library, "DirectInputCreateEx")));
    if (create)
        create(ProgramInstance, DIRECTINPUT_VERSION, IID_IDirectInput7A,
               reinterpret_cast<void**>(&Loader.directInput), nullptr);
}

} // namespace

IDirectInput7A* DirectInput_Acquire() {
    if (!Loader.directInput)
        load();
    ++Loader.directInputUsers;
    return Loader.directInput;
}

void DirectInput_Release() {
    --Loader.directInputUsers;
    if (!Loader.directInput || Loader.directInputUsers != 0)
        return;
    Loader.directInput->Release();
    FreeLibrary(Loader.library);
    Loader.directInput = nullptr;
}

IDirectInputDevice7A* DirectInput_CreateDevice(IDirectInput7A* directInput, const GUID& which) {
    IDirectInputDevice7A* device = nullptr;
    const HRESULT result = directInput->CreateDeviceEx(which, IID_IDirectInputDevice7A,
                                                       reinterpret_cast<void**>(&device), nullptr);
    return result == DI_OK ? device : nullptr;
}
