#include "runtime/block_pool.h"

#include "runtime/program.h"

#include <cstring>
#include <windows.h>

namespace {

PoolSlot* slotAt(const BlockPool* pool, PoolBlock* block, int32_t index) {
    char* slots = reinterpret_cast<char*>(block + 1);
    return reinterpret_cast<PoolSlot*>(slots + static_cast<int64_t>(index) * pool->slotSize);
}

void pushBlock(PoolBlock** head, PoolBlock* block) {
    block->prev = nullptr;
    block->next = *head;
    if (*head)
        (*head)->prev = block;
    *head = block;
}

void unlinkBlock(PoolBlock** head, PoolBlock* block) {
    if (*head == block)
        *head = block->next;
    else
        block->prev->next = block->next;
    if (block->next)
        block->next->prev = block->prev;
}

bool isExhausted(const PoolBlock* block) {
    return block->freeCount == 0 && block->used >= block->capacity;
}

// A sixteenth of what the pool holds, in multiples of 16 slots.
int32_t nextBlockCapacity(const BlockPool* pool) {
    const int32_t slots = static_cast<int32_t>(pool->totalSlots >> 4) & ~15;
    if (slots < pool->minBlock)
        return pool->minBlock;
    return slots > pool->maxBlock ? pool->maxBlock : slots;
}

PoolBlock* allocateBlock(const BlockPool* pool, int32_t capacity) {
    const int64_t size =
        static_cast<int64_t>(sizeof(PoolBlock)) + static_cast<int64_t>(capacity) * pool->slotSize;
    auto* block = static_cast<PoolBlock*>(HeapAlloc(GeneralHeap, 0, static_cast<SIZE_T>(size)));
    if (block)
        block->capacity = capacity;
    return block;
}

// A new block whose first slot is taken already.
PoolBlock* addBlock(BlockPool* pool) {
    PoolBlock* block = allocateBlock(pool, nextBlockCapacity(pool));
    if (!block)
        block = allocateBlock(pool, 1);
    if (!block)
        return nullptr;
    pool->totalSlots += block->capacity;
    block->used = 1;
    block->freeCount = 0;
    block->freeHead = nullptr;
    pushBlock(block->capacity > 1 ? &pool->openBlocks : &pool->fullBlocks, block);
    return block;
}

PoolSlot* takeSlot(const BlockPool* pool, PoolBlock* block) {
    if (block->freeCount == 0)
        return slotAt(pool, block, block->used++);
    PoolSlot* slot = block->freeHead;
    block->freeHead = slot->nextFree;
    --block->freeCount;
    return slot;
}

PoolSlot* takeFromOpen(BlockPool* pool, PoolBlock* block) {
    PoolSlot* slot = takeSlot(pool, block);
    if (isExhausted(block)) {
        unlinkBlock(&pool->openBlocks, block);
        pushBlock(&pool->fullBlocks, block);
    }
    return slot;
}

void freeBlocks(PoolBlock** head) {
    while (PoolBlock* block = *head) {
        *head = block->next;
        HeapFree(GeneralHeap, 0, block);
    }
}

} // namespace

BlockPool* Pool_New(int32_t elementSize, int32_t minBlock, int32_t maxBlock) {
    auto* pool =
        static_cast<BlockPool*>(HeapAlloc(GeneralHeap, HEAP_ZERO_MEMORY, sizeof(BlockPool)));
    if (!pool)
        return nullptr;
    pool->slotSize = (elementSize + 8 + 7) & ~7;
    pool->minBlock = minBlock;
    pool->maxBlock = maxBlock;
    return pool;
}

void* Pool_Alloc(BlockPool* pool) {
    PoolBlock* block = pool->openBlocks;
    PoolSlot* slot;
    if (block) {
        slot = takeFromOpen(pool, block);
    } else {
        block = addBlock(pool);
        if (!block)
            return nullptr;
        slot = slotAt(pool, block, 0);
    }
    slot->owner = block;
    return slot + 1;
}

void* Pool_AllocZeroed(BlockPool* pool) {
    void* payload = Pool_Alloc(pool);
    if (payload)
        std::memset(payload, 0, static_cast<size_t>(pool->slotSize) - sizeof(PoolSlot));
    return payload;
}

void Pool_Free(BlockPool* pool, void* payload) {
    PoolSlot* slot = static_cast<PoolSlot*>(payload) - 1;
    PoolBlock* block = slot->owner;
    const bool wasFull = isExhausted(block);
    slot->nextFree = block->freeHead;
    block->freeHead = slot;
    ++block->freeCount;
    // A block of a single slot goes from full to empty in one step, so it still stands among the
    // full ones here.
    PoolBlock** list = wasFull ? &pool->fullBlocks : &pool->openBlocks;
    if (block->freeCount == block->used) {
        unlinkBlock(list, block);
        pool->totalSlots -= block->capacity;
        HeapFree(GeneralHeap, 0, block);
    } else if (wasFull) {
        unlinkBlock(list, block);
        pushBlock(&pool->openBlocks, block);
    }
}

void Pool_Clear(BlockPool* pool) {
    freeBlocks(&pool->openBlocks);
    freeBlocks(&pool->fullBlocks);
    pool->totalSlots = 0;
}

void Pool_Delete(BlockPool* pool) {
    Pool_Clear(pool);
    HeapFree(GeneralHeap, 0, pool);
}
