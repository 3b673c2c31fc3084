#include "runtime/object_registry.h"

#include "runtime/program.h"

#include <cstring>
#include <windows.h>

namespace {

template <typename Word>
Word firstWord(const void* record) {
    Word word;
    std::memcpy(&word, record, sizeof word);
    return word;
}

// Look-ups judge by the first 32 bits and walks by the first 64. The difference is meant: both
// tests stay as they are.
bool isAliveForLookup(const void* record) { return firstWord<int32_t>(record) != 0; }
bool isAliveForWalk(const void* record) { return firstWord<int64_t>(record) != 0; }

bool isNumber(const ObjectRegistry* registry, ObjectId id) {
    return id >= 0 && id < registry->capacity;
}

// The lowest 64 KiB are never mapped: a value in there is a number beyond the table and no address.
constexpr ObjectId lowestAddress = 0x10000;

void* looseRecord(ObjectId id) {
    return id >= 0 && id < lowestAddress ? nullptr : reinterpret_cast<void*>(id);
}

void* numberedRecord(const ObjectRegistry* registry, ObjectId number) {
    return registry->table + number * registry->recordSize;
}

// A signed product of 32 bits that wraps around and is then widened to a size.
SIZE_T tableSize(const ObjectRegistry* registry) {
    const uint32_t product =
        static_cast<uint32_t>(registry->recordSize) * static_cast<uint32_t>(registry->capacity);
    return static_cast<SIZE_T>(static_cast<int32_t>(product));
}

void grow(ObjectRegistry* registry, ObjectId id) {
    registry->capacity = static_cast<int32_t>(registry->growthStep + id);
    registry->table = static_cast<char*>(
        HeapReAlloc(GeneralHeap, HEAP_ZERO_MEMORY, registry->table, tableSize(registry)));
}

LooseBlock* oldestLoose(const ObjectRegistry* registry) {
    LooseBlock* block = registry->looseHead;
    while (block && block->older)
        block = block->older;
    return block;
}

bool visitNumbers(ObjectRegistry* registry, ObjectVisitor visit, void* user) {
    // The capacity is read anew each time: a visit may make the table grow.
    for (ObjectId number = 0; number < registry->capacity; ++number) {
        void* record = numberedRecord(registry, number);
        if (isAliveForWalk(record) && !visit(number, record, user))
            return false;
    }
    return true;
}

void visitLoose(ObjectRegistry* registry, ObjectVisitor visit, void* user) {
    LooseBlock* block = oldestLoose(registry);
    while (block) {
        LooseBlock* next = block->newer;
        void* record = block + 1;
        if (!visit(reinterpret_cast<ObjectId>(record), record, user))
            return;
        block = next;
    }
}

} // namespace

ObjectRegistry* Registry_New(int32_t recordSize, int32_t growthStep, ObjectFree onFree) {
    auto* registry =
        static_cast<ObjectRegistry*>(Heap_NewObject(sizeof(ObjectRegistry), nullptr, nullptr));
    registry->recordSize = recordSize;
    registry->growthStep = growthStep;
    registry->capacity = growthStep;
    registry->onFree = onFree;
    registry->table =
        static_cast<char*>(HeapAlloc(GeneralHeap, HEAP_ZERO_MEMORY, tableSize(registry)));
    return registry;
}

void* Registry_Claim(ObjectRegistry* registry, ObjectId id) {
    if (id == ObjectId_Any) {
        const auto links = static_cast<int32_t>(sizeof(LooseBlock));
        return LooseList_Alloc(&registry->looseHead, registry->recordSize + links);
    }
    if (id >= registry->capacity)
        grow(registry, id);
    if (registry->onFree)
        registry->onFree(id);
    return numberedRecord(registry, id);
}

void* Registry_Lookup(const ObjectRegistry* registry, ObjectId id) {
    void* record = isNumber(registry, id) ? numberedRecord(registry, id) : looseRecord(id);
    return record && isAliveForLookup(record) ? record : nullptr;
}

void Registry_Release(ObjectRegistry* registry, ObjectId id) {
    if (isNumber(registry, id))
        std::memset(numberedRecord(registry, id), 0, static_cast<size_t>(registry->recordSize));
    else
        LooseList_Free(&registry->looseHead, reinterpret_cast<void*>(id));
}

void Registry_FreeAll(ObjectRegistry* registry) {
    if (!registry || !registry->onFree)
        return;
    ObjectId id;
    Registry_IterStart(registry);
    while (Registry_IterNext(registry, &id))
        registry->onFree(id);
}

void Registry_IterStart(ObjectRegistry* registry) {
    registry->iterIndex = 0;
    registry->iterLoose = oldestLoose(registry);
}

void* Registry_IterNext(ObjectRegistry* registry, ObjectId* id) {
    while (isNumber(registry, registry->iterIndex)) {
        const ObjectId number = registry->iterIndex++;
        void* record = numberedRecord(registry, number);
        if (isAliveForWalk(record)) {
            *id = number;
            return record;
        }
    }
    if (!registry->iterLoose)
        return nullptr;
    void* record = registry->iterLoose + 1;
    registry->iterLoose = registry->iterLoose->newer;
    *id = reinterpret_cast<ObjectId>(record);
    return record;
}

void Registry_ForEach(ObjectRegistry* registry, ObjectVisitor visit, void* user) {
    if (visitNumbers(registry, visit, user))
        visitLoose(registry, visit, user);
}
