#include "runtime/linked_list.h"

#include "runtime/program.h"

#include <cstring>
#include <windows.h>

namespace {

ListElement* walkForward(ListElement* element, int64_t steps) {
    for (; element && steps > 0; --steps)
        element = element->next;
    return element;
}

ListElement* walkBackward(ListElement* element, int64_t steps) {
    for (; element && steps > 0; --steps)
        element = element->prev;
    return element;
}

ListElement* walkFromLast(const LinkedList* list, int64_t index) {
    return walkBackward(list->last, list->count - index - 1);
}

ListElement* findFromEnds(const LinkedList* list, int64_t index) {
    return index < list->count / 2 ? walkForward(list->first, index) : walkFromLast(list, index);
}

// The nearest of first, current and last; a tie goes to the end of the list.
ListElement* findFromNearest(const LinkedList* list, int64_t old, int64_t index) {
    if (index > old)
        return index - old < list->count - index ? walkForward(list->current, index - old)
                                                 : walkFromLast(list, index);
    return old - index < index ? walkBackward(list->current, old - index)
                               : walkForward(list->first, index);
}

void setCurrent(LinkedList* list, ListElement* element) {
    list->current = element;
    *list->currentVar = element;
    list->noCurrent = element ? 0 : 1;
}

void linkAtHead(LinkedList* list, ListElement* element) {
    element->next = list->first;
    if (list->first)
        list->first->prev = element;
    list->currentIndex = 0;
}

void linkBehindCurrent(LinkedList* list, ListElement* element) {
    element->prev = list->current;
    element->next = list->current->next;
    if (element->next)
        element->next->prev = element;
    list->current->next = element;
    ++list->currentIndex;
}

} // namespace

LinkedList* List_New(int32_t payloadSize, ListElement** currentVar, const FieldMap* fieldMap,
                     int32_t typeCode) {
    auto* list = static_cast<LinkedList*>(HeapAlloc(GeneralHeap, 0, sizeof(LinkedList)));
    list->first = nullptr;
    list->last = nullptr;
    list->current = nullptr;
    list->currentVar = currentVar;
    list->count = 0;
    list->fieldMap = fieldMap;
    list->elementSize = payloadSize + static_cast<int32_t>(sizeof(ListElement));
    list->pool = Pool_New(list->elementSize, 16, 65536);
    list->noCurrent = 1;
    list->typeCode = typeCode;
    return list;
}

void* List_AddElement(LinkedList* list) {
    auto* element = static_cast<ListElement*>(Pool_Alloc(list->pool));
    std::memset(static_cast<void*>(element), 0, static_cast<size_t>(list->elementSize));
    ++list->count;
    if (list->current)
        linkBehindCurrent(list, element);
    else
        linkAtHead(list, element);
    if (!element->prev)
        list->first = element;
    if (!element->next)
        list->last = element;
    setCurrent(list, element);
    return element + 1;
}

void* List_SelectElement(LinkedList* list, int64_t index) {
    const int64_t old = list->currentIndex;
    list->currentIndex = index; // kept even if there is no such element
    ListElement* element = nullptr;
    if (index >= 0 && index < list->count)
        element = list->noCurrent ? findFromEnds(list, index) : findFromNearest(list, old, index);
    setCurrent(list, element);
    return element ? element + 1 : nullptr;
}

void List_Clear(LinkedList* list) {
    if (list->fieldMap)
        for (ListElement* element = list->first; element; element = element->next)
            Record_FreeStrings(element + 1, list->fieldMap);
    Pool_Clear(list->pool);
    setCurrent(list, nullptr);
    list->first = nullptr;
    list->last = nullptr;
    list->count = 0;
}

void List_Free(LinkedList* list) {
    if (!list)
        return;
    List_Clear(list);
    Pool_Delete(list->pool);
    HeapFree(GeneralHeap, 0, list);
}
