#include "runtime/object_registry.h"

#include "tests/support/runtime_fixture.h"

#include <cstddef>
#include <vector>

namespace {

using Ids = std::vector<ObjectId>;

struct Record {
    int64_t handle;
    int32_t extra;
    int32_t more;
};

ObjectRegistry* registry;
Ids freed;

// A kind's free routine as they all are: nothing for an unknown id.
void freeRecord(ObjectId id) {
    freed.push_back(id);
    if (Registry_Lookup(registry, id))
        Registry_Release(registry, id);
}

class RegistryTest : public RuntimeTest {
protected:
    RegistryTest() {
        freed.clear();
        registry = Registry_New(sizeof(Record), 16, freeRecord);
    }

    static Record* claim(ObjectId id) { return static_cast<Record*>(Registry_Claim(registry, id)); }

    // Claims, brings to life, and gives the id under which the object is found.
    static ObjectId make(ObjectId id, int64_t handle = 1) {
        Record* const record = claim(id);
        record->handle = handle;
        return Registry_IdOf(id, record);
    }

    static Ids walk() {
        Ids ids;
        ObjectId id = -7;
        Registry_IterStart(registry);
        while (Registry_IterNext(registry, &id))
            ids.push_back(id);
        return ids;
    }
};

// --- The registry itself ---

TEST(ObjectRegistry, HoldsItsFieldsInOrder) {
    EXPECT_EQ(offsetof(ObjectRegistry, recordSize), 0u);
    EXPECT_EQ(offsetof(ObjectRegistry, growthStep), 4u);
    EXPECT_EQ(offsetof(ObjectRegistry, capacity), 8u);
    EXPECT_EQ(offsetof(ObjectRegistry, looseHead), 16u);
    EXPECT_EQ(offsetof(ObjectRegistry, onFree), 24u);
    EXPECT_EQ(offsetof(ObjectRegistry, iterIndex), 32u);
    EXPECT_EQ(offsetof(ObjectRegistry, iterLoose), 40u);
    EXPECT_EQ(offsetof(ObjectRegistry, table), 48u);
    EXPECT_EQ(sizeof(ObjectRegistry), 56u);
    EXPECT_EQ(sizeof(ObjectRegistry::recordSize), 4u);
    EXPECT_EQ(sizeof(ObjectRegistry::growthStep), 4u);
    EXPECT_EQ(sizeof(ObjectRegistry::capacity), 4u);
    EXPECT_EQ(sizeof(ObjectRegistry::iterIndex), 8u);
    EXPECT_EQ(sizeof(ObjectId), 8u);
    EXPECT_EQ(ObjectId_Any, -1);
}

using RegistryNew = RegistryTest;

TEST_F(RegistryNew, MakesAZeroedHeaderAndAZeroedTable) {
    HeapRecorder calls;
    ObjectRegistry* const made = Registry_New(24, 64, freeRecord);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 8, 56) -> block1
        HeapAlloc(general, 8, 1536) -> block2
    )"));
    EXPECT_EQ(made->recordSize, 24);
    EXPECT_EQ(made->growthStep, 64);
    EXPECT_EQ(made->capacity, 64);
    EXPECT_EQ(made->looseHead, nullptr);
    EXPECT_EQ(made->onFree, freeRecord);
    EXPECT_EQ(made->iterIndex, 0);
    EXPECT_EQ(made->iterLoose, nullptr);
    EXPECT_EQ(std::string(made->table, 1536), std::string(1536, '\0'));
}

TEST_F(RegistryNew, KeepsAFailedTableAsItStands) {
    HeapRecorder calls;
    calls.fail("HeapAlloc", 2, 0);
    ObjectRegistry* const made = Registry_New(24, 64, freeRecord);
    EXPECT_EQ(made->table, nullptr);
    EXPECT_EQ(made->capacity, 64);
}

TEST_F(RegistryNew, StopsTheProgramWithoutAHeader) {
    EXPECT_EXIT(
        {
            HeapRecorder calls;
            calls.fail("HeapAlloc", 1, 0);
            Registry_New(24, 64, freeRecord);
        },
        isMemoryFault, "");
}

// --- Claim ---

using RegistryClaim = RegistryTest;

TEST_F(RegistryClaim, GivesTheRecordAtItsNumber) {
    EXPECT_EQ(reinterpret_cast<char*>(claim(0)), registry->table);
    EXPECT_EQ(reinterpret_cast<char*>(claim(15)), registry->table + 15 * 16);
    EXPECT_EQ(registry->capacity, 16);
}

TEST_F(RegistryClaim, CallsNoHeapBelowTheCapacity) {
    HeapRecorder calls;
    claim(15);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(RegistryClaim, GrowsTheTableAtTheCapacityByTheStep) {
    HeapRecorder calls;
    calls.name(registry->table, "table");
    claim(16);
    EXPECT_TRUE(calls.match("HeapReAlloc(general, 8, table, 512)"));
    EXPECT_EQ(registry->capacity, 32);
}

TEST_F(RegistryClaim, OfNumber100WithStep16LeavesEmptyRecordsBetween) {
    HeapRecorder calls;
    claim(100)->handle = 1;
    EXPECT_TRUE(calls.match("HeapReAlloc(general, 8, *, 1856)"));
    EXPECT_EQ(registry->capacity, 116);
    for (ObjectId id = 16; id < 100; ++id)
        EXPECT_EQ(Registry_Lookup(registry, id), nullptr) << id;
    EXPECT_NE(Registry_Lookup(registry, 100), nullptr);
    EXPECT_EQ(Registry_Lookup(registry, 115), nullptr);
}

TEST_F(RegistryClaim, KeepsTheObjectsOverAMoveOfTheTable) {
    make(3, 33);
    char* const old = registry->table;
    HeapRecorder calls;
    moveOnReallocation(calls);
    Record* const claimed = claim(40);
    EXPECT_NE(registry->table, old);
    EXPECT_EQ(reinterpret_cast<char*>(claimed), registry->table + 40 * 16);
    EXPECT_EQ(static_cast<Record*>(Registry_Lookup(registry, 3))->handle, 33);
}

TEST_F(RegistryClaim, TakesTheTablesSizeAs32Bits) {
    ObjectRegistry* const wide = Registry_New(0x10000, 16, nullptr);
    HeapRecorder calls;
    calls.replace<hook::HeapReAlloc>([](HANDLE, DWORD, void* old, SIZE_T) { return old; });
    Registry_Claim(wide, 0x10000); // 0x10010 records of 0x10000 bytes
    EXPECT_TRUE(calls.match("HeapReAlloc(general, 8, *, 0x100000)"));
    EXPECT_EQ(wide->capacity, 0x10010);
}

TEST_F(RegistryClaim, TakesATablesSizeAsSigned) {
    ObjectRegistry* const wide = Registry_New(0x10000, 16, nullptr);
    HeapRecorder calls;
    SIZE_T asked = 0;
    calls.replace<hook::HeapReAlloc>([&](HANDLE, DWORD, void* old, SIZE_T size) {
        asked = size;
        return old;
    });
    Registry_Claim(wide, 0x8000); // 0x8010 records of 0x10000 bytes
    EXPECT_EQ(asked, 0xFFFFFFFF80100000u);
}

TEST_F(RegistryClaim, StopsTheProgramAtTheFirstAccessAfterAFailedGrowth) {
    EXPECT_EXIT(
        {
            HeapRecorder calls;
            calls.fail("HeapReAlloc", 1, 0);
            claim(16)->handle = 1;
        },
        isMemoryFault, "");
}

TEST_F(RegistryClaim, CallsTheFreeRoutineEachTime) {
    claim(0);
    claim(0);
    EXPECT_EQ(freed, (Ids{0, 0}));
}

TEST_F(RegistryClaim, FreesTheObjectThatHadTheNumber) {
    make(0, 11);
    Record* const second = claim(0);
    EXPECT_EQ(second->handle, 0);
    EXPECT_EQ(Registry_Lookup(registry, 0), nullptr);
}

TEST_F(RegistryClaim, FreesAfterTheTableHasGrown) {
    HeapRecorder calls;
    calls.after("HeapReAlloc", 1, [] { EXPECT_EQ(freed, Ids{}); });
    claim(50);
    EXPECT_EQ(calls.uses("HeapReAlloc"), 1);
    EXPECT_EQ(freed, Ids{50});
}

TEST_F(RegistryClaim, DoesWithoutAFreeRoutine) {
    ObjectRegistry* const plain = Registry_New(16, 16, nullptr);
    EXPECT_EQ(static_cast<char*>(Registry_Claim(plain, 2)), plain->table + 32);
}

TEST_F(RegistryClaim, OfAnyMakesLooseRecordsAndFreesNothing) {
    HeapRecorder calls;
    Record* const first = claim(ObjectId_Any);
    Record* const second = claim(ObjectId_Any);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(loose, 8, 32) -> block1
        HeapAlloc(loose, 8, 32) -> block2
    )"));
    EXPECT_NE(first, second);
    EXPECT_EQ(freed, Ids{});
    EXPECT_EQ(reinterpret_cast<LooseBlock*>(second) - 1, registry->looseHead);
    EXPECT_EQ(reinterpret_cast<LooseBlock*>(first) - 1, registry->looseHead->older);
}

TEST_F(RegistryClaim, GivesAnIdUnderWhichTheRecordIsFound) {
    Record* const record = claim(ObjectId_Any);
    EXPECT_EQ(Registry_IdOf(ObjectId_Any, record), reinterpret_cast<ObjectId>(record));
    EXPECT_EQ(Registry_IdOf(0, record), 0);
    EXPECT_EQ(Registry_IdOf(5, record), 5);
}

// --- Look-up ---

using RegistryLookup = RegistryTest;

TEST_F(RegistryLookup, GivesTheLiveRecord) {
    make(0);
    make(15);
    EXPECT_EQ(static_cast<char*>(Registry_Lookup(registry, 0)), registry->table);
    EXPECT_EQ(static_cast<char*>(Registry_Lookup(registry, 15)), registry->table + 240);
}

TEST_F(RegistryLookup, GivesNullForAnEmptyRecord) {
    EXPECT_EQ(Registry_Lookup(registry, 0), nullptr);
    claim(3)->extra = 1;
    EXPECT_EQ(Registry_Lookup(registry, 3), nullptr) << "the first field alone is the life mark";
}

TEST_F(RegistryLookup, JudgesByTheFirst32Bits) {
    make(3, 0x100000000);
    EXPECT_EQ(Registry_Lookup(registry, 3), nullptr);
    make(3, 0xFFFFFFFF);
    EXPECT_NE(Registry_Lookup(registry, 3), nullptr);
}

TEST_F(RegistryLookup, TakesAnythingOutsideTheTableForAnAddress) {
    Record elsewhere{1, 0, 0};
    EXPECT_EQ(Registry_Lookup(registry, reinterpret_cast<ObjectId>(&elsewhere)), &elsewhere);
    elsewhere.handle = 0;
    EXPECT_EQ(Registry_Lookup(registry, reinterpret_cast<ObjectId>(&elsewhere)), nullptr);
}

TEST_F(RegistryLookup, TakesTheCapacityItselfForAnAddress) {
    // A number that is an address as well, and exactly the capacity.
    ObjectId number = 0x10000000;
    Record* record = nullptr;
    for (; !record && number < 0x70000000; number += 0x1000000)
        record = static_cast<Record*>(VirtualAlloc(reinterpret_cast<void*>(number), sizeof(Record),
                                                   MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE));
    ASSERT_NE(record, nullptr) << "no free place that low";
    number = reinterpret_cast<ObjectId>(record);
    record->handle = 1;
    registry->capacity = static_cast<int32_t>(number);
    EXPECT_EQ(Registry_Lookup(registry, number), record);
    VirtualFree(record, 0, MEM_RELEASE);
}

TEST_F(RegistryLookup, GivesNullForANumberBeyondTheTable) {
    for (ObjectId id : {16, 17, 1000, 0xFFFF})
        EXPECT_EQ(Registry_Lookup(registry, id), nullptr) << id;
}

TEST_F(RegistryLookup, GivesNullForTheNullAddress) {
    ObjectRegistry empty{};
    EXPECT_EQ(Registry_Lookup(&empty, 0), nullptr);
}

TEST_F(RegistryLookup, GivesLooseRecords) {
    const ObjectId id = make(ObjectId_Any);
    EXPECT_EQ(Registry_Lookup(registry, id), reinterpret_cast<void*>(id));
}

// --- Release ---

using RegistryRelease = RegistryTest;

TEST_F(RegistryRelease, EmptiesTheNumberedRecordAlone) {
    make(2);
    Record* const released = claim(3);
    *released = {1, 2, 3};
    make(4);
    HeapRecorder calls;
    Registry_Release(registry, 3);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(std::string(reinterpret_cast<char*>(released), 16), std::string(16, '\0'));
    EXPECT_EQ(registry->capacity, 16);
    EXPECT_EQ(walk(), (Ids{2, 4}));
}

TEST_F(RegistryRelease, LeavesTheNumberToBeClaimedAgain) {
    make(3, 1);
    Registry_Release(registry, 3);
    EXPECT_EQ(Registry_Lookup(registry, 3), nullptr);
    make(3, 2);
    EXPECT_EQ(static_cast<Record*>(Registry_Lookup(registry, 3))->handle, 2);
}

TEST_F(RegistryRelease, OfTheTablesEndsStaysInTheTable) {
    make(0);
    make(15);
    Registry_Release(registry, 0);
    Registry_Release(registry, 15);
    EXPECT_EQ(walk(), Ids{});
}

TEST_F(RegistryRelease, FreesALooseRecord) {
    const ObjectId first = make(ObjectId_Any);
    const ObjectId second = make(ObjectId_Any);
    HeapRecorder calls;
    calls.name(reinterpret_cast<LooseBlock*>(first) - 1, "block");
    Registry_Release(registry, first);
    EXPECT_TRUE(calls.match("HeapFree(loose, 0, block) -> 1"));
    EXPECT_EQ(walk(), Ids{second});
    Registry_Release(registry, second);
    EXPECT_EQ(registry->looseHead, nullptr);
}

// --- The walk ---

using RegistryIterator = RegistryTest;

TEST_F(RegistryIterator, GivesNumbersUpwardsThenLooseRecordsFromTheOldest) {
    const ObjectId oldest = make(ObjectId_Any);
    const ObjectId newer = make(ObjectId_Any);
    make(15);
    make(0);
    make(7);
    const ObjectId newest = make(ObjectId_Any);
    EXPECT_EQ(walk(), (Ids{0, 7, 15, oldest, newer, newest}));
}

TEST_F(RegistryIterator, GivesTheRecordAndItsId) {
    make(7, 77);
    const ObjectId loose = make(ObjectId_Any, 88);
    ObjectId id = 0;
    Registry_IterStart(registry);
    EXPECT_EQ(static_cast<Record*>(Registry_IterNext(registry, &id))->handle, 77);
    EXPECT_EQ(id, 7);
    EXPECT_EQ(registry->iterIndex, 8);
    EXPECT_EQ(static_cast<Record*>(Registry_IterNext(registry, &id))->handle, 88);
    EXPECT_EQ(id, loose);
}

TEST_F(RegistryIterator, LeavesTheIdAloneAtTheEnd) {
    ObjectId id = -7;
    Registry_IterStart(registry);
    EXPECT_EQ(Registry_IterNext(registry, &id), nullptr);
    EXPECT_EQ(Registry_IterNext(registry, &id), nullptr);
    EXPECT_EQ(id, -7);
}

TEST_F(RegistryIterator, JudgesNumbersByTheFirst64Bits) {
    make(3, 0x100000000);
    EXPECT_EQ(walk(), Ids{3}) << "although a look-up does not find it";
}

TEST_F(RegistryIterator, GivesLooseRecordsWithoutALifeTest) {
    Record* const empty = claim(ObjectId_Any);
    EXPECT_EQ(walk(), Ids{reinterpret_cast<ObjectId>(empty)});
}

TEST_F(RegistryIterator, LetsTheObjectJustGivenBeFreed) {
    make(1);
    make(2);
    const ObjectId oldest = make(ObjectId_Any);
    const ObjectId newest = make(ObjectId_Any);
    Ids ids;
    ObjectId id;
    Registry_IterStart(registry);
    while (Registry_IterNext(registry, &id)) {
        ids.push_back(id);
        Registry_Release(registry, id);
    }
    EXPECT_EQ(ids, (Ids{1, 2, oldest, newest}));
    EXPECT_EQ(registry->looseHead, nullptr);
}

TEST_F(RegistryIterator, StartsAgainFromTheBeginning) {
    make(1);
    const ObjectId loose = make(ObjectId_Any);
    EXPECT_EQ(walk(), (Ids{1, loose}));
    EXPECT_EQ(walk(), (Ids{1, loose}));
}

TEST_F(RegistryIterator, StaysBelowTheCapacity) {
    make(14);
    make(15);
    registry->capacity = 15;
    EXPECT_EQ(walk(), Ids{14});
}

TEST_F(RegistryIterator, SkipsTheNumbersAtANegativeIndex) {
    make(0);
    const ObjectId loose = make(ObjectId_Any);
    Registry_IterStart(registry);
    registry->iterIndex = -1;
    ObjectId id = -7;
    EXPECT_NE(Registry_IterNext(registry, &id), nullptr);
    EXPECT_EQ(id, loose);
}

// --- Freeing everything ---

using RegistryFreeAll = RegistryTest;

TEST_F(RegistryFreeAll, FreesNumbersUpwardsThenLooseRecordsFromTheOldest) {
    const ObjectId oldest = make(ObjectId_Any);
    const ObjectId newest = make(ObjectId_Any);
    make(15);
    make(0);
    freed.clear();
    Registry_FreeAll(registry);
    EXPECT_EQ(freed, (Ids{0, 15, oldest, newest}));
    EXPECT_EQ(walk(), Ids{});
}

TEST_F(RegistryFreeAll, LeavesTableAndHeader) {
    make(20);
    HeapRecorder calls;
    Registry_FreeAll(registry);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(registry->capacity, 36);
    EXPECT_EQ(Registry_Lookup(registry, make(20)), registry->table + 320);
}

TEST_F(RegistryFreeAll, DoesNothingWithoutAFreeRoutine) {
    registry->onFree = nullptr;
    make(1);
    registry->iterIndex = 99;
    Registry_FreeAll(registry);
    EXPECT_NE(Registry_Lookup(registry, 1), nullptr);
    EXPECT_EQ(registry->iterIndex, 99);
}

TEST_F(RegistryFreeAll, DoesNothingForAKindThatWasNeverSetUp) {
    HeapRecorder calls;
    Registry_FreeAll(nullptr);
    EXPECT_TRUE(calls.match(""));
}

// --- The walk with a visitor ---

using RegistryForEach = RegistryTest;

struct Visits {
    Ids ids;
    std::vector<void*> records;
    ObjectId last = -7; // the visit that ends the walk
    ObjectId growAt = -7;
    ObjectId releaseAt = -7;
};

int32_t visit(ObjectId id, void* record, void* user) {
    auto* visits = static_cast<Visits*>(user);
    visits->ids.push_back(id);
    visits->records.push_back(record);
    if (id == visits->growAt)
        static_cast<Record*>(Registry_Claim(registry, 30))->handle = 1;
    if (id == visits->releaseAt)
        Registry_Release(registry, id);
    return id == visits->last ? 0 : 1;
}

TEST_F(RegistryForEach, VisitsNumbersUpwardsThenLooseRecordsFromTheOldest) {
    const ObjectId oldest = make(ObjectId_Any);
    const ObjectId middle = make(ObjectId_Any);
    const ObjectId newest = make(ObjectId_Any);
    make(15);
    make(0);
    Visits visits;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, (Ids{0, 15, oldest, middle, newest}));
    EXPECT_EQ(visits.records[1], registry->table + 240);
    EXPECT_EQ(visits.records[2], reinterpret_cast<void*>(oldest));
}

TEST_F(RegistryForEach, EndsAllOfItAtAZeroFromANumber) {
    make(0);
    make(1);
    make(ObjectId_Any);
    Visits visits;
    visits.last = 0;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, Ids{0});
}

TEST_F(RegistryForEach, EndsAtAZeroFromALooseRecord) {
    make(0);
    const ObjectId oldest = make(ObjectId_Any);
    make(ObjectId_Any);
    Visits visits;
    visits.last = oldest;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, (Ids{0, oldest}));
}

TEST_F(RegistryForEach, JudgesNumbersByTheFirst64BitsAndLooseRecordsNotAtAll) {
    make(3, 0x100000000);
    claim(4)->extra = 1;
    Record* const empty = claim(ObjectId_Any);
    Visits visits;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, (Ids{3, reinterpret_cast<ObjectId>(empty)}));
}

TEST_F(RegistryForEach, HonoursGrowthDuringTheWalk) {
    make(1);
    Visits visits;
    visits.growAt = 1;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, (Ids{1, 30}));
}

TEST_F(RegistryForEach, LetsTheLooseRecordJustVisitedBeFreed) {
    const ObjectId oldest = make(ObjectId_Any);
    const ObjectId newest = make(ObjectId_Any);
    Visits visits;
    visits.releaseAt = oldest;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, (Ids{oldest, newest}));
}

TEST_F(RegistryForEach, StaysBelowTheCapacity) {
    make(14);
    make(15);
    registry->capacity = 15;
    Visits visits;
    Registry_ForEach(registry, visit, &visits);
    EXPECT_EQ(visits.ids, Ids{14});
}

TEST_F(RegistryForEach, MayRunInsideTheOtherWalk) {
    make(1);
    make(2);
    const ObjectId loose = make(ObjectId_Any);
    Ids ids;
    ObjectId id;
    Registry_IterStart(registry);
    while (Registry_IterNext(registry, &id)) {
        ids.push_back(id);
        Visits visits;
        Registry_ForEach(registry, visit, &visits);
        EXPECT_EQ(visits.ids.size(), 3u);
    }
    EXPECT_EQ(ids, (Ids{1, 2, loose}));
}

} // namespace
