#include "display/direct_draw.h"

#include "runtime/library.h"

namespace {

using CreateFunction = HRESULT(WINAPI*)(GUID*, void**, REFIID, IUnknown*);

void createObject() {
    auto create = Library_Find<CreateFunction>(Screen.ddrawLibrary, "DirectDrawCreateEx");
    if (create)
        create(nullptr, reinterpret_cast<void**>(&Screen.ddraw), IID_IDirectDraw7, nullptr);
}

void load() {
    Screen.ddrawLibrary = LoadLibraryA("DDRAW.DLL");
    if (!Screen.ddrawLibrary)
        return;
    createObject();
    if (!Screen.ddraw)
        FreeLibrary(Screen.ddrawLibrary);
}

} // namespace

IDirectDraw7* DirectDraw_Acquire() {
    if (!Screen.ddraw)
        load();
    ++Screen.ddrawUsers;
    return Screen.ddraw;
}

void DirectDraw_Release() {
    --Screen.ddrawUsers;
    if (!Screen.ddraw || Screen.ddrawUsers != 0)
        return;
    Screen.ddraw->Release();
    FreeLibrary(Screen.ddrawLibrary);
    Screen.ddraw = nullptr;
}
