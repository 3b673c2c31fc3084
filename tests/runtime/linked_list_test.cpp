#include "runtime/linked_list.h"

#include "tests/support/runtime_fixture.h"

#include <cstddef>
#include <vector>

namespace {

constexpr FieldMap oneText[] = {0, FieldMap_End};

struct Payload {
    int64_t number;
    int64_t other;
};

Payload* payloadOf(ListElement* element) { return reinterpret_cast<Payload*>(element + 1); }

ListElement* elementOf(void* payload) { return static_cast<ListElement*>(payload) - 1; }

class ListTest : public RuntimeTest {
protected:
    // Elements numbered from 0, the last of them current.
    void fill(int64_t count) {
        for (int64_t n = 0; n < count; ++n)
            add(n);
    }

    ListElement* add(int64_t number) {
        auto* const payload = static_cast<Payload*>(List_AddElement(list));
        payload->number = number;
        return elementOf(payload);
    }

    int64_t select(int64_t index) {
        auto* const payload = static_cast<Payload*>(List_SelectElement(list, index));
        EXPECT_EQ(list->currentIndex, index);
        EXPECT_EQ(list->current, current);
        EXPECT_EQ(payload, payload ? payloadOf(current) : nullptr);
        return payload ? payload->number : -1;
    }

    std::vector<int64_t> numbers() const {
        std::vector<int64_t> found;
        for (ListElement* at = list->first; at; at = at->next)
            found.push_back(payloadOf(at)->number);
        return found;
    }

    std::vector<int64_t> numbersBackwards() const {
        std::vector<int64_t> found;
        for (ListElement* at = list->last; at; at = at->prev)
            found.push_back(payloadOf(at)->number);
        return found;
    }

    ListElement* current = nullptr;
    LinkedList* list = List_New(sizeof(Payload), &current, nullptr, 8);
};

using Numbers = std::vector<int64_t>;

// --- Records ---

TEST(LinkedListRecords, HoldTheirFieldsInOrder) {
    EXPECT_EQ(offsetof(LinkedList, first), 0u);
    EXPECT_EQ(offsetof(LinkedList, last), 8u);
    EXPECT_EQ(offsetof(LinkedList, current), 16u);
    EXPECT_EQ(offsetof(LinkedList, currentVar), 24u);
    EXPECT_EQ(offsetof(LinkedList, count), 32u);
    EXPECT_EQ(offsetof(LinkedList, currentIndex), 40u);
    EXPECT_EQ(offsetof(LinkedList, fieldMap), 48u);
    EXPECT_EQ(offsetof(LinkedList, pool), 56u);
    EXPECT_EQ(offsetof(LinkedList, elementSize), 64u);
    EXPECT_EQ(offsetof(LinkedList, noCurrent), 68u);
    EXPECT_EQ(offsetof(LinkedList, typeCode), 72u);
    EXPECT_EQ(sizeof(LinkedList), 80u);
    EXPECT_EQ(offsetof(ListElement, next), 0u);
    EXPECT_EQ(offsetof(ListElement, prev), 8u);
    EXPECT_EQ(sizeof(ListElement), 16u);
}

// --- New ---

using ListNew = ListTest;

TEST_F(ListNew, MakesAnEmptyListWithAPoolOfItsOwn) {
    ListElement* variable = reinterpret_cast<ListElement*>(this);
    HeapRecorder calls;
    LinkedList* const made = List_New(24, &variable, oneText, 8);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 80) -> block1
        HeapAlloc(general, 8, 40) -> block2
    )"));
    EXPECT_EQ(made->first, nullptr);
    EXPECT_EQ(made->last, nullptr);
    EXPECT_EQ(made->current, nullptr);
    EXPECT_EQ(made->currentVar, &variable);
    EXPECT_EQ(made->count, 0);
    EXPECT_EQ(made->fieldMap, oneText);
    EXPECT_EQ(made->elementSize, 40);
    EXPECT_EQ(made->noCurrent, 1);
    EXPECT_EQ(made->typeCode, 8);
    EXPECT_EQ(made->pool->slotSize, 48);
    EXPECT_EQ(made->pool->minBlock, 16);
    EXPECT_EQ(made->pool->maxBlock, 65536);
    EXPECT_EQ(variable, reinterpret_cast<ListElement*>(this)) << "the variable is left as it is";
}

TEST_F(ListNew, LeavesTheCurrentIndexAsTheBlockHadIt) {
    HeapRecorder calls;
    calls.replace<hook::HeapAlloc>([](HANDLE heap, DWORD flags, SIZE_T size) {
        void* const block = CallRecorder::original<hook::HeapAlloc>()(heap, flags, size);
        return flags & HEAP_ZERO_MEMORY ? block : memset(block, 0x11, size);
    });
    EXPECT_EQ(List_New(24, &current, nullptr, 8)->currentIndex, 0x1111111111111111);
}

TEST_F(ListNew, StopsTheProgramWithoutAHeader) {
    EXPECT_EXIT(
        {
            HeapRecorder calls;
            calls.fail("HeapAlloc", 1, 0);
            List_New(8, &current, nullptr, 8);
        },
        isMemoryFault, "");
}

// --- Add ---

using ListAddElement = ListTest;

TEST_F(ListAddElement, MakesTheFirstElementCurrent) {
    void* const payload = List_AddElement(list);
    EXPECT_EQ(list->first, elementOf(payload));
    EXPECT_EQ(list->last, elementOf(payload));
    EXPECT_EQ(list->current, elementOf(payload));
    EXPECT_EQ(current, elementOf(payload));
    EXPECT_EQ(list->count, 1);
    EXPECT_EQ(list->currentIndex, 0);
    EXPECT_EQ(list->noCurrent, 0);
    EXPECT_EQ(elementOf(payload)->next, nullptr);
    EXPECT_EQ(elementOf(payload)->prev, nullptr);
}

TEST_F(ListAddElement, GivesZeroedPayloads) {
    for (int n = 0; n < 16; ++n)
        memset(List_AddElement(list), 'x', sizeof(Payload));
    List_Clear(list);
    for (int n = 0; n < 16; ++n) {
        auto* const payload = static_cast<char*>(List_AddElement(list));
        EXPECT_EQ(std::string(payload, 16), std::string(16, '\0'));
    }
}

TEST_F(ListAddElement, AppendsWhenNothingIsSelectedInBetween) {
    fill(4);
    EXPECT_EQ(numbers(), (Numbers{0, 1, 2, 3}));
    EXPECT_EQ(numbersBackwards(), (Numbers{3, 2, 1, 0}));
    EXPECT_EQ(list->currentIndex, 3);
    EXPECT_EQ(list->count, 4);
    EXPECT_EQ(current, list->last);
}

TEST_F(ListAddElement, PutsTheElementBehindTheCurrentOne) {
    fill(4);
    select(1);
    ListElement* const after = list->current->next;
    ListElement* const added = add(9);
    EXPECT_EQ(list->currentIndex, 2);
    EXPECT_EQ(added->next, after);
    EXPECT_EQ(current, added);
    EXPECT_EQ(list->noCurrent, 0);
    EXPECT_EQ(numbers(), (Numbers{0, 1, 9, 2, 3}));
    EXPECT_EQ(numbersBackwards(), (Numbers{3, 2, 9, 1, 0}));
}

TEST_F(ListAddElement, LeavesTheEndsWhenItAddsBetween) {
    fill(3);
    ListElement* const first = list->first;
    ListElement* const last = list->last;
    select(0);
    add(9);
    EXPECT_EQ(list->first, first);
    EXPECT_EQ(list->last, last);
}

TEST_F(ListAddElement, GrowsAtTheHeadAfterAFailedSelection) {
    fill(5);
    ListElement* const last = list->last;
    select(5);
    ListElement* const added = add(9);
    EXPECT_EQ(numbers(), (Numbers{9, 0, 1, 2, 3, 4}));
    EXPECT_EQ(numbersBackwards(), (Numbers{4, 3, 2, 1, 0, 9}));
    EXPECT_EQ(list->currentIndex, 0);
    EXPECT_EQ(list->first, added);
    EXPECT_EQ(list->last, last);
    EXPECT_EQ(list->count, 6);
    EXPECT_EQ(list->noCurrent, 0);
    EXPECT_EQ(current, added);
}

TEST_F(ListAddElement, CallsTheHeapOnceForSixteenElements) {
    HeapRecorder calls;
    fill(16);
    EXPECT_TRUE(calls.match("HeapAlloc(general, 0, 680) -> block1")) << "40 and 16 slots of 40";
    add(16);
    EXPECT_EQ(calls.uses("HeapAlloc"), 2);
}

TEST_F(ListAddElement, StopsTheProgramWhenTheHeapIsExhausted) {
    EXPECT_EXIT(
        {
            HeapRecorder calls;
            calls.failAlways("HeapAlloc", 0);
            List_AddElement(list);
        },
        isMemoryFault, "");
}

// --- Select ---

using ListSelectElement = ListTest;

TEST_F(ListSelectElement, GivesEveryElementFromEveryOther) {
    fill(10);
    for (int64_t from = 0; from < 10; ++from)
        for (int64_t to = 0; to < 10; ++to) {
            select(from);
            EXPECT_EQ(select(to), to) << from;
        }
}

TEST_F(ListSelectElement, GivesEveryElementFromNowhere) {
    for (int64_t count : {1, 2, 9, 10}) {
        List_Clear(list);
        fill(count);
        for (int64_t to = 0; to < count; ++to) {
            select(-1);
            EXPECT_EQ(select(to), to);
            EXPECT_EQ(list->noCurrent, 0);
        }
    }
}

TEST_F(ListSelectElement, FindsNothingOnAnEmptyList) {
    current = reinterpret_cast<ListElement*>(this);
    EXPECT_EQ(List_SelectElement(list, 0), nullptr);
    EXPECT_EQ(current, nullptr);
    current = reinterpret_cast<ListElement*>(this);
    EXPECT_EQ(List_SelectElement(list, -1), nullptr);
    EXPECT_EQ(current, nullptr);
    EXPECT_EQ(list->noCurrent, 1);
}

TEST_F(ListSelectElement, LeavesABadIndexAndNoCurrentElement) {
    fill(5);
    for (int64_t index : {int64_t{-1}, int64_t{5}, INT64_MIN, INT64_MAX}) {
        ASSERT_EQ(select(2), 2);
        EXPECT_EQ(List_SelectElement(list, index), nullptr);
        EXPECT_EQ(list->currentIndex, index);
        EXPECT_EQ(list->noCurrent, 1);
        EXPECT_EQ(list->current, nullptr);
        EXPECT_EQ(current, nullptr);
        EXPECT_EQ(list->count, 5);
    }
    EXPECT_EQ(select(0), 0);
    EXPECT_EQ(select(4), 4);
}

// The walks are told apart by lists whose links have been cut or led astray: a walk shows where it
// came along, and every walk stops at a null link.
class ListWalk : public ListTest {
protected:
    ListWalk() {
        fill(10);
        for (ListElement* at = list->first; at; at = at->next)
            elements.push_back(at);
    }

    void makeCurrent(int64_t index) { ASSERT_EQ(select(index), index); }

    ListElement* at(int64_t index) const { return elements[static_cast<size_t>(index)]; }

    std::vector<ListElement*> elements;
};

TEST_F(ListWalk, GoesForwardFromTheCurrentElement) {
    makeCurrent(2);
    list->first = nullptr;
    list->last = nullptr;
    EXPECT_EQ(select(5), 5) << "3 steps, against 5 from the end";
}

TEST_F(ListWalk, GoesBackwardFromTheLastElementOnATie) {
    makeCurrent(2);
    at(2)->next = nullptr;
    EXPECT_EQ(select(6), 6) << "4 by either way of counting, 3 steps backward";
}

TEST_F(ListWalk, GoesBackwardFromTheLastElementWhenThatIsNearer) {
    makeCurrent(2);
    at(2)->next = nullptr;
    EXPECT_EQ(select(7), 7);
    EXPECT_EQ(select(9), 9);
}

TEST_F(ListWalk, GoesBackwardFromTheCurrentElement) {
    makeCurrent(8);
    list->first = nullptr;
    list->last = nullptr;
    EXPECT_EQ(select(5), 5) << "3 steps, against 5 from the front";
}

TEST_F(ListWalk, GoesForwardFromTheFirstElementOnATie) {
    makeCurrent(8);
    at(8)->prev = nullptr;
    list->last = nullptr;
    EXPECT_EQ(select(4), 4);
}

TEST_F(ListWalk, GoesForwardFromTheFirstElementWhenThatIsNearer) {
    makeCurrent(8);
    at(8)->prev = nullptr;
    list->last = nullptr;
    EXPECT_EQ(select(3), 3);
    EXPECT_EQ(select(0), 0);
}

TEST_F(ListWalk, ToTheCurrentIndexStaysThere) {
    makeCurrent(8);
    list->first = nullptr;
    list->last = nullptr;
    at(8)->prev = nullptr;
    at(8)->next = nullptr;
    EXPECT_EQ(select(8), 8);
}

TEST_F(ListWalk, ToTheCurrentIndexOfZeroStartsAtTheFirst) {
    makeCurrent(0);
    list->first = at(7);
    EXPECT_EQ(select(0), 7);
}

TEST_F(ListWalk, FromNowhereGoesForwardInTheFirstHalf) {
    select(-1);
    list->last = nullptr;
    EXPECT_EQ(select(4), 4);
}

TEST_F(ListWalk, FromNowhereGoesBackwardFromTheHalfOn) {
    select(-1);
    list->first = nullptr;
    EXPECT_EQ(select(5), 5);
}

TEST_F(ListWalk, FromNowhereHalvesAnOddCountDownwards) {
    add(10); // 11 elements: the half is 5
    select(-1);
    list->first = nullptr;
    EXPECT_EQ(select(5), 5);
    select(-1);
    list->first = at(0);
    list->last = nullptr;
    EXPECT_EQ(select(4), 4);
}

TEST_F(ListWalk, StopsAtANullLinkWithNoCurrentElement) {
    makeCurrent(2);
    at(3)->next = nullptr;
    EXPECT_EQ(List_SelectElement(list, 5), nullptr);
    EXPECT_EQ(list->noCurrent, 1);
    list->first = at(0);
    at(8)->prev = nullptr;
    EXPECT_EQ(List_SelectElement(list, 6), nullptr) << "and backward as well";
}

// --- Clear and free ---

class ListOfTexts : public RuntimeTest {
protected:
    void add(const char* text) {
        Text_Assign(static_cast<TextVariable*>(List_AddElement(texts)), text);
    }

    ListElement* current = nullptr;
    LinkedList* texts = List_New(8, &current, oneText, 8);
};

using ListClear = ListTest;

TEST_F(ListClear, LeavesTheListAsItWasMade) {
    fill(20);
    List_Clear(list);
    EXPECT_EQ(list->first, nullptr);
    EXPECT_EQ(list->last, nullptr);
    EXPECT_EQ(list->current, nullptr);
    EXPECT_EQ(current, nullptr);
    EXPECT_EQ(list->count, 0);
    EXPECT_EQ(list->noCurrent, 1);
    EXPECT_EQ(list->currentVar, &current);
    EXPECT_EQ(list->pool->totalSlots, 0);
    EXPECT_EQ(list->pool->openBlocks, nullptr);
    EXPECT_EQ(list->pool->fullBlocks, nullptr);
}

TEST_F(ListClear, DoesNotClearTheCurrentIndex) {
    fill(5);
    List_Clear(list);
    EXPECT_EQ(list->currentIndex, 4);
}

TEST_F(ListClear, LeavesAListThatMakesItsFirstElementAgain) {
    fill(5);
    List_Clear(list);
    fill(2);
    EXPECT_EQ(numbers(), (Numbers{0, 1}));
    EXPECT_EQ(list->currentIndex, 1);
}

TEST_F(ListClear, FreesBlocksAndNotElements) {
    fill(20);
    HeapRecorder calls;
    List_Clear(list);
    EXPECT_EQ(calls.take().size(), 2u);
}

TEST_F(ListClear, LetsGoOfTheCurrentElementAfterItsBlocks) {
    fill(1);
    CallRecorder calls;
    calls.after("HeapFree", 1, [this] { EXPECT_NE(current, nullptr); });
    List_Clear(list);
    EXPECT_EQ(calls.uses("HeapFree"), 1);
    EXPECT_EQ(current, nullptr);
}

TEST_F(ListClear, TouchesNoTextsWithoutAFieldMap) {
    TextVariable text = nullptr;
    Text_Assign(&text, "kept");
    add(reinterpret_cast<int64_t>(text));
    List_Clear(list);
    EXPECT_STREQ(text, "kept");
    HeapRecorder calls;
    Text_Assign(&text, nullptr);
    EXPECT_TRUE(calls.match("HeapFree(text, 1, *) -> 1"));
}

TEST_F(ListOfTexts, AreFreedOnceEachFromTheFirstOnWhenTheListIsCleared) {
    add("one");
    add("two");
    List_AddElement(texts); // its text stays null
    HeapRecorder calls;
    calls.name(*reinterpret_cast<TextVariable*>(texts->first + 1), "one");
    calls.name(*reinterpret_cast<TextVariable*>(texts->first->next + 1), "two");
    List_Clear(texts);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(text, 1, one) -> 1
        HeapFree(text, 1, two) -> 1
        HeapFree(general, 0, *) -> 1
    )"));
}

TEST_F(ListOfTexts, AreFreedWithTheList) {
    HeapRecorder calls;
    LinkedList* const made = List_New(8, &current, oneText, 8);
    Text_Assign(static_cast<TextVariable*>(List_AddElement(made)), "text");
    List_Free(made);
    EXPECT_EQ(calls.live("block"), 0u);
    EXPECT_EQ(current, nullptr);
}

using ListFree = ListTest;

TEST_F(ListFree, FreesBlocksPoolAndHeader) {
    fill(1);
    HeapRecorder calls;
    calls.name(list->pool->openBlocks, "block");
    calls.name(list->pool, "pool");
    calls.name(list, "header");
    List_Free(list);
    EXPECT_TRUE(calls.match(R"(
        HeapFree(general, 0, block) -> 1
        HeapFree(general, 0, pool) -> 1
        HeapFree(general, 0, header) -> 1
    )"));
}

TEST_F(ListFree, AcceptsNull) {
    HeapRecorder calls;
    List_Free(nullptr);
    EXPECT_TRUE(calls.match(""));
}

} // namespace
