// The one scheme behind every object kind (files, images, fonts, modules, surfaces, sounds). An
// object has a number that the program chose, held in a growable table, or none: then its record is
// loose, and the record's address is its ObjectId. Both forms go into the same parameter.
//
// A record's first field is the kind's native handle or pointer and its life mark: not zero means
// alive, and an emptied record is all zeros. A record takes at least 8 bytes.
//
// The registry owns its records, and only the kind's own operations touch them. Growing the table
// moves the numbered records: a claim voids every pointer to one. One thread; failed allocations
// are not noticed.
#pragma once

#include "runtime/heap.h"

#include <cstdint>

using ObjectId = int64_t;

// As an argument: a new loose record, please.
constexpr ObjectId ObjectId_Any = -1;

using ObjectFree = void (*)(ObjectId id);

struct ObjectRegistry {
    int32_t recordSize;
    int32_t growthStep;    // first capacity, and the slack added when the table grows
    int32_t capacity;      // records in `table`
    LooseBlock* looseHead; // newest loose record's block, or null
    ObjectFree onFree;     // the kind's free routine; may be null
    int64_t iterIndex;     // the walk's next number
    LooseBlock* iterLoose; // the walk's next loose block
    char* table;
};
static_assert(sizeof(ObjectRegistry) == 56);

ObjectRegistry* Registry_New(int32_t recordSize, int32_t growthStep, ObjectFree onFree);

// The empty record to fill. A number in use frees its object first, through `onFree`.
void* Registry_Claim(ObjectRegistry* registry, ObjectId id);

// The live record, or null. A value outside the table is taken for a loose record's address.
void* Registry_Lookup(const ObjectRegistry* registry, ObjectId id);

// Empties a numbered record, frees a loose one.
void Registry_Release(ObjectRegistry* registry, ObjectId id);

// The id under which a claimed record is found again: its number, or its address.
inline ObjectId Registry_IdOf(ObjectId claimed, const void* record) {
    return claimed == ObjectId_Any ? reinterpret_cast<ObjectId>(record) : claimed;
}

// Gives up a record that was claimed under `claimed` and came to nothing.
inline void Registry_GiveUp(ObjectRegistry* registry, ObjectId claimed, const void* record) {
    Registry_Release(registry, Registry_IdOf(claimed, record));
}

// Calls `onFree` for every object. Table and header stay. Null is a kind that was never set up.
void Registry_FreeAll(ObjectRegistry* registry);

// The registry's one walk: numbers upwards, then loose records from the oldest to the newest. The
// object just given may be freed.
void Registry_IterStart(ObjectRegistry* registry);
void* Registry_IterNext(ObjectRegistry* registry, ObjectId* id);

// Gives 0 to end the walk.
using ObjectVisitor = int32_t (*)(ObjectId id, void* record, void* user);

// A walk in the same order that may run inside the other one. Loose records get no life test.
void Registry_ForEach(ObjectRegistry* registry, ObjectVisitor visit, void* user);
