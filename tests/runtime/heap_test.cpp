#include "runtime/heap.h"

#include "runtime/heap_state.h"
#include "tests/support/runtime_fixture.h"

#include <cstddef>

namespace {

constexpr int32_t linksSize = sizeof(LooseBlock);

LooseBlock* blockOf(void* record) { return static_cast<LooseBlock*>(record) - 1; }

// --- The heap ---

TEST(HeapSubsystemInit, MakesTheSerialisedGrowableHeapOfLooseRecords) {
    CallRecorder calls;
    LooseHeap = nullptr;
    void* const heap = Heap_SubsystemInit();
    EXPECT_TRUE(calls.match("HeapCreate(0, 1024, 0) -> heap1"));
    EXPECT_NE(heap, nullptr);
    EXPECT_EQ(heap, LooseHeap);
    HeapDestroy(heap);
}

TEST(HeapSubsystemInit, GivesNullWhenThereIsNoHeap) {
    CallRecorder calls;
    calls.fail("HeapCreate", 1, 0);
    EXPECT_EQ(Heap_SubsystemInit(), nullptr);
    EXPECT_EQ(LooseHeap, nullptr);
}

using HeapSubsystemEnd = RuntimeTest;

TEST_F(HeapSubsystemEnd, DoesNothing) {
    CallRecorder calls;
    Heap_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
    EXPECT_NE(LooseHeap, nullptr);
}

// --- Objects ---

using HeapNewObject = RuntimeTest;

void* initialised;
int initialisations;
int cleanUps;

void initialise(void* object) {
    initialised = object;
    ++initialisations;
}

void cleanUp(void*) { ++cleanUps; }

TEST_F(HeapNewObject, GivesAZeroedBlockOfTheGeneralHeap) {
    HeapRecorder calls;
    auto* object = static_cast<char*>(Heap_NewObject(40, nullptr, nullptr));
    EXPECT_TRUE(calls.match("HeapAlloc(general, 8, 40) -> block1"));
    EXPECT_EQ(std::string(object, 40), std::string(40, '\0'));
}

TEST_F(HeapNewObject, HandsTheObjectToTheInitialiserOnce) {
    initialisations = 0;
    void* const object = Heap_NewObject(8, initialise, nullptr);
    EXPECT_EQ(initialised, object);
    EXPECT_EQ(initialisations, 1);
}

TEST_F(HeapNewObject, IgnoresTheCleanUpRoutine) {
    cleanUps = 0;
    initialisations = 0;
    Heap_NewObject(8, nullptr, cleanUp);
    EXPECT_EQ(cleanUps, 0);
    EXPECT_EQ(initialisations, 0);
}

TEST_F(HeapNewObject, UsesAFailedAllocationAsItStands) {
    HeapRecorder calls;
    calls.fail("HeapAlloc", 1, 0);
    initialised = &calls;
    EXPECT_EQ(Heap_NewObject(8, initialise, nullptr), nullptr);
    EXPECT_EQ(initialised, nullptr);
}

// --- The lists of loose records ---

TEST(LooseBlock, HoldsItsTwoLinksInFrontOfTheRecord) {
    EXPECT_EQ(offsetof(LooseBlock, older), 0u);
    EXPECT_EQ(offsetof(LooseBlock, newer), 8u);
    EXPECT_EQ(sizeof(LooseBlock), 16u);
}

using LooseListAlloc = RuntimeTest;

TEST_F(LooseListAlloc, GivesAZeroedRecordBehindTheLinks) {
    LooseBlock* head = nullptr;
    HeapRecorder calls;
    auto* record = static_cast<char*>(LooseList_Alloc(&head, linksSize + 24));
    EXPECT_TRUE(calls.match("HeapAlloc(loose, 8, 40) -> block1"));
    EXPECT_EQ(blockOf(record), head);
    EXPECT_EQ(std::string(record, 24), std::string(24, '\0'));
}

TEST_F(LooseListAlloc, LinksTheFirstBlockToNothing) {
    LooseBlock* head = nullptr;
    LooseList_Alloc(&head, linksSize + 8);
    EXPECT_EQ(head->older, nullptr);
    EXPECT_EQ(head->newer, nullptr);
}

TEST_F(LooseListAlloc, PutsTheNewestBlockAtTheHead) {
    LooseBlock* head = nullptr;
    LooseBlock* const oldest = blockOf(LooseList_Alloc(&head, linksSize + 8));
    LooseBlock* const middle = blockOf(LooseList_Alloc(&head, linksSize + 8));
    LooseBlock* const newest = blockOf(LooseList_Alloc(&head, linksSize + 8));
    EXPECT_EQ(head, newest);
    EXPECT_EQ(newest->newer, nullptr);
    EXPECT_EQ(newest->older, middle);
    EXPECT_EQ(middle->newer, newest);
    EXPECT_EQ(middle->older, oldest);
    EXPECT_EQ(oldest->newer, middle);
    EXPECT_EQ(oldest->older, nullptr);
}

TEST_F(LooseListAlloc, GivesTheBareSizeOfTheLinksWhenTheHeapIsExhausted) {
    LooseBlock* head = nullptr;
    LooseList_Alloc(&head, linksSize + 8);
    LooseBlock* const before = head;
    HeapRecorder calls;
    calls.fail("HeapAlloc", 1, 0);
    EXPECT_EQ(LooseList_Alloc(&head, linksSize + 8), reinterpret_cast<void*>(16));
    EXPECT_EQ(head, before);
    EXPECT_EQ(head->newer, nullptr);
    EXPECT_EQ(head->older, nullptr);
}

class LooseListFree : public RuntimeTest {
protected:
    LooseListFree() {
        for (void*& record : records)
            record = LooseList_Alloc(&head, linksSize + 8);
    }

    LooseBlock* block(int index) const { return blockOf(records[index]); }

    LooseBlock* head = nullptr;
    void* records[3]; // oldest first
};

TEST_F(LooseListFree, GivesTheBlockBackToItsHeap) {
    HeapRecorder calls;
    calls.name(block(1), "middle");
    LooseList_Free(&head, records[1]);
    EXPECT_TRUE(calls.match("HeapFree(loose, 0, middle) -> 1"));
}

TEST_F(LooseListFree, OfTheHeadMovesTheHeadToTheOlderBlock) {
    LooseList_Free(&head, records[2]);
    EXPECT_EQ(head, block(1));
    EXPECT_EQ(head->newer, nullptr);
    EXPECT_EQ(head->older, block(0));
}

TEST_F(LooseListFree, InTheMiddleJoinsTheNeighbours) {
    LooseList_Free(&head, records[1]);
    EXPECT_EQ(head, block(2));
    EXPECT_EQ(block(2)->older, block(0));
    EXPECT_EQ(block(0)->newer, block(2));
    EXPECT_EQ(block(2)->newer, nullptr);
    EXPECT_EQ(block(0)->older, nullptr);
}

TEST_F(LooseListFree, OfTheOldestEndsTheListAtTheNext) {
    LooseList_Free(&head, records[0]);
    EXPECT_EQ(head, block(2));
    EXPECT_EQ(block(1)->older, nullptr);
    EXPECT_EQ(block(1)->newer, block(2));
    EXPECT_EQ(block(2)->older, block(1));
}

TEST_F(LooseListFree, OfTheOnlyBlockLeavesAnEmptyList) {
    LooseList_Free(&head, records[2]);
    LooseList_Free(&head, records[1]);
    LooseList_Free(&head, records[0]);
    EXPECT_EQ(head, nullptr);
}

} // namespace
