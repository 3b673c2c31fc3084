// A dimensioned array is a zeroed block of fixed-size records behind a header. Its variable points
// at row 0, so that a row is reached by plain indexing; the header lies in front of that address.
// A FieldMap names a record's text fields; arrays and lists free their strings by it.
#pragma once

#include <cstdint>

// One word of a field map. A map is read in order: 0 or above is the byte offset of a text in the
// record; FieldMap_Array is followed by 4 words (element count, byte offset of the first element,
// byte stride, address of the elements' map); FieldMap_End ends it.
using FieldMap = int64_t;
constexpr FieldMap FieldMap_End = -1;
constexpr FieldMap FieldMap_Array = -2;

struct ArrayHeader {
    int32_t Dimensions; // always 1; not read
    int64_t ElementSize;
    const ::FieldMap* FieldMap; // or null for records without texts
    void* Owner;                // address of the array's variable; not read
    int64_t UpperBound;         // the highest index
    int32_t ElementType;        // not read
};
static_assert(sizeof(ArrayHeader) == 48);

// Row 0 of upperBound + 1 zeroed rows, or null when memory is exhausted. The caller stores the
// result in the variable whose address it hands over.
void* Array_New(int32_t elementSize, int32_t upperBound, int32_t elementType,
                const FieldMap* fieldMap, void* owner);

// Frees the rows' texts, but for those of the last row, and the block. Null does nothing.
void Array_Free(void* array);

// Frees the block alone. Null does nothing.
void Array_Release(void* array);

// Frees the texts that the map names; the record's pointers are not cleared.
void Record_FreeStrings(void* record, const FieldMap* map);
