// A slot allocator: slots of one size out of blocks that grow with the pool, so that many small
// elements cost few heap calls. Blocks come from the GeneralHeap. One thread.
#pragma once

#include <cstdint>

struct PoolBlock;

// In front of every payload: the slot's block. While the slot is free, the link of the free chain.
union PoolSlot {
    PoolBlock* owner;
    PoolSlot* nextFree;
};

struct PoolBlock {
    PoolBlock* next;
    PoolBlock* prev;
    PoolSlot* freeHead; // first slot that came back
    int32_t capacity;   // slots in this block
    int32_t used;       // slots ever handed out of the tail
    int32_t freeCount;  // slots on the free chain
};
static_assert(sizeof(PoolBlock) == 40);

struct BlockPool {
    PoolBlock* fullBlocks; // blocks with no slot to give
    PoolBlock* openBlocks; // blocks that can give one
    int64_t totalSlots;    // slots in all blocks
    int32_t slotSize;      // payload and owner, a multiple of 8 bytes
    int32_t minBlock;      // slots in a new block, at least
    int32_t maxBlock;      // and at most
};
static_assert(sizeof(BlockPool) == 40);

// A pool without blocks; null if the heap is exhausted.
BlockPool* Pool_New(int32_t elementSize, int32_t minBlock, int32_t maxBlock);

// A payload of undefined content.
void* Pool_Alloc(BlockPool* pool);
void* Pool_AllocZeroed(BlockPool* pool);

// A block goes back to the heap as soon as all slots handed out of it have come back.
void Pool_Free(BlockPool* pool, void* payload);

// Frees every block; the pool stays usable.
void Pool_Clear(BlockPool* pool);
void Pool_Delete(BlockPool* pool);
