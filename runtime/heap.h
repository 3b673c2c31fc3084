// The runtime's heap of loose records and the lists that keep them: a loose record is made singly,
// has no number, and is known by its address. A list runs from its newest block to its oldest.
//
// The heap is serialised by the system; the lists are not locked. An exhausted heap is not
// reported.
#pragma once

#include <cstdint>

// The links in front of every loose record. The record follows at once.
struct LooseBlock {
    LooseBlock* older;
    LooseBlock* newer;
};

// Makes LooseHeap and gives it.
void* Heap_SubsystemInit();

// Does nothing: the heaps last as long as the process.
void Heap_SubsystemEnd();

using ObjectRoutine = void (*)(void* object);

// A zeroed object on the GeneralHeap, handed to `initialise` if that is given. The clean-up routine
// is accepted and never called.
void* Heap_NewObject(int32_t size, ObjectRoutine initialise, ObjectRoutine cleanUp);

// A zeroed record at the head of the list. `size` is the record's size and that of the links.
void* LooseList_Alloc(LooseBlock** head, int32_t size);

void LooseList_Free(LooseBlock** head, void* record);
