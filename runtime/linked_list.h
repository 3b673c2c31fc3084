// A doubly linked list of fixed-size records with a current element. Adding happens behind the
// current element, selecting by index walks from wherever is nearest, and the current element's
// address is mirrored into a variable of the program, which finds the payload behind the links.
//
// The list owns its elements and their texts. One thread; failed allocations are not noticed.
#pragma once

#include "runtime/array.h"
#include "runtime/block_pool.h"

#include <cstdint>

// The links in front of every payload.
struct ListElement {
    ListElement* next;
    ListElement* prev;
};

struct LinkedList {
    ListElement* first;
    ListElement* last;
    ListElement* current;
    ListElement** currentVar; // receives `current` each time that it changes
    int64_t count;
    int64_t currentIndex; // means something only while noCurrent is 0
    const FieldMap* fieldMap;
    BlockPool* pool;
    int32_t elementSize; // payload and links
    int32_t noCurrent;   // 1 when there is no current element
    int32_t typeCode;    // not read
};
static_assert(sizeof(LinkedList) == 80);

// An empty list. `fieldMap` names the payload's texts and may be null.
LinkedList* List_New(int32_t payloadSize, ListElement** currentVar, const FieldMap* fieldMap,
                     int32_t typeCode);

// The zeroed payload of a new element, which is now current: behind the old current element, or at
// the head if there was none.
void* List_AddElement(LinkedList* list);

// The payload of the element at `index`, now current. Null, and no current element, for an index
// that is not there.
void* List_SelectElement(LinkedList* list, int64_t index);

// Frees all elements and their texts; the list stays usable.
void List_Clear(LinkedList* list);

// Null does nothing.
void List_Free(LinkedList* list);
