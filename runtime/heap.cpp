#include "runtime/heap.h"

#include "runtime/heap_state.h"
#include "runtime/program.h"

namespace {

void unlink(LooseBlock** head, LooseBlock* block) {
    if (block == *head) {
        *head = block->older;
        if (block->older)
            block->older->newer = nullptr;
        return;
    }
    block->newer->older = block->older;
    if (block->older)
        block->older->newer = block->newer;
}

} // namespace

void* Heap_SubsystemInit() {
    LooseHeap = HeapCreate(0, 1024, 0);
    return LooseHeap;
}

void Heap_SubsystemEnd() {}

void* Heap_NewObject(int32_t size, ObjectRoutine initialise, ObjectRoutine) {
    void* object = HeapAlloc(GeneralHeap, HEAP_ZERO_MEMORY, static_cast<SIZE_T>(size));
    if (initialise)
        initialise(object);
    return object;
}

void* LooseList_Alloc(LooseBlock** head, int32_t size) {
    auto* block =
        static_cast<LooseBlock*>(HeapAlloc(LooseHeap, HEAP_ZERO_MEMORY, static_cast<SIZE_T>(size)));
    if (block) {
        block->older = *head;
        if (*head)
            (*head)->newer = block;
        *head = block;
    }
    // Without a block this is the bare size of the links, which no caller tests.
    return reinterpret_cast<void*>(reinterpret_cast<uintptr_t>(block) + sizeof(LooseBlock));
}

void LooseList_Free(LooseBlock** head, void* record) {
    LooseBlock* block = static_cast<LooseBlock*>(record) - 1;
    unlink(head, block);
    HeapFree(LooseHeap, 0, block);
}
