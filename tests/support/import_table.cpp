#include "tests/support/import_table.h"

#include <windows.h>

#include <cstdint>
#include <cstring>

extern "C" IMAGE_DOS_HEADER __ImageBase; // the linker's name for the program's first byte

namespace {

const uint8_t* image() { return reinterpret_cast<const uint8_t*>(&__ImageBase); }

template <typename T>
const T* at(uint32_t offset) {
    return reinterpret_cast<const T*>(image() + offset);
}

const IMAGE_IMPORT_DESCRIPTOR* firstDescriptor() {
    const auto* dos = at<IMAGE_DOS_HEADER>(0);
    const auto* headers = at<IMAGE_NT_HEADERS64>(static_cast<uint32_t>(dos->e_lfanew));
    const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    return at<IMAGE_IMPORT_DESCRIPTOR>(directory.VirtualAddress);
}

bool isNamed(const IMAGE_THUNK_DATA64& entry, const char* name) {
    if (IMAGE_SNAP_BY_ORDINAL64(entry.u1.Ordinal))
        return false;
    const auto* import = at<IMAGE_IMPORT_BY_NAME>(static_cast<uint32_t>(entry.u1.AddressOfData));
    return strcmp(reinterpret_cast<const char*>(import->Name), name) == 0;
}

} // namespace

std::vector<void**> importPlaces(const char* name) {
    std::vector<void**> places;
    for (const auto* library = firstDescriptor(); library->Name != 0; ++library) {
        const auto* entry = at<IMAGE_THUNK_DATA64>(library->OriginalFirstThunk);
        const auto* address = at<void*>(library->FirstThunk);
        for (; entry->u1.AddressOfData != 0; ++entry, ++address)
            if (isNamed(*entry, name))
                places.push_back(const_cast<void**>(address));
    }
    return places;
}

void writeProtected(void** place, void* value) {
    DWORD before = 0;
    VirtualProtect(place, sizeof *place, PAGE_READWRITE, &before);
    *place = value;
    VirtualProtect(place, sizeof *place, before, &before);
}
