#include "tests/support/call_hooks.h"

#include "tests/support/call_hook_arguments.h"
#include "tests/support/import_table.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <vector>

namespace hook {

#define FUNCTION(library, function, role, closing)                                                 \
    CallSite function::site{#function, #library, role, closing};
#define FETCHED FUNCTION
#include "tests/support/hooked_functions.inc"
#undef FETCHED
#undef FUNCTION

#define METHOD(interface_, method_, closing)                                                       \
    CallSite interface_##_##method_::site{#interface_ "::" #method_, #interface_, plain, closing};
#include "tests/support/hooked_methods.inc"
#undef METHOD

} // namespace hook

namespace {

struct FunctionEntry {
    CallSite* site;
    void* hook;
    void** real;
    void (*reset)();
    bool isFetched;
};

struct MethodEntry {
    CallSite* site;
    void* hook;
    size_t (*slot)();
    void (*reset)();
};

template <typename Hook>
FunctionEntry functionEntry(bool isFetched) {
    return {&Hook::site, reinterpret_cast<void*>(&Hook::call),
            reinterpret_cast<void**>(&Hook::real), [] { Hook::replacement = nullptr; }, isFetched};
}

template <typename Hook>
MethodEntry methodEntry() {
    return {&Hook::site, reinterpret_cast<void*>(&Hook::call),
            [] { return hook_detail::slotOf(Hook::method()); },
            [] { Hook::replacement = nullptr; }};
}

const std::vector<FunctionEntry>& functions() {
    static const std::vector<FunctionEntry> table = {
#define FUNCTION(library, function, role, closing) functionEntry<hook::function>(false),
#define FETCHED(library, function, role, closing) functionEntry<hook::function>(true),
#include "tests/support/hooked_functions.inc"
#undef FETCHED
#undef FUNCTION
    };
    return table;
}

const std::vector<MethodEntry>& methods() {
    static const std::vector<MethodEntry> table = {
#define METHOD(interface_, method_, closing) methodEntry<hook::interface_##_##method_>(),
#include "tests/support/hooked_methods.inc"
#undef METHOD
    };
    return table;
}

struct PatchedPlace {
    void** place;
    void* original;
};

struct PatchedTable {
    void** table;
    std::vector<void*> originals;
};

std::vector<PatchedPlace> patchedImports;
std::vector<PatchedTable> patchedTables;
SRWLOCK tablesLock = SRWLOCK_INIT; // the render thread looks methods up while others are added

void patchImports(const FunctionEntry& entry) {
    for (void** place : importPlaces(entry.site->name)) {
        patchedImports.push_back({place, *place});
        *entry.real = *place;
        writeProtected(place, entry.hook);
    }
}

PatchedTable* findTable(void** table) {
    const auto found = std::find_if(patchedTables.begin(), patchedTables.end(),
                                    [table](const PatchedTable& at) { return at.table == table; });
    return found == patchedTables.end() ? nullptr : &*found;
}

void patchTable(void** table, const char* interfaceName) {
    PatchedTable patched{table, {}};
    for (const MethodEntry& entry : methods()) {
        if (strcmp(entry.site->family, interfaceName) != 0)
            continue;
        void** place = table + entry.slot();
        patched.originals.resize(std::max(patched.originals.size(), entry.slot() + 1));
        patched.originals[entry.slot()] = *place;
        writeProtected(place, entry.hook);
    }
    patchedTables.push_back(patched);
}

void restoreTables() {
    for (const PatchedTable& patched : patchedTables)
        for (size_t slot = 0; slot < patched.originals.size(); ++slot)
            writeProtected(patched.table + slot, patched.originals[slot]);
    patchedTables.clear();
}

template <typename Entry>
bool hasName(const Entry& entry, std::string_view name) {
    return entry.site->name == name;
}

} // namespace

namespace hook_detail {

void* originalMethod(void* object, size_t slot) {
    AcquireSRWLockShared(&tablesLock);
    void** table = *static_cast<void***>(object);
    const PatchedTable* patched = findTable(table);
    void* original = patched ? patched->originals[slot] : table[slot];
    ReleaseSRWLockShared(&tablesLock);
    return original;
}

FARPROC watchFetched(const char* name, FARPROC real) {
    for (const FunctionEntry& entry : functions())
        if (real && entry.isFetched && hasName(entry, name)) {
            *entry.real = reinterpret_cast<void*>(real);
            return reinterpret_cast<FARPROC>(entry.hook);
        }
    return real;
}

} // namespace hook_detail

void watchMethods(void* object, const char* interfaceName) {
    void** table = *static_cast<void***>(object);
    AcquireSRWLockExclusive(&tablesLock);
    if (!findTable(table))
        patchTable(table, interfaceName);
    ReleaseSRWLockExclusive(&tablesLock);
}

void installHooks() {
    for (const FunctionEntry& entry : functions()) {
        entry.reset();
        patchImports(entry);
    }
    for (const MethodEntry& entry : methods())
        entry.reset();
}

void removeHooks() {
    for (const PatchedPlace& patched : patchedImports)
        writeProtected(patched.place, patched.original);
    patchedImports.clear();
    AcquireSRWLockExclusive(&tablesLock);
    restoreTables();
    ReleaseSRWLockExclusive(&tablesLock);
    for (const FunctionEntry& entry : functions())
        entry.reset();
    for (const MethodEntry& entry : methods())
        entry.reset();
}

CallSite* findCall(std::string_view name) {
    for (const FunctionEntry& entry : functions())
        if (hasName(entry, name))
            return entry.site;
    for (const MethodEntry& entry : methods())
        if (hasName(entry, name))
            return entry.site;
    return nullptr;
}

bool isHooked(std::string_view name) {
    for (const FunctionEntry& entry : functions())
        if (hasName(entry, name))
            return entry.isFetched || !importPlaces(entry.site->name).empty();
    return findCall(name) != nullptr;
}

void forEachCall(void (*visit)(CallSite&)) {
    for (const FunctionEntry& entry : functions())
        visit(*entry.site);
    for (const MethodEntry& entry : methods())
        visit(*entry.site);
}

size_t hooksInImportTable() {
    size_t count = 0;
    for (const FunctionEntry& entry : functions())
        for (void** place : importPlaces(entry.site->name))
            count += *place == entry.hook ? 1 : 0;
    return count;
}
