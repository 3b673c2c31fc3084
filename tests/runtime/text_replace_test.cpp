#include "tests/support/import_swap.h"
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

TEST_F(TextReplace, FillsUpTheGapBetweenTheEndAndAStartBeyondIt) {
    char text[] = "ab\0cbd";
    Text_Replace(text, "b", "xy", 0, 5, 0);
    EXPECT_EQ(std::string(TextBase, 8), std::string("ab\0\0xyd\0", 8));
}

TEST_F(TextReplace, CopiesTheTextAloneWhereNothingMatchesBeyondTheEnd) {
    char text[] = "ab\0cbd";
    memset(TextBase, '-', 8);
    Text_Replace(text, "x", "y", 0, 5, 0);
    EXPECT_EQ(std::string(TextBase, 8), std::string("ab\0-----", 8));
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

// Counts the C library's duplicates of texts while it lives.
class DuplicateCounter {
public:
    DuplicateCounter() {
        made = 0;
        freed = 0;
    }

    static inline int made;
    static inline int freed;

private:
    static char* duplicate(const char* text) {
        char* const copy = realStrdup(text);
        copies[made++ % maximum] = copy;
        return copy;
    }
    static void release(void* block) {
        for (void*& copy : copies)
            if (block && block == copy) {
                ++freed;
                copy = nullptr;
            }
        realFree(block);
    }

    static constexpr int maximum = 4;
    static inline void* copies[maximum];
    static inline char* (*realStrdup)(const char*);
    static inline void (*realFree)(void*);

    ImportSwap<char*(const char*)> strdupSwap{"_strdup", duplicate, realStrdup};
    ImportSwap<void(void*)> freeSwap{"free", release, realFree};
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
    EXPECT_EQ(DuplicateCounter::freed, 3);
}

TEST_F(TextReplaceInAccumulator, FreesItsDuplicateWhenNothingMatches) {
    const int32_t text = place("abc");
    const DuplicateCounter counter;
    Text_Replace(TextBase + text, "-", "+", 0, 1, text);
    EXPECT_EQ(DuplicateCounter::made, 1);
    EXPECT_EQ(DuplicateCounter::freed, 1);
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
