#include "runtime/array.h"

#include "runtime/text.h"

#include <cstdlib>
#include <cstring>
#include <windows.h>

namespace {

ArrayHeader* headerOf(void* array) { return static_cast<ArrayHeader*>(array) - 1; }

void freeTextAt(const char* field) {
    char* text;
    std::memcpy(static_cast<void*>(&text), field, sizeof text);
    if (text)
        HeapFree(TextHeap, HEAP_NO_SERIALIZE, text);
}

// `words`: element count, offset of the first element, stride, address of the elements' map.
void freeEmbedded(char* record, const FieldMap* words) {
    char* element = record + words[1];
    for (int64_t n = 0; n < words[0]; ++n, element += words[2])
        Record_FreeStrings(element, reinterpret_cast<const FieldMap*>(words[3]));
}

} // namespace

void* Array_New(int32_t elementSize, int32_t upperBound, int32_t elementType,
                const FieldMap* fieldMap, void* owner) {
    const size_t rowBytes =
        (static_cast<size_t>(upperBound) + 1) * static_cast<size_t>(elementSize);
    auto* header = static_cast<ArrayHeader*>(std::malloc(rowBytes + sizeof(ArrayHeader)));
    if (!header)
        return nullptr;
    header->Dimensions = 1;
    header->ElementSize = elementSize;
    header->FieldMap = fieldMap;
    header->Owner = owner;
    header->UpperBound = upperBound;
    header->ElementType = elementType;
    return std::memset(header + 1, 0, rowBytes);
}

void Array_Free(void* array) {
    if (!array)
        return;
    const ArrayHeader* header = headerOf(array);
    if (header->FieldMap) {
        char* row = static_cast<char*>(array);
        // Up to the bound, not through it: texts in the last row are left behind on purpose.
        for (int64_t index = 0; index < header->UpperBound; ++index, row += header->ElementSize)
            Record_FreeStrings(row, header->FieldMap);
    }
    Array_Release(array);
}

void Array_Release(void* array) {
    if (array)
        std::free(headerOf(array));
}

void Record_FreeStrings(void* record, const FieldMap* map) {
    char* fields = static_cast<char*>(record);
    while (*map != FieldMap_End) {
        if (*map == FieldMap_Array) {
            freeEmbedded(fields, map + 1);
            map += 5;
        } else {
            freeTextAt(fields + *map);
            ++map;
        }
    }
}
