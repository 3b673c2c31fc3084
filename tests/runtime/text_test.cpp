#include "runtime/text.h"

#include "tests/support/runtime_fixture.h"

namespace {

// Puts `text` and its terminator at the accumulator's position and steps over both.
int32_t place(const char* text) {
    const int32_t start = Text_Here();
    Text_Append(text);
    TextPosition += 1;
    return start;
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

TEST_F(TextReserve, FindsRoomForAnEndThatIsNegativeIn32Bits) {
    HeapRecorder calls;
    TextPosition = 0x80000000;
    Text_Reserve(5, 0);
    EXPECT_EQ(calls.uses("HeapReAlloc"), 0);
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

TEST_F(TextAppend, CopiesWholeUnits) {
    memset(TextBase, '-', 8);
    Text_Append("a\0cd");
    EXPECT_EQ(std::string(TextBase, 8), std::string("a\0cd----", 8));
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
    HeapRecorder calls;
    Text_Store(&variable, 5);
    EXPECT_TRUE(calls.match("HeapAlloc(text, 1, 10) -> block1"));
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

TEST_F(TextStore, CopiesWholeUnits) {
    TextVariable variable = nullptr;
    memcpy(TextBase, "a\0cd", 4);
    TextPosition = 1;
    Text_Store(&variable, 0);
    EXPECT_EQ(std::string(variable, 4), std::string("a\0cd", 4));
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
        isMemoryFault, "");
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

TEST_F(TextAssign, CopiesWholeUnits) {
    TextVariable variable = nullptr;
    EXPECT_EQ(Text_Assign(&variable, "a\0cd"), 2);
    EXPECT_EQ(std::string(variable, 4), std::string("a\0cd", 4));
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
        isMemoryFault, "");
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

} // namespace
