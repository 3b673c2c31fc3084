// Lines: how they are read from files, with and without a buffer.
#include "tests/support/file_fixture.h"

#include <vector>

namespace {

using namespace std::string_literals;

using Lines = std::vector<std::string>;

class FileReadLine : public FileTest {
protected:
    static std::string readLine(ObjectId id = 0) {
        const int32_t place = Text_Here();
        File_ReadLine(id, place);
        std::string line = textAt(place);
        EXPECT_EQ(TextPosition, place + static_cast<int64_t>(line.size()))
            << "the position stands on the terminator";
        TextPosition = place;
        return line;
    }

    static Lines readAll() {
        Lines lines;
        while (File_IsEof(0) == 0 && lines.size() < 20)
            lines.push_back(readLine());
        return lines;
    }

    static Lines linesOf(const std::string& content) {
        openNew(0, content);
        const Lines lines = readAll();
        File_Close(0);
        openNewWithoutBuffer(0, content);
        EXPECT_TRUE(readAll() == lines) << "without a buffer it is the same";
        File_Close(0);
        return lines;
    }
};

TEST_F(FileReadLine, EndsALineAtCrLf) {
    EXPECT_EQ(linesOf("a\r\nb"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\r\nb\r\n"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("\r\n\r\n"), (Lines{"", ""}));
}

TEST_F(FileReadLine, EndsALineAtALoneLf) {
    EXPECT_EQ(linesOf("a\nb"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\n\nb"), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOf("\n"), Lines{""});
}

TEST_F(FileReadLine, EndsALineAtALoneCr) {
    EXPECT_EQ(linesOf("a\rb"), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\r\rb\n"), (Lines{"a", "", "b"}));
}

TEST_F(FileReadLine, TakesLfCrForTwoLineEnds) {
    EXPECT_EQ(linesOf("a\n\rb"), (Lines{"a", "", "b"}));
}

TEST_F(FileReadLine, EndsALineAtANulByteWithoutStoringIt) {
    EXPECT_EQ(linesOf("a\0b\n"s), (Lines{"a", "b"}));
    EXPECT_EQ(linesOf("a\0\nb"s), (Lines{"a", "", "b"}));
    EXPECT_EQ(linesOf("a\r\0b"s), (Lines{"a", "", "b"})) << "the byte behind a lone CR stays";
    EXPECT_EQ(linesOf("\0"s), Lines{""});
}

TEST_F(FileReadLine, KeepsEveryOtherByte) {
    std::string bytes;
    for (int byte = 1; byte < 256; ++byte)
        if (byte != '\r' && byte != '\n')
            bytes += static_cast<char>(byte);
    EXPECT_EQ(linesOf(bytes + "\n" + bytes), (Lines{bytes, bytes}));
}

TEST_F(FileReadLine, NeedsNoLineEndAtTheEnd) {
    EXPECT_EQ(linesOf("whole"), Lines{"whole"});
    EXPECT_EQ(linesOf("x"), Lines{"x"});
}

TEST_F(FileReadLine, FindsNoLineInAnEmptyFile) { EXPECT_EQ(linesOf(""), Lines{}); }

TEST_F(FileReadLine, GivesALineMoreBehindACrAtTheVeryEnd) {
    openNew(0, "a\r");
    EXPECT_EQ(readLine(), "a");
    EXPECT_EQ(File_IsEof(0), 0);
    EXPECT_EQ(readLine(), "");
    EXPECT_EQ(File_IsEof(0), 1);
}

TEST_F(FileReadLine, GivesALineMoreBehindACrThatEndsABufferLoad) {
    openNew(0, std::string(4095, 'a') + "\r");
    EXPECT_EQ(readAll(), (Lines{std::string(4095, 'a'), ""}));
    EXPECT_EQ(File_IsEof(0), 1);
}

TEST_F(FileReadLine, EndsBehindALastCrWithoutABuffer) {
    openNewWithoutBuffer(0, "a\r");
    FileRecorder calls;
    EXPECT_EQ(readLine(), "a");
    EXPECT_EQ(calls.uses("SetFilePointer"), 0) << "that would find the CR again, for ever";
    EXPECT_EQ(File_IsEof(0), -1);
}

TEST_F(FileReadLine, JoinsACrAndAnLfOverTheBuffersBorder) {
    const std::string first(4095, 'a');
    EXPECT_EQ(linesOf(first + "\r\nb"), (Lines{first, "b"}));
    EXPECT_EQ(linesOf(first + "\rb"), (Lines{first, "b"}));
    EXPECT_EQ(linesOf(first + "x\r\nb"), (Lines{first + "x", "b"}));
}

TEST_F(FileReadLine, HasNoLimitOfLength) {
    for (const size_t length : {4094, 4095, 4096, 4097, 5000, 8191, 8192, 8193, 20000}) {
        const std::string line(length, 'x');
        EXPECT_TRUE(linesOf(line + "\r\n" + line) == (Lines{line, line})) << length;
    }
}

TEST_F(FileReadLine, ReadsTheFileOncePerBufferLoad) {
    openNew(0, std::string(10000, 'x'));
    FileRecorder calls;
    readLine();
    EXPECT_TRUE(calls.match(R"(
        HeapReAlloc(text, 1, *, 20485)
        ReadFile(*, *, 4096, &4096, null) -> 1
        ReadFile(*, *, 4096, &4096, null) -> 1
        HeapReAlloc(text, 1, *, 36869)
        ReadFile(*, *, 4096, &1808, null) -> 1
        ReadFile(*, *, 4096, &0, null) -> 1
    )"));
}

TEST_F(FileReadLine, GivesTheEmptyTextForAnUnknownFile) {
    Text_Append("abc");
    EXPECT_EQ(readLine(5), "");
    EXPECT_EQ(textAt(0), "abc");
    EXPECT_EQ(TextPosition, 3);
}

TEST_F(FileReadLine, MakesRoomBeforeItLooksForTheFile) {
    HeapRecorder calls;
    File_ReadLine(5, 0);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, *, 20485)"));
}

TEST_F(FileReadLine, TakesAReadErrorForTheEndOfTheFile) {
    openNew(0, std::string(5000, 'x') + "\nmore");
    FileRecorder calls;
    calls.fail("ReadFile", 2, 0);
    EXPECT_EQ(readLine(), std::string(4096, 'x'));
}

TEST_F(FileReadLine, TakesAReadErrorForTheEndWithoutABufferToo) {
    openNewWithoutBuffer(0, "abcdef");
    FileRecorder calls;
    calls.fail("ReadFile", 4, 0);
    EXPECT_EQ(readLine(), "abc");
}

// --- The room in the accumulator ---

TEST_F(FileReadLine, StandsAtItsPlace) {
    openNew(0, "line\n");
    Text_Append("before ");
    File_ReadLine(0, Text_Here());
    EXPECT_EQ(textAt(0), "before line");
    EXPECT_EQ(TextPosition, 11);
}

TEST_F(FileReadLine, ReservesOneStepAndShrinks) {
    openNew(0, "line\n");
    HeapRecorder calls;
    File_ReadLine(0, 0);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, *, 20485)")) << "4096 and 16389";
    EXPECT_EQ(TextPosition, 4);
}

// The accumulator has room for one step at `place`, but not for the next.
class FileReadLineRoom : public FileReadLine {
protected:
    FileReadLineRoom() {
        Text_Reserve(4096, 0);
        TextPosition = place;
    }

    static constexpr int32_t place = 8192;
};

TEST_F(FileReadLineRoom, IsReservedAgainWhenTheStepIsFilled) {
    openNew(0, std::string(4096, 'x'));
    HeapRecorder calls;
    File_ReadLine(0, place);
    EXPECT_TRUE(calls.match("HeapReAlloc(text, 1, *, 36869)")) << "20480 and 16389";
    EXPECT_EQ(TextPosition, place + 4096);
}

TEST_F(FileReadLineRoom, CountsTheLineEndAsLongAsItStandsThere) {
    openNew(0, std::string(4095, 'x') + "\n" + std::string(4094, 'x') + "\n");
    HeapRecorder calls;
    File_ReadLine(0, place);
    EXPECT_EQ(calls.uses("HeapReAlloc"), 1);
    EXPECT_EQ(textAt(place).size(), 4095u);
}

TEST_F(FileReadLineRoom, IsEnoughForALineBelowTheStep) {
    openNew(0, std::string(4094, 'x') + "\n");
    HeapRecorder calls;
    File_ReadLine(0, place);
    EXPECT_TRUE(calls.match(""));
    EXPECT_EQ(textAt(place).size(), 4094u);
}

TEST_F(FileReadLineRoom, MayMoveInTheMiddleOfALine) {
    const std::string line = std::string(4096, 'x') + std::string(4096, 'y') + "z";
    openNew(0, line + "\n");
    HeapRecorder calls;
    moveOnReallocation(calls);
    File_ReadLine(0, place);
    EXPECT_GE(calls.uses("HeapReAlloc"), 1);
    EXPECT_EQ(textAt(place), line);
    EXPECT_EQ(TextPosition, place + 8193);
}

} // namespace
