#include "input/direct_input.h"

#include "input/direct_input_state.h"
#include "runtime/library.h"
#include "runtime/program.h"

namespace {

using CreateFunction = HRESULT(WINAPI*)(HINSTANCE, DWORD, REFIID, void**, IUnknown*);

void load() {
    Loader.library = LoadLibraryA("DINPUT.DLL");
    if (!Loader.library)
        return;
    auto create = Library_Find<CreateFunction>(Loader.library, "DirectInputCreateEx");
    void* made = nullptr;
    if (create &&
        create(ProgramInstance, DIRECTINPUT_VERSION, IID_IDirectInput7A, &made, nullptr) == DI_OK)
        Loader.directInput = static_cast<IDirectInput7A*>(made);
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
