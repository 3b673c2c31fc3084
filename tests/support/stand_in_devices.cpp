#include "tests/support/stand_in_devices.h"

#include "tests/support/com_object.h"

#include <algorithm>
#include <cstring>

StandInDevices::StandInDevices(CallRecorder& calls, bool withDesktop)
    : desktop(withDesktop ? std::make_unique<StandInDesktop>(calls) : nullptr),
      libraries{
          {"DDRAW.DLL", "DirectDrawCreateEx", reinterpret_cast<void*>(StandIn_DirectDrawCreateEx)},
          {"DINPUT.DLL", "DirectInputCreateEx",
           reinterpret_cast<void*>(StandIn_DirectInputCreateEx)},
          {"DSOUND.DLL", "DirectSoundCreate", reinterpret_cast<void*>(StandIn_DirectSoundCreate)}} {
    liveComObjects = 0;
    takeOverLibraries(calls);
}

StandInDevices::Library* StandInDevices::find(const char* name) {
    for (Library& library : libraries)
        if (_stricmp(library.name, name) == 0)
            return &library;
    return nullptr;
}

// A stand-in's module handle is the address of its entry here.
StandInDevices::Library* StandInDevices::find(HMODULE module) {
    for (Library& library : libraries)
        if (reinterpret_cast<HMODULE>(&library) == module)
            return &library;
    return nullptr;
}

void StandInDevices::takeOverLibraries(CallRecorder& calls) {
    calls.substitute<hook::LoadLibraryA>([this](LPCSTR name) {
        Library* library = find(name);
        if (!library)
            return CallRecorder::original<hook::LoadLibraryA>()(name);
        ++library->loads;
        return reinterpret_cast<HMODULE>(library);
    });
    calls.substitute<hook::GetProcAddress>([this](HMODULE module, LPCSTR name) -> FARPROC {
        Library* library = find(module);
        if (!library)
            return CallRecorder::original<hook::GetProcAddress>()(module, name);
        const bool isEntry = strcmp(name, library->entry) == 0;
        return isEntry ? reinterpret_cast<FARPROC>(library->routine) : nullptr;
    });
    calls.substitute<hook::FreeLibrary>([this](HMODULE module) {
        Library* library = find(module);
        if (!library)
            return CallRecorder::original<hook::FreeLibrary>()(module);
        --library->loads;
        return TRUE;
    });
}

bool StandInDevices::wereUsed() const {
    return ddraw.wasMade() && input.wasMade() && sound.wasMade();
}

int StandInDevices::liveObjects() { return liveComObjects; }

int StandInDevices::loads(const char* library) const {
    const auto found =
        std::find_if(libraries.begin(), libraries.end(),
                     [library](const Library& at) { return _stricmp(at.name, library) == 0; });
    return found == libraries.end() ? 0 : found->loads;
}

void StandInDevices::switchAway(bool surfacesLost) {
    input.isForeground = false;
    input.lose();
    ddraw.isAway = true;
    if (surfacesLost)
        ddraw.loseSurfaces();
    if (desktop) {
        desktop->foreground = nullptr;
        desktop->send(WM_ACTIVATE, WA_INACTIVE);
    }
}

void StandInDevices::switchBack() {
    input.isForeground = true;
    ddraw.isAway = false;
    if (desktop) {
        desktop->foreground = desktop->window();
        desktop->send(WM_ACTIVATE, WA_ACTIVE);
    }
}
