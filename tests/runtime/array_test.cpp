#include "runtime/array.h"

#include "tests/support/import_swap.h"
#include "tests/support/runtime_fixture.h"

#include <cstddef>
#include <cstdlib>
#include <vector>

namespace {

struct Row {
    int64_t number;
    char* first;
    char* second;
};

constexpr FieldMap bothTexts[] = {offsetof(Row, first), offsetof(Row, second), FieldMap_End};

ArrayHeader* headerOf(void* array) { return static_cast<ArrayHeader*>(array) - 1; }

char* newText(const char* text) {
    TextVariable variable = nullptr;
    Text_Assign(&variable, text);
    return variable;
}

// Counts what the code under test asks of the C library's allocator, and can let it fail. The
// counts can still be read after its end.
class MallocWatch {
public:
    MallocWatch() {
        mallocs = 0;
        frees = 0;
        isExhausted = false;
        isCounting = true;
    }
    ~MallocWatch() { isCounting = false; }

    static inline int mallocs;
    static inline int frees;
    static inline size_t lastSize;
    static inline void* lastFreed;
    static inline bool isExhausted;

private:
    // Blocks come filled, so that what is not written shows.
    static void* allocate(size_t size) {
        if (!isCounting)
            return realMalloc(size);
        ++mallocs;
        lastSize = size;
        void* const block = isExhausted ? nullptr : realMalloc(size);
        return block ? memset(block, 0xCC, size) : nullptr;
    }
    static void release(void* block) {
        if (isCounting) {
            ++frees;
            lastFreed = block;
        }
        realFree(block);
    }

    static inline bool isCounting = false;
    static inline void* (*realMalloc)(size_t);
    static inline void (*realFree)(void*);

    ImportSwap<void*(size_t)> mallocSwap{"malloc", allocate, realMalloc};
    ImportSwap<void(void*)> freeSwap{"free", release, realFree};
};

TEST(ArrayHeader, HoldsItsFieldsInOrder) {
    EXPECT_EQ(offsetof(ArrayHeader, Dimensions), 0u);
    EXPECT_EQ(offsetof(ArrayHeader, ElementSize), 8u);
    EXPECT_EQ(offsetof(ArrayHeader, FieldMap), 16u);
    EXPECT_EQ(offsetof(ArrayHeader, Owner), 24u);
    EXPECT_EQ(offsetof(ArrayHeader, UpperBound), 32u);
    EXPECT_EQ(offsetof(ArrayHeader, ElementType), 40u);
    EXPECT_EQ(sizeof(ArrayHeader), 48u);
    EXPECT_EQ(sizeof(ArrayHeader::Dimensions), 4u);
    EXPECT_EQ(sizeof(ArrayHeader::ElementSize), 8u);
    EXPECT_EQ(sizeof(ArrayHeader::UpperBound), 8u);
    EXPECT_EQ(sizeof(ArrayHeader::ElementType), 4u);
}

TEST(FieldMap, IsMadeOf64BitWords) {
    EXPECT_EQ(sizeof(FieldMap), 8u);
    EXPECT_EQ(FieldMap_End, -1);
    EXPECT_EQ(FieldMap_Array, -2);
}

// --- New ---

TEST(ArrayNew, PutsTheHeaderInFrontOfTheRows) {
    void* owner = nullptr;
    void* const array = Array_New(28, 31, 7, bothTexts, &owner);
    EXPECT_EQ(headerOf(array)->Dimensions, 1);
    EXPECT_EQ(headerOf(array)->ElementSize, 28);
    EXPECT_EQ(headerOf(array)->FieldMap, bothTexts);
    EXPECT_EQ(headerOf(array)->Owner, &owner);
    EXPECT_EQ(headerOf(array)->UpperBound, 31);
    EXPECT_EQ(headerOf(array)->ElementType, 7);
    EXPECT_EQ(owner, nullptr) << "the caller stores the result";
    Array_Release(array);
}

TEST(ArrayNew, TakesOneBlockOfTheCLibrary) {
    void* array;
    {
        const MallocWatch watch;
        array = Array_New(28, 31, 7, nullptr, nullptr);
    }
    EXPECT_EQ(MallocWatch::mallocs, 1);
    EXPECT_EQ(MallocWatch::lastSize, 32u * 28 + 48);
    Array_Release(array);
}

TEST(ArrayNew, GivesZeroedRowsUpToTheBound) {
    void* array;
    {
        const MallocWatch watch;
        array = Array_New(24, 31, 7, nullptr, nullptr);
    }
    EXPECT_EQ(std::string(static_cast<char*>(array), 32 * 24), std::string(32 * 24, '\0'));
    Array_Release(array);
}

TEST(ArrayNew, GivesNullWhenMemoryIsExhausted) {
    const MallocWatch watch;
    MallocWatch::isExhausted = true;
    EXPECT_EQ(Array_New(24, 31, 7, nullptr, nullptr), nullptr);
}

TEST(ArrayNew, OfBoundZeroHasOneRow) {
    void* array;
    {
        const MallocWatch watch;
        array = Array_New(24, 0, 7, nullptr, nullptr);
    }
    EXPECT_EQ(MallocWatch::lastSize, 72u);
    Array_Release(array);
}

// --- Free ---

class ArrayFree : public RuntimeTest {
protected:
    Row* newRows(int32_t upperBound, const FieldMap* map) {
        return static_cast<Row*>(Array_New(sizeof(Row), upperBound, 7, map, nullptr));
    }
};

TEST_F(ArrayFree, OfNullDoesNothing) {
    HeapRecorder calls;
    const MallocWatch watch;
    Array_Free(nullptr);
    EXPECT_EQ(MallocWatch::frees, 0);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ArrayFree, FreesTheTextsOfAllRowsButTheLast) {
    Row* const rows = newRows(31, bothTexts);
    rows[0].first = newText("first row");
    rows[0].second = newText("its other text");
    rows[30].second = newText("row 30");
    rows[31].first = newText("row 31");
    char* const last = rows[31].first;
    HeapRecorder calls;
    calls.name(rows[0].first, "first");
    calls.name(rows[0].second, "second");
    calls.name(rows[30].second, "row30");
    Array_Free(rows);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(text, 1, first) -> 1
        HeapFree(text, 1, second) -> 1
        HeapFree(text, 1, row30) -> 1
    )"));
    EXPECT_STREQ(last, "row 31");
}

TEST_F(ArrayFree, OfASingleRowFreesNoText) {
    Row* const rows = newRows(0, bothTexts);
    rows[0].first = newText("stays");
    HeapRecorder calls;
    Array_Free(rows);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ArrayFree, LooksAtNoRowWithoutAFieldMap) {
    Row* const rows = newRows(3, nullptr);
    rows[0].first = newText("stays");
    HeapRecorder calls;
    Array_Free(rows);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ArrayFree, FreesTheBlockFromItsStart) {
    Row* const rows = newRows(3, nullptr);
    const MallocWatch watch;
    Array_Free(rows);
    EXPECT_EQ(MallocWatch::frees, 1);
    EXPECT_EQ(MallocWatch::lastFreed, headerOf(rows));
}

using ArrayRelease = ArrayFree;

TEST_F(ArrayRelease, FreesTheBlockAlone) {
    Row* const rows = newRows(3, bothTexts);
    rows[0].first = newText("stays");
    HeapRecorder calls;
    const MallocWatch watch;
    Array_Release(rows);
    EXPECT_EQ(MallocWatch::frees, 1);
    EXPECT_EQ(MallocWatch::lastFreed, headerOf(rows));
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ArrayRelease, OfNullDoesNothing) {
    const MallocWatch watch;
    Array_Release(nullptr);
    EXPECT_EQ(MallocWatch::frees, 0);
}

// --- A record's texts ---

using RecordFreeStrings = RuntimeTest;

TEST_F(RecordFreeStrings, FreesTheTextsInTheMapsOrder) {
    const FieldMap backwards[] = {offsetof(Row, second), offsetof(Row, first), FieldMap_End};
    Row row{0, newText("first"), newText("second")};
    HeapRecorder calls;
    calls.name(row.first, "first");
    calls.name(row.second, "second");
    Record_FreeStrings(&row, backwards);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(text, 1, second) -> 1
        HeapFree(text, 1, first) -> 1
    )"));
}

TEST_F(RecordFreeStrings, DoesNotClearThePointers) {
    Row row{0, newText("first"), nullptr};
    char* const before = row.first;
    Record_FreeStrings(&row, bothTexts);
    EXPECT_EQ(row.first, before);
}

TEST_F(RecordFreeStrings, PassesOverNullTexts) {
    Row row{7, nullptr, newText("second")};
    HeapRecorder calls;
    Record_FreeStrings(&row, bothTexts);
    EXPECT_EQ(calls.take().size(), 1u);
    EXPECT_EQ(row.number, 7);
}

TEST_F(RecordFreeStrings, StopsAtTheEndOfTheMap) {
    const FieldMap empty[] = {FieldMap_End, offsetof(Row, first), FieldMap_End};
    Row row{0, newText("stays"), nullptr};
    HeapRecorder calls;
    Record_FreeStrings(&row, empty);
    EXPECT_TRUE(calls.match(""));
}

struct Nested {
    char* before;
    Row elements[3];
    char* after;
};

constexpr int64_t nestedOffset = offsetof(Nested, elements);

Nested newNested() {
    Nested record{newText("before"), {}, newText("after")};
    for (Row& element : record.elements)
        element.second = newText("element");
    return record;
}

TEST_F(RecordFreeStrings, FreesTheTextsOfAnEmbeddedArray) {
    const FieldMap map[] = {0,
                            FieldMap_Array,
                            3,
                            nestedOffset,
                            sizeof(Row),
                            reinterpret_cast<int64_t>(bothTexts),
                            offsetof(Nested, after),
                            FieldMap_End};
    Nested record = newNested();
    HeapRecorder calls;
    calls.name(record.before, "before");
    calls.name(record.after, "after");
    calls.name(record.elements[0].second, "e0");
    calls.name(record.elements[1].second, "e1");
    calls.name(record.elements[2].second, "e2");
    Record_FreeStrings(&record, map);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(text, 1, before) -> 1
        HeapFree(text, 1, e0) -> 1
        HeapFree(text, 1, e1) -> 1
        HeapFree(text, 1, e2) -> 1
        HeapFree(text, 1, after) -> 1
    )"));
}

TEST_F(RecordFreeStrings, FreesTheTextsOfArraysWithinArrays) {
    const FieldMap inner[] = {
        FieldMap_Array, 3, nestedOffset, sizeof(Row), reinterpret_cast<int64_t>(bothTexts),
        FieldMap_End};
    const FieldMap outer[] = {
        FieldMap_Array, 2, 0, sizeof(Nested), reinterpret_cast<int64_t>(inner), FieldMap_End};
    Nested records[] = {newNested(), newNested()};
    HeapRecorder calls;
    std::string expected;
    for (Nested& record : records)
        for (const Row& element : record.elements) {
            const std::string name = "text" + std::to_string(expected.size());
            calls.name(element.second, name.c_str());
            expected += "HeapFree(text, 1, " + name + ") -> 1\n";
        }
    Record_FreeStrings(records, outer);
    EXPECT_TRUE(calls.match(expected));
}

TEST_F(RecordFreeStrings, HoldsToTheArraysCountAndStride) {
    const FieldMap map[] = {
        FieldMap_Array, 2, nestedOffset, 2 * sizeof(Row), reinterpret_cast<int64_t>(bothTexts),
        FieldMap_End};
    Nested record = newNested();
    HeapRecorder calls;
    calls.name(record.elements[0].second, "e0");
    calls.name(record.elements[2].second, "e2");
    Record_FreeStrings(&record, map);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(text, 1, e0) -> 1
        HeapFree(text, 1, e2) -> 1
    )"));
}

TEST_F(RecordFreeStrings, SkipsAnArrayOfNoElements) {
    for (int64_t count : {0, -1}) {
        const FieldMap map[] = {FieldMap_Array,
                                count,
                                nestedOffset,
                                sizeof(Row),
                                reinterpret_cast<int64_t>(bothTexts),
                                offsetof(Nested, after),
                                FieldMap_End};
        Nested record = newNested();
        HeapRecorder calls;
        calls.name(record.after, "after");
        Record_FreeStrings(&record, map);
        EXPECT_TRUE(calls.match("HeapFree(text, 1, after) -> 1"));
    }
}

} // namespace
