#include "runtime/block_pool.h"

#include "tests/support/runtime_fixture.h"

#include <climits>
#include <cstddef>
#include <utility>
#include <vector>

namespace {

using Payloads = std::vector<void*>;

PoolSlot* slotOf(void* payload) { return static_cast<PoolSlot*>(payload) - 1; }

PoolBlock* blockOf(void* payload) { return slotOf(payload)->owner; }

char* firstSlotOf(PoolBlock* block) { return reinterpret_cast<char*>(block + 1); }

class PoolTest : public RuntimeTest {
protected:
    // Every slot that the pool's blocks can give, and so many more.
    static Payloads take(BlockPool* pool, int64_t count) {
        Payloads payloads;
        for (int64_t n = 0; n < count; ++n)
            payloads.push_back(Pool_Alloc(pool));
        return payloads;
    }

    BlockPool* pool = Pool_New(24, 16, 65536); // slots of 32 bytes
};

// --- Records ---

TEST(BlockPoolRecords, HoldTheirFieldsInOrder) {
    EXPECT_EQ(offsetof(BlockPool, fullBlocks), 0u);
    EXPECT_EQ(offsetof(BlockPool, openBlocks), 8u);
    EXPECT_EQ(offsetof(BlockPool, totalSlots), 16u);
    EXPECT_EQ(offsetof(BlockPool, slotSize), 24u);
    EXPECT_EQ(offsetof(BlockPool, minBlock), 28u);
    EXPECT_EQ(offsetof(BlockPool, maxBlock), 32u);
    EXPECT_EQ(sizeof(BlockPool), 40u);
    EXPECT_EQ(sizeof(BlockPool::totalSlots), 8u);
    EXPECT_EQ(sizeof(BlockPool::maxBlock), 4u);
    EXPECT_EQ(offsetof(PoolBlock, next), 0u);
    EXPECT_EQ(offsetof(PoolBlock, prev), 8u);
    EXPECT_EQ(offsetof(PoolBlock, freeHead), 16u);
    EXPECT_EQ(offsetof(PoolBlock, capacity), 24u);
    EXPECT_EQ(offsetof(PoolBlock, used), 28u);
    EXPECT_EQ(offsetof(PoolBlock, freeCount), 32u);
    EXPECT_EQ(sizeof(PoolBlock::freeCount), 4u);
    EXPECT_EQ(sizeof(PoolBlock), 40u);
    EXPECT_EQ(sizeof(PoolSlot), 8u);
}

// --- New ---

using PoolNew = PoolTest;

TEST_F(PoolNew, MakesAHeaderWithoutBlocks) {
    HeapRecorder calls;
    BlockPool* const made = Pool_New(24, 16, 65536);
    EXPECT_TRUE(calls.match("HeapAlloc(general, 8, 40) -> block1"));
    EXPECT_EQ(made->fullBlocks, nullptr);
    EXPECT_EQ(made->openBlocks, nullptr);
    EXPECT_EQ(made->totalSlots, 0);
    EXPECT_EQ(made->slotSize, 32);
    EXPECT_EQ(made->minBlock, 16);
    EXPECT_EQ(made->maxBlock, 65536);
}

TEST_F(PoolNew, RoundsTheSlotUpToEightBytes) {
    const std::pair<int32_t, int32_t> sizes[] = {{0, 8},   {1, 16},  {8, 16}, {9, 24},
                                                 {24, 32}, {25, 40}, {32, 40}};
    for (const auto& [element, slot] : sizes)
        EXPECT_EQ(Pool_New(element, 16, 65536)->slotSize, slot) << element;
}

TEST_F(PoolNew, GivesNullWhenTheHeapIsExhausted) {
    HeapRecorder calls;
    calls.fail("HeapAlloc", 1, 0);
    EXPECT_EQ(Pool_New(24, 16, 65536), nullptr);
}

// --- Alloc ---

using PoolAlloc = PoolTest;

TEST_F(PoolAlloc, MakesTheFirstBlockOfTheMinimum) {
    HeapRecorder calls;
    void* const payload = Pool_Alloc(pool);
    EXPECT_TRUE(calls.match("HeapAlloc(general, 0, 552) -> block1")) << "40 and 16 slots of 32";
    PoolBlock* const block = pool->openBlocks;
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(reinterpret_cast<char*>(slotOf(payload)), firstSlotOf(block));
    EXPECT_EQ(blockOf(payload), block);
    EXPECT_EQ(block->capacity, 16);
    EXPECT_EQ(block->used, 1);
    EXPECT_EQ(block->freeCount, 0);
    EXPECT_EQ(block->freeHead, nullptr);
    EXPECT_EQ(block->next, nullptr);
    EXPECT_EQ(block->prev, nullptr);
    EXPECT_EQ(pool->totalSlots, 16);
    EXPECT_EQ(pool->fullBlocks, nullptr);
}

TEST_F(PoolAlloc, GivesTheTailsSlotsInOrderWithoutAHeapCall) {
    char* const first = static_cast<char*>(Pool_Alloc(pool));
    HeapRecorder calls;
    const Payloads rest = take(pool, 15);
    for (size_t n = 0; n < rest.size(); ++n) {
        EXPECT_EQ(rest[n], first + 32 * (n + 1));
        EXPECT_EQ(blockOf(rest[n]), blockOf(first));
    }
    EXPECT_TRUE(calls.match(""));
}

TEST_F(PoolAlloc, MovesABlockToTheFullOnesWithItsLastSlot) {
    PoolBlock* const block = blockOf(take(pool, 15).back());
    EXPECT_EQ(pool->openBlocks, block);
    EXPECT_EQ(pool->fullBlocks, nullptr);
    Pool_Alloc(pool);
    EXPECT_EQ(pool->openBlocks, nullptr);
    EXPECT_EQ(pool->fullBlocks, block);
    EXPECT_EQ(block->used, 16);
}

TEST_F(PoolAlloc, PutsEachFullBlockAtTheHeadOfTheFullOnes) {
    PoolBlock* const first = blockOf(take(pool, 16).back());
    PoolBlock* const second = blockOf(take(pool, 16).back());
    PoolBlock* const third = blockOf(take(pool, 16).back());
    EXPECT_EQ(pool->fullBlocks, third);
    EXPECT_EQ(third->prev, nullptr);
    EXPECT_EQ(third->next, second);
    EXPECT_EQ(second->prev, third);
    EXPECT_EQ(second->next, first);
    EXPECT_EQ(first->prev, second);
    EXPECT_EQ(first->next, nullptr);
    EXPECT_EQ(pool->totalSlots, 48);
}

TEST_F(PoolAlloc, TakesFreedSlotsFirstAndTheLastFreedOfThem) {
    const Payloads payloads = take(pool, 4);
    Pool_Free(pool, payloads[1]);
    Pool_Free(pool, payloads[3]);
    EXPECT_EQ(Pool_Alloc(pool), payloads[3]);
    EXPECT_EQ(pool->openBlocks->freeCount, 1);
    EXPECT_EQ(Pool_Alloc(pool), payloads[1]);
    EXPECT_EQ(pool->openBlocks->freeCount, 0);
    EXPECT_EQ(pool->openBlocks->freeHead, nullptr);
    EXPECT_EQ(pool->openBlocks->used, 4);
    EXPECT_EQ(blockOf(payloads[1]), pool->openBlocks);
    EXPECT_EQ(Pool_Alloc(pool), static_cast<char*>(payloads[3]) + 32);
}

TEST_F(PoolAlloc, MovesABlockToTheFullOnesWithItsLastFreedSlot) {
    const Payloads payloads = take(pool, 16);
    PoolBlock* const block = blockOf(payloads[0]);
    Pool_Free(pool, payloads[5]);
    Pool_Free(pool, payloads[6]);
    Pool_Alloc(pool);
    EXPECT_EQ(pool->openBlocks, block);
    Pool_Alloc(pool);
    EXPECT_EQ(pool->openBlocks, nullptr);
    EXPECT_EQ(pool->fullBlocks, block);
}

TEST_F(PoolAlloc, UsesTheFirstOpenBlock) {
    const Payloads first = take(pool, 16);
    const Payloads second = take(pool, 16);
    Pool_Free(pool, first[2]);
    Pool_Free(pool, second[3]);
    EXPECT_EQ(Pool_Alloc(pool), second[3]);
    EXPECT_EQ(pool->openBlocks, blockOf(first[0]));
    EXPECT_EQ(pool->openBlocks->prev, nullptr);
    EXPECT_EQ(Pool_Alloc(pool), first[2]);
}

TEST_F(PoolAlloc, GrowsByASixteenthInMultiplesOfSixteen) {
    const std::pair<int64_t, int32_t> growth[] = {
        {16, 16},           {496, 16},  {511, 16},         {512, 32},           {767, 32},
        {768, 48},          {1024, 64}, {16 * 1008, 1008}, {16 * 65535, 65520}, {16 * 65536, 65536},
        {16 * 65552, 65536}};
    for (const auto& [total, slots] : growth) {
        BlockPool* const grown = Pool_New(1, 16, 65536);
        grown->totalSlots = total;
        EXPECT_EQ(blockOf(Pool_Alloc(grown))->capacity, slots) << total;
        EXPECT_EQ(grown->totalSlots, total + slots);
    }
}

TEST_F(PoolAlloc, CutsTheSixteenthTo32Bits) {
    pool->totalSlots = (int64_t{1} << 36) + 1024; // a sixteenth of 2 to the 32nd, and 64
    EXPECT_EQ(blockOf(Pool_Alloc(pool))->capacity, 64);
    BlockPool* const huge = Pool_New(24, 16, 65536);
    huge->totalSlots = int64_t{1} << 35; // a sixteenth is negative in 32 bits
    EXPECT_EQ(blockOf(Pool_Alloc(huge))->capacity, 16);
}

TEST_F(PoolAlloc, HoldsBlocksOf16Until512AndOf32Until768) {
    take(pool, 512);
    EXPECT_EQ(pool->totalSlots, 512);
    EXPECT_EQ(blockOf(Pool_Alloc(pool))->capacity, 32);
    take(pool, 768 - 513);
    EXPECT_EQ(pool->totalSlots, 768);
    EXPECT_EQ(blockOf(Pool_Alloc(pool))->capacity, 48);
}

TEST_F(PoolAlloc, KeepsToItsOwnMinimumAndMaximum) {
    BlockPool* const small = Pool_New(24, 4, 20);
    EXPECT_EQ(blockOf(Pool_Alloc(small))->capacity, 4);
    BlockPool* const large = Pool_New(24, 4, 20);
    large->totalSlots = 10000;
    EXPECT_EQ(blockOf(Pool_Alloc(large))->capacity, 20);
}

TEST_F(PoolAlloc, PutsABlockOfTwoSlotsAmongTheOpenOnes) {
    BlockPool* const tiny = Pool_New(24, 2, 2);
    PoolBlock* const two = blockOf(Pool_Alloc(tiny));
    EXPECT_EQ(tiny->openBlocks, two);
    EXPECT_EQ(tiny->fullBlocks, nullptr);
    BlockPool* const single = Pool_New(24, 1, 1);
    PoolBlock* const one = blockOf(Pool_Alloc(single));
    EXPECT_EQ(single->openBlocks, nullptr);
    EXPECT_EQ(single->fullBlocks, one);
}

TEST_F(PoolAlloc, RetriesWithASingleSlotWhenTheHeapRefusesABlock) {
    HeapRecorder calls;
    calls.fail("HeapAlloc", 1, 0);
    void* const payload = Pool_Alloc(pool);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 552) -> null
        HeapAlloc(general, 0, 72) -> block1
    )"));
    EXPECT_EQ(pool->openBlocks, nullptr);
    ASSERT_NE(pool->fullBlocks, nullptr);
    EXPECT_EQ(pool->fullBlocks->capacity, 1);
    EXPECT_EQ(pool->fullBlocks->used, 1);
    EXPECT_EQ(pool->fullBlocks->freeCount, 0);
    EXPECT_EQ(pool->fullBlocks->freeHead, nullptr);
    EXPECT_EQ(blockOf(payload), pool->fullBlocks);
    EXPECT_EQ(pool->totalSlots, 1);
}

TEST_F(PoolAlloc, GivesNullWhenEvenASingleSlotIsRefused) {
    HeapRecorder calls;
    calls.failAlways("HeapAlloc", 0);
    EXPECT_EQ(Pool_Alloc(pool), nullptr);
    EXPECT_EQ(calls.uses("HeapAlloc"), 2);
    EXPECT_EQ(pool->totalSlots, 0);
    EXPECT_EQ(pool->openBlocks, nullptr);
    EXPECT_EQ(pool->fullBlocks, nullptr);
}

using PoolAllocZeroed = PoolTest;

TEST_F(PoolAllocZeroed, ClearsThePayloadAndKeepsItsNeighbours) {
    const Payloads payloads = take(pool, 3);
    for (void* payload : payloads)
        memset(payload, 'x', 24);
    Pool_Free(pool, payloads[1]);
    auto* const payload = static_cast<char*>(Pool_AllocZeroed(pool));
    ASSERT_EQ(payload, payloads[1]);
    EXPECT_EQ(std::string(payload, 24), std::string(24, '\0'));
    EXPECT_EQ(blockOf(payload), pool->openBlocks);
    EXPECT_EQ(blockOf(payloads[2]), pool->openBlocks);
    EXPECT_EQ(std::string(static_cast<char*>(payloads[2]), 24), std::string(24, 'x'));
}

TEST_F(PoolAllocZeroed, ClearsTheRoundedPart) {
    BlockPool* const odd = Pool_New(1, 16, 65536); // slots of 16: 8 bytes of payload
    auto* const first = static_cast<char*>(Pool_Alloc(odd));
    auto* const second = static_cast<char*>(Pool_Alloc(odd));
    memset(second, 'x', 8);
    Pool_Free(odd, second);
    EXPECT_EQ(Pool_AllocZeroed(odd), second);
    EXPECT_EQ(std::string(second, 8), std::string(8, '\0'));
    EXPECT_EQ(second - first, 16);
}

TEST_F(PoolAllocZeroed, GivesNullWhenTheHeapIsExhausted) {
    HeapRecorder calls;
    calls.failAlways("HeapAlloc", 0);
    EXPECT_EQ(Pool_AllocZeroed(pool), nullptr);
}

// --- Free ---

using PoolFree = PoolTest;

TEST_F(PoolFree, LinksTheSlotAtTheHeadOfTheFreeChain) {
    const Payloads payloads = take(pool, 3);
    Pool_Free(pool, payloads[0]);
    EXPECT_EQ(pool->openBlocks->freeHead, slotOf(payloads[0]));
    EXPECT_EQ(slotOf(payloads[0])->nextFree, nullptr);
    EXPECT_EQ(pool->openBlocks->freeCount, 1);
    Pool_Free(pool, payloads[2]);
    EXPECT_EQ(pool->openBlocks->freeHead, slotOf(payloads[2]));
    EXPECT_EQ(slotOf(payloads[2])->nextFree, slotOf(payloads[0]));
    EXPECT_EQ(pool->openBlocks->freeCount, 2);
    EXPECT_EQ(pool->openBlocks->used, 3);
}

TEST_F(PoolFree, MakesNoHeapCallWhileTheBlockHoldsSomething) {
    const Payloads payloads = take(pool, 3);
    HeapRecorder calls;
    Pool_Free(pool, payloads[0]);
    Pool_Free(pool, payloads[1]);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(pool->totalSlots, 16);
}

TEST_F(PoolFree, GivesABlockBackWithItsLastSlotAlthoughItsTailWasNeverUsed) {
    const Payloads payloads = take(pool, 2);
    HeapRecorder calls;
    calls.name(pool->openBlocks, "block");
    Pool_Free(pool, payloads[0]);
    Pool_Free(pool, payloads[1]);
    EXPECT_TRUE(calls.match("HeapFree(general, 0, block) -> 1"));
    EXPECT_EQ(pool->openBlocks, nullptr);
    EXPECT_EQ(pool->totalSlots, 0);
}

TEST_F(PoolFree, SubtractsTheBlocksOwnCapacity) {
    take(pool, 512);
    void* const only = Pool_Alloc(pool);
    EXPECT_EQ(pool->totalSlots, 544);
    Pool_Free(pool, only);
    EXPECT_EQ(pool->totalSlots, 512);
}

TEST_F(PoolFree, MovesAFullBlockToTheHeadOfTheOpenOnes) {
    const Payloads first = take(pool, 16);
    const Payloads second = take(pool, 16);
    const Payloads third = take(pool, 16);
    Pool_Free(pool, first[0]);
    Pool_Free(pool, second[0]);
    EXPECT_EQ(pool->openBlocks, blockOf(second[1]));
    EXPECT_EQ(pool->openBlocks->prev, nullptr);
    EXPECT_EQ(pool->openBlocks->next, blockOf(first[1]));
    EXPECT_EQ(blockOf(first[1])->prev, blockOf(second[1]));
    EXPECT_EQ(blockOf(first[1])->next, nullptr);
    EXPECT_EQ(pool->fullBlocks, blockOf(third[1]));
    EXPECT_EQ(pool->fullBlocks->next, nullptr);
    EXPECT_EQ(pool->fullBlocks->prev, nullptr);
}

TEST_F(PoolFree, TakesABlockOutOfTheMiddleOfTheFullOnes) {
    const Payloads first = take(pool, 16);
    const Payloads second = take(pool, 16);
    const Payloads third = take(pool, 16);
    Pool_Free(pool, second[0]);
    EXPECT_EQ(pool->fullBlocks, blockOf(third[0]));
    EXPECT_EQ(pool->fullBlocks->next, blockOf(first[0]));
    EXPECT_EQ(blockOf(first[0])->prev, blockOf(third[0]));
    EXPECT_EQ(pool->openBlocks, blockOf(second[1]));
    EXPECT_EQ(pool->openBlocks->next, nullptr);
}

TEST_F(PoolFree, LeavesAnOpenBlockWhereItIs) {
    const Payloads first = take(pool, 16);
    const Payloads second = take(pool, 16);
    Pool_Free(pool, first[0]);
    Pool_Free(pool, second[0]);
    Pool_Free(pool, first[1]);
    EXPECT_EQ(pool->openBlocks, blockOf(second[1]));
    EXPECT_EQ(pool->openBlocks->next, blockOf(first[2]));
}

TEST_F(PoolFree, UnlinksAnEmptyBlockFromBetweenTheOpenOnes) {
    Payloads blocks[3];
    for (Payloads& block : blocks)
        block = take(pool, 16);
    for (const Payloads& block : blocks)
        Pool_Free(pool, block[0]);
    PoolBlock* const first = blockOf(blocks[0][1]);
    PoolBlock* const third = blockOf(blocks[2][1]);
    for (size_t n = 1; n < 16; ++n)
        Pool_Free(pool, blocks[1][n]);
    EXPECT_EQ(pool->openBlocks, third);
    EXPECT_EQ(third->next, first);
    EXPECT_EQ(first->prev, third);
    EXPECT_EQ(pool->totalSlots, 32);
}

TEST_F(PoolFree, OfABlockOfOneSlotTakesItFromTheFullOnes) {
    const Payloads full = take(pool, 16);
    HeapRecorder calls;
    calls.fail("HeapAlloc", 1, 0);
    void* const single = Pool_Alloc(pool);
    calls.take();
    Pool_Free(pool, single);
    EXPECT_TRUE(calls.match("HeapFree(general, 0, block1) -> 1"));
    EXPECT_EQ(pool->fullBlocks, blockOf(full[0]));
    EXPECT_EQ(pool->fullBlocks->prev, nullptr);
    EXPECT_EQ(pool->fullBlocks->next, nullptr);
    EXPECT_EQ(pool->openBlocks, nullptr);
    EXPECT_EQ(pool->totalSlots, 16);
}

// --- Clear and delete ---

using PoolClear = PoolTest;

TEST_F(PoolClear, FreesTheOpenBlocksThenTheFullOnes) {
    PoolBlock* const full = blockOf(take(pool, 16)[0]);
    PoolBlock* const other = blockOf(take(pool, 16)[0]);
    PoolBlock* const open = blockOf(Pool_Alloc(pool));
    HeapRecorder calls;
    calls.name(full, "full");
    calls.name(other, "other");
    calls.name(open, "open");
    Pool_Clear(pool);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, 0, open) -> 1
        HeapFree(general, 0, other) -> 1
        HeapFree(general, 0, full) -> 1
    )"));
    EXPECT_EQ(pool->openBlocks, nullptr);
    EXPECT_EQ(pool->fullBlocks, nullptr);
    EXPECT_EQ(pool->totalSlots, 0);
}

TEST_F(PoolClear, LeavesAUsablePool) {
    take(pool, 20);
    Pool_Clear(pool);
    EXPECT_EQ(blockOf(Pool_Alloc(pool))->capacity, 16);
    EXPECT_EQ(pool->totalSlots, 16);
}

using PoolDelete = PoolTest;

TEST_F(PoolDelete, FreesTheBlocksThenTheHeader) {
    PoolBlock* const block = blockOf(Pool_Alloc(pool));
    HeapRecorder calls;
    calls.name(block, "block");
    calls.name(pool, "pool");
    Pool_Delete(pool);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, 0, block) -> 1
        HeapFree(general, 0, pool) -> 1
    )"));
}

TEST_F(PoolDelete, LeavesNothingOnTheHeapAfterAnyMixOfUse) {
    HeapRecorder calls;
    BlockPool* const made = Pool_New(24, 16, 65536);
    const Payloads payloads = take(made, 100);
    for (size_t n = 0; n < 100; n += 3)
        Pool_Free(made, payloads[n]);
    take(made, 50);
    Pool_Delete(made);
    EXPECT_EQ(calls.live("block"), 0u);
}

} // namespace
