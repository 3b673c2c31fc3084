#include "runtime/text.h"

#include "tests/support/import_table.h"
#include "tests/support/runtime_fixture.h"

#include <climits>
#include <cstdlib>

namespace {

// Puts `text` and its terminator at the accumulator's position and steps over both.
int32_t place(const char* text) {
    const int32_t start = Text_Here();
    Text_Append(text);
    TextPosition += 1;
    return start;
}

std::string replaced(const char* text, const char* find, const char* replacement, int32_t mode = 0,
                     int32_t start = 1) {
    const int32_t at = Text_Here();
    Text_Replace(text, find, replacement, mode, start, at);
    EXPECT_EQ(TextBase[TextPosition], 0) << "the position stands on the terminator";
    std::string result = textAt(at);
    TextPosition = at;
    return result;
}

// Runs the in-place form on a copy with room behind it.
std::string replacedInPlace(const char* text, const char* find, const char* replacement,
                            int32_t mode = Replace_InPlace, int32_t start = 1) {
    char copy[64] = {};
    strcpy(copy, text);
    Text_Replace(copy, find, replacement, mode, start, 0);
    return copy;
}

// --- Set-up ---

TEST(TextSubsystemInit, MakesAnUnserialisedHeapAndAFirstBlockWithoutSlack) {
    CallRecorder calls;
    TextPosition = 99;
    TextCapacity = 99;
    TextBase = nullptr;
    Text_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        HeapCreate(1, 4096, 0) -> heap1
        HeapAlloc(heap1, 1, 16) -> block1
    )"));
    EXPECT_EQ(TextPosition, 0);
    EXPECT_EQ(TextCapacity, 16);
    EXPECT_NE(TextBase, nullptr);
    HeapDestroy(TextHeap);
}

// --- Reserve and shrink ---

using TextReserve = RuntimeTest;

TEST_F(TextReserve, LeavesTheBlockWhileTheEndIsBelowCapacityLessFour) {
    HeapRecorder calls;
    char* const base = TextBase;
    EXPECT_EQ(Text_Reserve(11, 0), base);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(TextCapacity, 16);
    EXPECT_EQ(TextPosition, 11);
}

TEST_F(TextReserve, GrowsByAFixedStepWhenTheEndReachesCapacityLessFour) {
    HeapRecorder calls;
    calls.name(TextBase, "base");
    Text_Reserve(12, 0);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, base, 16401)"));
    EXPECT_EQ(TextCapacity, 16396);
    EXPECT_EQ(TextPosition, 12);
}

TEST_F(TextReserve, AddsTheSameStepToALargeEnd) {
    Text_Reserve(16391, 0);
    EXPECT_EQ(TextCapacity, 16391 + 16384);
    HeapRecorder calls;
    TextPosition = 0;
    Text_Reserve(32770, 0);
    EXPECT_EQ(calls.uses("HeapReAlloc"), 0);
    TextPosition = 0;
    Text_Reserve(32771, 0);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, *, 49160)"));
    EXPECT_EQ(TextCapacity, 32771 + 16384);
}

TEST_F(TextReserve, JudgesByThePositionAndNotByThePlace) {
    TextPosition = 8;
    Text_Reserve(4, 0);
    EXPECT_EQ(TextCapacity, 12 + 16384) << "4 bytes at place 0 alone would have had room";
    EXPECT_EQ(TextPosition, 4);
}

TEST_F(TextReserve, PutsThePositionBehindThePlaceAndGivesThePlacesAddress) {
    TextPosition = 5;
    EXPECT_EQ(Text_Reserve(4, 3), TextBase + 3);
    EXPECT_EQ(TextPosition, 7);
}

TEST_F(TextReserve, TakesTheEndAs32BitsSigned) {
    HeapRecorder calls;
    TextPosition = 0x100000000;
    Text_Reserve(5, 0);
    EXPECT_EQ(calls.uses("HeapReAlloc"), 0);
    EXPECT_EQ(TextPosition, 5);
}

TEST_F(TextReserve, KeepsTheContentAndTheOffsetsOverAMove) {
    Text_Append("kept");
    HeapRecorder calls;
    moveOnReallocation(calls);
    char* const old = TextBase;
    char* const room = Text_Reserve(20, Text_Here());
    EXPECT_NE(TextBase, old);
    EXPECT_EQ(room, TextBase + 4);
    EXPECT_EQ(textAt(0), "kept");
}

TEST_F(TextReserve, NeverShrinksTheBlock) {
    Text_Reserve(1000, 0);
    HeapRecorder calls;
    Text_Shrink(1000);
    Text_Reserve(1, 0);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(TextCapacity, 17384);
}

TEST_F(TextReserve, UsesWhatAFailedReallocationGives) {
    HeapRecorder calls;
    calls.fail("HeapReAlloc", 1, 0);
    EXPECT_EQ(Text_Reserve(100, 0), nullptr);
    EXPECT_EQ(TextBase, nullptr);
    EXPECT_EQ(TextCapacity, 16484);
    EXPECT_EQ(TextPosition, 100);
}

using TextShrink = RuntimeTest;

TEST_F(TextShrink, TakesTheCountOffThePosition) {
    TextPosition = 10;
    Text_Shrink(3);
    EXPECT_EQ(TextPosition, 7);
}

TEST_F(TextShrink, TestsNoBound) {
    TextPosition = 2;
    Text_Shrink(5);
    EXPECT_EQ(TextPosition, -3);
}

TEST(TextHere, IsThePositionIn32Bits) {
    TextPosition = 0x100000007;
    EXPECT_EQ(Text_Here(), 7);
    static_assert(sizeof(Text_Here()) == 4);
    static_assert(sizeof TextPosition == 8 && sizeof TextCapacity == 8);
}

// --- Copying in blocks ---

std::string copiedOver(int32_t length) {
    char source[] = "abcdefghijkl";
    char destination[] = "------------";
    Text_CopyBlocks(destination, source, length);
    return std::string(destination, 12);
}

TEST(TextCopyBlocks, CopiesWholeUnitsAndTerminatesBehindThem) {
    EXPECT_EQ(copiedOver(4), std::string("abcd\0-------", 12));
    EXPECT_EQ(copiedOver(8), std::string("abcdefgh\0---", 12));
}

TEST(TextCopyBlocks, RunsOverToTheEndOfTheLastUnit) {
    EXPECT_EQ(copiedOver(1), std::string("a\0cd--------", 12));
    EXPECT_EQ(copiedOver(3), std::string("abc\0--------", 12));
    EXPECT_EQ(copiedOver(5), std::string("abcde\0gh----", 12));
}

TEST(TextCopyBlocks, OnlyTerminatesAtALengthOfZero) {
    EXPECT_EQ(copiedOver(0), std::string("\0-----------", 12));
}

TEST(TextCopyBlocks, OnlyTerminatesAtANegativeLength) {
    char destination[] = "----";
    Text_CopyBlocks(destination + 2, "ab", -1);
    EXPECT_EQ(std::string(destination, 4), std::string("-\0--", 4));
}

TEST(TextCopyBlocks, CopesWithAnyAlignment) {
    char source[] = "xabcdefg";
    char destination[] = "------------";
    Text_CopyBlocks(destination + 3, source + 1, 7);
    EXPECT_STREQ(destination, "---abcdefg");
}

// --- Append ---

using TextAppend = RuntimeTest;

TEST_F(TextAppend, JoinsUpThePieces) {
    Text_Append("ab");
    Text_Append("cde");
    EXPECT_EQ(textAt(0), "abcde");
    EXPECT_EQ(TextPosition, 5);
}

TEST_F(TextAppend, LeavesATerminatedTextForNull) {
    memset(TextBase, 'x', 8);
    TextPosition = 3;
    Text_Append(nullptr);
    EXPECT_EQ(textAt(0), "xxx");
    EXPECT_EQ(TextPosition, 3);
}

TEST_F(TextAppend, LeavesATerminatedTextForTheEmptyText) {
    memset(TextBase, 'x', 8);
    TextPosition = 3;
    Text_Append("");
    EXPECT_EQ(textAt(0), "xxx");
    EXPECT_EQ(TextPosition, 3);
}

TEST_F(TextAppend, OfElevenBytesFitsIntoTheFreshAccumulator) {
    HeapRecorder calls;
    Text_Append("12345678901");
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(textAt(0), "12345678901");
}

TEST_F(TextAppend, OfThirteenBytesGrowsTheFreshAccumulator) {
    HeapRecorder calls;
    Text_Append("1234567890123");
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, *, 16402)"));
    EXPECT_EQ(textAt(0), "1234567890123");
}

TEST_F(TextAppend, WritesWhereTheBlockHasMovedTo) {
    HeapRecorder calls;
    moveOnReallocation(calls);
    Text_Append("0123456789");
    Text_Append("and more of it");
    EXPECT_EQ(textAt(0), "0123456789and more of it");
}

// --- Store ---

using TextStore = RuntimeTest;

TEST_F(TextStore, AllocatesTheLengthAndFiveForANullVariable) {
    TextVariable variable = nullptr;
    Text_Append("abc");
    HeapRecorder calls;
    Text_Store(&variable, 0);
    EXPECT_TRUE(calls.match("HeapAlloc(text, 1, 8) -> block1"));
    EXPECT_STREQ(variable, "abc");
    EXPECT_EQ(TextPosition, 0);
}

TEST_F(TextStore, ReallocatesAVariablesBlockInPlace) {
    TextVariable variable = nullptr;
    Text_Assign(&variable, "the old text");
    Text_Append("new");
    HeapRecorder calls;
    calls.name(variable, "old");
    Text_Store(&variable, 0);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, old, 8)"));
    EXPECT_STREQ(variable, "new");
}

TEST_F(TextStore, KeepsTheAddressThatReallocationGives) {
    TextVariable variable = nullptr;
    Text_Assign(&variable, "old");
    char* const old = variable;
    Text_Append("longer than that");
    HeapRecorder calls;
    moveOnReallocation(calls);
    Text_Store(&variable, 0);
    EXPECT_NE(variable, old);
    EXPECT_STREQ(variable, "longer than that");
}

TEST_F(TextStore, OfNothingGivesANonNullEmptyText) {
    TextVariable variable = nullptr;
    HeapRecorder calls;
    Text_Store(&variable, 0);
    EXPECT_TRUE(calls.match("HeapAlloc(text, 1, 5) -> block1"));
    EXPECT_STREQ(variable, "");
    EXPECT_EQ(TextPosition, 0);
}

TEST_F(TextStore, TakesOnlyWhatStandsBehindTheStart) {
    TextVariable variable = nullptr;
    Text_Append("outer");
    Text_Append("inner");
    Text_Store(&variable, 5);
    EXPECT_STREQ(variable, "inner");
    EXPECT_EQ(TextPosition, 5);
    EXPECT_EQ(std::string(TextBase, 5), "outer");
}

TEST_F(TextStore, CutsTheTextOffAtThePosition) {
    TextVariable variable = nullptr;
    Text_Append("abcdef");
    Text_Shrink(4);
    Text_Store(&variable, 0);
    EXPECT_STREQ(variable, "ab");
}

TEST_F(TextStore, UsesAFailedAllocationAsItStands) {
    TextVariable variable = nullptr;
    Text_Append("abc");
    EXPECT_EXIT(
        {
            HeapRecorder calls;
            calls.fail("HeapAlloc", 1, 0);
            Text_Store(&variable, 0);
        },
        isAccessViolation, "");
}

// --- Assign ---

using TextAssign = RuntimeTest;

TEST_F(TextAssign, AllocatesTheLengthAndFiveAndGivesTheLengthAndOne) {
    TextVariable variable = nullptr;
    HeapRecorder calls;
    EXPECT_EQ(Text_Assign(&variable, "abcd"), 5);
    EXPECT_TRUE(calls.match("HeapAlloc(text, 1, 9) -> block1"));
    EXPECT_STREQ(variable, "abcd");
}

TEST_F(TextAssign, ReallocatesAVariablesBlockInPlace) {
    TextVariable variable = nullptr;
    Text_Assign(&variable, "abcd");
    HeapRecorder calls;
    calls.name(variable, "old");
    EXPECT_EQ(Text_Assign(&variable, "abcdefgh"), 9);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, old, 13)"));
    EXPECT_STREQ(variable, "abcdefgh");
}

TEST_F(TextAssign, OfTheEmptyTextIsABlockOfFiveBytes) {
    TextVariable variable = nullptr;
    HeapRecorder calls;
    EXPECT_EQ(Text_Assign(&variable, ""), 1);
    EXPECT_TRUE(calls.match("HeapAlloc(text, 1, 5) -> block1"));
    EXPECT_STREQ(variable, "");
}

TEST_F(TextAssign, OfNullFreesTheText) {
    TextVariable variable = nullptr;
    Text_Assign(&variable, "abcd");
    HeapRecorder calls;
    calls.name(variable, "old");
    EXPECT_EQ(Text_Assign(&variable, nullptr), 1);
    EXPECT_TRUE(calls.match("HeapFree(text, 1, old) -> 1"));
    EXPECT_EQ(variable, nullptr);
}

TEST_F(TextAssign, OfNullToANullVariableDoesNothing) {
    TextVariable variable = nullptr;
    HeapRecorder calls;
    EXPECT_EQ(Text_Assign(&variable, nullptr), 1);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(variable, nullptr);
}

TEST_F(TextAssign, LeavesTheAccumulatorAlone) {
    TextVariable variable = nullptr;
    Text_Append("half");
    Text_Assign(&variable, "other");
    EXPECT_EQ(TextPosition, 4);
    EXPECT_EQ(textAt(0), "half");
}

TEST_F(TextAssign, UsesAFailedReallocationAsItStands) {
    TextVariable variable = nullptr;
    Text_Assign(&variable, "abcd");
    EXPECT_EXIT(
        {
            HeapRecorder calls;
            calls.fail("HeapReAlloc", 1, 0);
            Text_Assign(&variable, "efgh");
        },
        isAccessViolation, "");
}

// --- The caller's discipline ---

using TextDiscipline = RuntimeTest;

TEST_F(TextDiscipline, TwoBuiltArgumentsStandSideBySideAndArePopped) {
    const int32_t restore = Text_Here();
    const int32_t first = place("first");
    const int32_t second = place("second argument, which moves the block");
    EXPECT_EQ(textAt(first), "first");
    EXPECT_EQ(textAt(second), "second argument, which moves the block");
    TextPosition = restore;
    EXPECT_EQ(TextPosition, 0);
}

TEST_F(TextDiscipline, OverwritingAVariableLeavesOneBlock) {
    Text_Reserve(100, 0); // so that the accumulator stays out of the count
    Text_Shrink(100);
    HeapRecorder calls;
    TextVariable variable = nullptr;
    for (const char* text : {"a", "a much longer one", "", "b"}) {
        Text_Append(text);
        Text_Store(&variable, 0);
    }
    EXPECT_EQ(calls.live("block"), 1u);
    Text_Assign(&variable, nullptr);
    EXPECT_EQ(calls.live("block"), 0u);
}

// --- Equal ---

TEST(TextEqual, GivesOneForTheSameBytes) {
    const char other[] = "QUIT";
    EXPECT_EQ(Text_Equal("QUIT", other), 1);
}

TEST(TextEqual, TellsCasesApart) { EXPECT_EQ(Text_Equal("QUIT", "Quit"), 0); }

TEST(TextEqual, TellsATextFromItsBeginning) {
    EXPECT_EQ(Text_Equal("QUIT", "QUITS"), 0);
    EXPECT_EQ(Text_Equal("QUITS", "QUIT"), 0);
}

TEST(TextEqual, TakesNullForTheEmptyText) {
    EXPECT_EQ(Text_Equal(nullptr, ""), 1);
    EXPECT_EQ(Text_Equal("", nullptr), 1);
    EXPECT_EQ(Text_Equal(nullptr, nullptr), 1);
    EXPECT_EQ(Text_Equal(nullptr, "a"), 0);
    EXPECT_EQ(Text_Equal("a", nullptr), 0);
}

// --- Does a pointer lie in the accumulator? ---

using TextInBuffer = RuntimeTest;

TEST_F(TextInBuffer, GivesTheOffsetAndOneWithinTheUsedPart) {
    Text_Append("abcd");
    EXPECT_EQ(Text_InBuffer(TextBase), 1);
    EXPECT_EQ(Text_InBuffer(TextBase + 3), 4);
}

TEST_F(TextInBuffer, CountsTheFirstFreeByteAsInside) {
    Text_Append("abcd");
    EXPECT_EQ(Text_InBuffer(TextBase + 4), 5);
}

TEST_F(TextInBuffer, GivesZeroOutside) {
    Text_Append("abcd");
    EXPECT_EQ(Text_InBuffer(TextBase - 1), 0);
    EXPECT_EQ(Text_InBuffer(TextBase + 5), 0);
    EXPECT_EQ(Text_InBuffer(nullptr), 0);
}

// --- Replace: the general form ---

using TextReplace = RuntimeTest;

TEST_F(TextReplace, ReplacesEveryOccurrence) {
    EXPECT_EQ(replaced("a-b-c", "-", "+"), "a+b+c");
    EXPECT_EQ(replaced("-a--b-", "-", "+"), "+a++b+");
}

TEST_F(TextReplace, MakesRoomForALongerReplacement) {
    EXPECT_EQ(replaced("a-b-c", "-", "<=>"), "a<=>b<=>c");
}

TEST_F(TextReplace, ClosesUpBehindAShorterReplacement) {
    EXPECT_EQ(replaced("one, two, three", ", ", "/"), "one/two/three");
}

TEST_F(TextReplace, RemovesForAnEmptyReplacement) {
    EXPECT_EQ(replaced("a-b-", "-", ""), "ab");
    EXPECT_EQ(replaced("a-b-", "-", nullptr), "ab");
}

TEST_F(TextReplace, FindsMatchesLeftToRightAndNeverOverlapping) {
    EXPECT_EQ(replaced("aaaaa", "aa", "b"), "bba");
    EXPECT_EQ(replaced("aaa", "aa", "xyz"), "xyza");
}

TEST_F(TextReplace, MatchesTheWholeFindText) {
    EXPECT_EQ(replaced("abc abd", "abd", "x"), "abc x");
    EXPECT_EQ(replaced("ab", "abc", "x"), "ab");
}

TEST_F(TextReplace, DoesNotLookIntoTheReplacementAgain) {
    EXPECT_EQ(replaced("a", "a", "aa"), "aa");
}

TEST_F(TextReplace, PutsThePositionOnTheTerminator) {
    Text_Replace("a-b", "-", "+++", 0, 1, 0);
    EXPECT_EQ(TextPosition, 5);
    Text_Replace("abc", "-", "+", 0, 1, 0);
    EXPECT_EQ(TextPosition, 3);
    Text_Replace("a--b", "-", "", 0, 1, 0);
    EXPECT_EQ(TextPosition, 2);
}

TEST_F(TextReplace, ReservesExactlyTheNewLength) {
    HeapRecorder calls;
    Text_Replace("a-b-c-", "-", "123", 0, 1, 0);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, *, 16401)")) << "12 bytes and 16389";
    EXPECT_EQ(textAt(0), "a123b123c123");
}

TEST_F(TextReplace, WritesAtThePlaceAndNotBeforeIt) {
    Text_Append("abc");
    Text_Replace("x-", "-", "y", 0, 1, 3);
    EXPECT_EQ(textAt(0), "abcxy");
    EXPECT_EQ(TextPosition, 5);
}

TEST_F(TextReplace, TellsCasesApart) { EXPECT_EQ(replaced("aAbB", "A", "x"), "axbB"); }

TEST_F(TextReplace, IgnoresCaseByTheFirstModeBit) {
    EXPECT_EQ(replaced("aAbB ABab", "ab", "x", Replace_IgnoreCase), "axB xx");
    EXPECT_EQ(Replace_IgnoreCase, 1);
}

TEST_F(TextReplace, TakesAnyStartBelowOneForOne) {
    EXPECT_EQ(replaced("aba", "a", "x", 0, 0), "xbx");
    EXPECT_EQ(replaced("aba", "a", "x", 0, -5), "xbx");
    EXPECT_EQ(replaced("aba", "a", "x", 0, INT_MIN), "xbx");
}

TEST_F(TextReplace, CopiesWhatStandsBeforeTheStart) {
    EXPECT_EQ(replaced("aba", "a", "x", 0, 1), "xbx");
    EXPECT_EQ(replaced("aba", "a", "x", 0, 2), "abx");
    EXPECT_EQ(replaced("aba", "a", "x", 0, 3), "abx");
    EXPECT_EQ(replaced("aba", "a", "x", 0, 4), "aba");
    EXPECT_EQ(replaced("aab", "aa", "xyz", 0, 2), "aab");
}

TEST_F(TextReplace, CopiesTheWholeTextWhenNothingMatches) {
    EXPECT_EQ(replaced("abc", "x", "y"), "abc");
    EXPECT_EQ(replaced("abc", "x", "y", 0, 3), "abc");
    EXPECT_EQ(replaced("", "x", "y"), "");
}

TEST_F(TextReplace, TakesNullForTheEmptyText) {
    EXPECT_EQ(replaced(nullptr, "a", "b"), "");
    EXPECT_EQ(replaced("abc", nullptr, "b"), "abc");
    EXPECT_EQ(replaced(nullptr, nullptr, nullptr), "");
}

TEST_F(TextReplace, FindsNoEmptyText) {
    EXPECT_EQ(replaced("abc", "", "x"), "abc");
    EXPECT_EQ(replaced("", "", "x"), "");
}

TEST_F(TextReplace, DoesNotGuardAgainstAStartBeyondTheEnd) {
    char text[] = "ab\0cbd";
    Text_Replace(text, "b", "xy", 0, 4, 0);
    EXPECT_EQ(TextPosition, 3) << "two bytes of text, and one more for the match behind its end";
    EXPECT_EQ(std::string(TextBase, 8), std::string("ab\0cxyd\0", 8));
}

DWORD WINAPI replaceAnEmptyTextIgnoringCase(void*) {
    Text_Replace("abc", "", "x", Replace_IgnoreCase, 1, 0);
    return 0;
}

TEST_F(TextReplace, DoesNotEndForAnEmptyFindTextWhileIgnoringCase) {
    HANDLE thread = CreateThread(nullptr, 0, replaceAnEmptyTextIgnoringCase, nullptr, 0, nullptr);
    EXPECT_EQ(WaitForSingleObject(thread, 300), static_cast<DWORD>(WAIT_TIMEOUT));
    TerminateThread(thread, 0);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
}

// --- Replace: texts that lie in the accumulator ---

using TextReplaceInAccumulator = RuntimeTest;

TEST_F(TextReplaceInAccumulator, DuplicatesASourceThatLiesWhereTheResultGoes) {
    const int32_t line = place("\ta\tb");
    Text_Replace(TextBase + line, "\t", "     ", Replace_IgnoreCase, 1, line);
    EXPECT_EQ(textAt(line), "     a     b");
    EXPECT_EQ(TextPosition, 12);
}

TEST_F(TextReplaceInAccumulator, DuplicatesAFindText) {
    const int32_t find = place("ab");
    Text_Replace("xab ab", TextBase + find, "1234", 0, 1, find);
    EXPECT_EQ(textAt(find), "x1234 1234");
}

TEST_F(TextReplaceInAccumulator, DuplicatesAReplacement) {
    const int32_t replacement = place("12345678");
    Text_Replace("a-b-c", "-", TextBase + replacement, 0, 1, replacement);
    EXPECT_EQ(textAt(replacement), "a12345678b12345678c");
}

TEST_F(TextReplaceInAccumulator, SurvivesAMoveOfAllThreeTexts) {
    const int32_t text = place("a-b");
    const int32_t find = place("-");
    const int32_t replacement = place("longer than the room");
    const int32_t result = Text_Here();
    HeapRecorder calls;
    moveOnReallocation(calls);
    TextCapacity = 16; // as if the block were full
    Text_Replace(TextBase + text, TextBase + find, TextBase + replacement, 0, 1, result);
    EXPECT_EQ(calls.uses("HeapReAlloc"), 1);
    EXPECT_EQ(textAt(result), "alonger than the roomb");
}

TEST_F(TextReplaceInAccumulator, TakesATextAtTheFirstFreeByteForOneOfItsOwn) {
    Text_Append("a-b");
    TextPosition = 0; // popped, but still there
    Text_Replace(TextBase, "-", "+++", 0, 1, 0);
    EXPECT_EQ(textAt(0), "a+++b");
}

// Counts the C library's duplicates while it lives.
class DuplicateCounter {
public:
    DuplicateCounter() {
        made = 0;
        live.clear();
        exchange("_strdup", reinterpret_cast<void*>(&duplicate), reinterpret_cast<void**>(&realDup));
        exchange("free", reinterpret_cast<void*>(&release), reinterpret_cast<void**>(&realFree));
    }
    ~DuplicateCounter() {
        exchange("free", reinterpret_cast<void*>(realFree), nullptr);
        exchange("_strdup", reinterpret_cast<void*>(realDup), nullptr);
    }
    DuplicateCounter(const DuplicateCounter&) = delete;
    DuplicateCounter& operator=(const DuplicateCounter&) = delete;

    static inline int made;
    static inline std::string live; // the texts duplicated and not yet freed, each in brackets

private:
    static char* duplicate(const char* text) {
        char* copy = realDup(text);
        live += "[" + std::string(text) + "]";
        copies[made++ % maximum] = copy;
        return copy;
    }
    static void release(void* block) {
        for (void*& copy : copies)
            if (block && block == copy) {
                const std::string entry = "[" + std::string(static_cast<char*>(block)) + "]";
                live.erase(live.find(entry), entry.size());
                copy = nullptr;
            }
        realFree(block);
    }
    static void exchange(const char* name, void* routine, void** old) {
        for (void** at : importPlaces(name)) {
            if (old)
                *old = *at;
            writeProtected(at, routine);
        }
    }

    static constexpr int maximum = 4;
    static inline void* copies[maximum];
    static inline char* (*realDup)(const char*);
    static inline void (*realFree)(void*);
};

TEST_F(TextReplaceInAccumulator, DuplicatesNothingThatLiesElsewhere) {
    const DuplicateCounter counter;
    Text_Replace("a-b", "-", "+", 0, 1, 0);
    EXPECT_EQ(DuplicateCounter::made, 0);
}

TEST_F(TextReplaceInAccumulator, FreesItsDuplicates) {
    const int32_t text = place("a-b");
    const int32_t find = place("-");
    const int32_t replacement = place("+");
    const DuplicateCounter counter;
    Text_Replace(TextBase + text, TextBase + find, TextBase + replacement, 0, 1, Text_Here());
    EXPECT_EQ(DuplicateCounter::made, 3);
    EXPECT_EQ(DuplicateCounter::live, "");
}

TEST_F(TextReplaceInAccumulator, FreesItsDuplicateWhenNothingMatches) {
    const int32_t text = place("abc");
    const DuplicateCounter counter;
    Text_Replace(TextBase + text, "-", "+", 0, 1, text);
    EXPECT_EQ(DuplicateCounter::made, 1);
    EXPECT_EQ(DuplicateCounter::live, "");
}

// --- Replace: the in-place form ---

using TextReplaceInPlace = RuntimeTest;

TEST_F(TextReplaceInPlace, WritesIntoTheSource) {
    EXPECT_EQ(replacedInPlace("a/b/c", "/", "\\"), "a\\b\\c");
    EXPECT_EQ(replacedInPlace("one two one", "one", "six"), "six two six");
    EXPECT_EQ(Replace_InPlace, 2);
}

TEST_F(TextReplaceInPlace, LeavesTheAccumulatorAlone) {
    Text_Append("abc");
    char text[] = "a-b";
    HeapRecorder calls;
    Text_Replace(text, "-", "+", Replace_InPlace, 1, 20000);
    EXPECT_STREQ(text, "a+b");
    EXPECT_EQ(TextPosition, 3);
    EXPECT_EQ(textAt(0), "abc");
    EXPECT_TRUE(calls.match(""));
}

TEST_F(TextReplaceInPlace, DuplicatesNothing) {
    const int32_t text = place("a-b");
    const DuplicateCounter counter;
    Text_Replace(TextBase + text, "-", "+", Replace_InPlace, 1, 0);
    EXPECT_EQ(textAt(text), "a+b");
    EXPECT_EQ(DuplicateCounter::made, 0);
}

TEST_F(TextReplaceInPlace, TellsCasesApart) {
    EXPECT_EQ(replacedInPlace("aAbB", "a", "x"), "xAbB");
}

TEST_F(TextReplaceInPlace, IgnoresCaseByTheFirstModeBit) {
    EXPECT_EQ(replacedInPlace("aAbB", "a", "x", Replace_InPlace | Replace_IgnoreCase), "xxbB");
}

TEST_F(TextReplaceInPlace, BeginsAtTheStart) {
    EXPECT_EQ(replacedInPlace("aaaa", "a", "x", Replace_InPlace, 0), "xxxx");
    EXPECT_EQ(replacedInPlace("aaaa", "a", "x", Replace_InPlace, 1), "xxxx");
    EXPECT_EQ(replacedInPlace("aaaa", "a", "x", Replace_InPlace, 3), "aaxx");
}

TEST_F(TextReplaceInPlace, DoesNothingForAnEmptyFindText) {
    EXPECT_EQ(replacedInPlace("abc", "", "x"), "abc");
    EXPECT_EQ(replacedInPlace("abc", nullptr, "x"), "abc");
    EXPECT_EQ(replacedInPlace("abc", "", "x", Replace_InPlace | Replace_IgnoreCase), "abc");
}

TEST_F(TextReplaceInPlace, DoesNothingForAnEmptyText) {
    char text[] = "\0abc";
    Text_Replace(text, "a", "x", Replace_InPlace, 1, 0);
    EXPECT_EQ(std::string(text, 4), std::string("\0abc", 4));
    Text_Replace(nullptr, "a", "x", Replace_InPlace, 1, 0);
}

TEST_F(TextReplaceInPlace, DriftsBehindWithALongerReplacement) {
    EXPECT_EQ(replacedInPlace("abcabc", "ab", "xyz"), "xyzxyz");
}

TEST_F(TextReplaceInPlace, DriftsAheadWithAShorterReplacement) {
    EXPECT_EQ(replacedInPlace("ababab", "ab", "x"), "xbxbab");
}

TEST_F(TextReplaceInPlace, RemovesNothingForAnEmptyReplacement) {
    EXPECT_EQ(replacedInPlace("axa", "a", ""), "axa");
    EXPECT_EQ(replacedInPlace("axa", "a", nullptr), "axa");
}

// --- The family's two other forms ---

using TextReplaceForms = RuntimeTest;

TEST_F(TextReplaceForms, WithAModeBeginAtTheFirstByte) {
    Text_Append("place");
    Text_ReplaceMode("aAb", "A", "x", Replace_IgnoreCase, 5);
    EXPECT_EQ(textAt(5), "xxb");
    char text[] = "aAb";
    Text_ReplaceMode(text, "a", "x", Replace_InPlace, 0);
    EXPECT_STREQ(text, "xAb");
}

TEST_F(TextReplaceForms, WithoutAModeTellCasesApart) {
    Text_Append("place");
    Text_ReplaceAll("aAaA", "A", "xy", 5);
    EXPECT_EQ(textAt(5), "axyaxy");
    EXPECT_EQ(TextPosition, 11);
}

} // namespace
