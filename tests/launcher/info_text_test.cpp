#include "launcher/info_text.h"

#include "launcher/variables.h"
#include "tests/support/file_fixture.h"

#include <algorithm>
#include <vector>

namespace {

using namespace std::string_literals;

using Lines = std::vector<std::string>;

class InfoTextTest : public FileTest {
protected:
    InfoTextTest() { Launcher = {}; }
    ~InfoTextTest() override { Launcher = {}; }

    // The list's lines after a file of that content was read.
    static Lines linesOf(const std::string& content) {
        ScratchFolder::write("ostrik.nfo", content);
        return read();
    }

    static Lines read() {
        InfoText_New();
        InfoText_Read();
        EXPECT_EQ(TextPosition, 0) << "the accumulator is left empty";
        EXPECT_EQ(Launcher.InfoLineCount, Launcher.InfoLines->count);
        Lines lines;
        for (int64_t n = 0; List_SelectElement(Launcher.InfoLines, n); ++n) {
            EXPECT_NE(InfoText_CurrentLine(), nullptr);
            lines.push_back(InfoText_CurrentLine());
        }
        return lines;
    }
};

// --- The list ---

using InfoTextNew = InfoTextTest;

TEST_F(InfoTextNew, MakesAListOfOneTextAnElement) {
    Launcher.InfoLineCount = 99;
    InfoText_New();
    EXPECT_EQ(Launcher.InfoLines->elementSize, 24) << "8 and the links";
    EXPECT_EQ(Launcher.InfoLines->typeCode, 8);
    EXPECT_EQ(Launcher.InfoLines->currentVar, &Launcher.InfoLineCurrent);
    EXPECT_EQ(Launcher.InfoLines->fieldMap[0], 0);
    EXPECT_EQ(Launcher.InfoLines->fieldMap[1], FieldMap_End);
    EXPECT_EQ(Launcher.InfoLines->count, 0);
    EXPECT_EQ(Launcher.InfoLineCount, 0);
}

TEST_F(InfoTextNew, TouchesNoFile) {
    CallRecorder calls;
    InfoText_New();
    EXPECT_EQ(calls.uses("CreateFileA"), 0);
}

using InfoTextCurrentLine = InfoTextTest;

TEST_F(InfoTextCurrentLine, IsTheTextBehindTheCurrentElementsLinks) {
    linesOf("one\ntwo\nthree");
    List_SelectElement(Launcher.InfoLines, 1);
    EXPECT_STREQ(InfoText_CurrentLine(), "two");
    List_SelectElement(Launcher.InfoLines, 2);
    EXPECT_STREQ(InfoText_CurrentLine(), "three");
}

TEST_F(InfoTextCurrentLine, IsNullForAnElementWithoutAText) {
    InfoText_New();
    List_AddElement(Launcher.InfoLines);
    EXPECT_EQ(InfoText_CurrentLine(), nullptr);
}

// --- The file ---

using InfoTextRead = InfoTextTest;

TEST_F(InfoTextRead, TakesTheFileFromTheCurrentFolderAsFileZero) {
    ScratchFolder::write("ostrik.nfo", "a\nb");
    InfoText_New();
    FileRecorder calls;
    calls.only({"CreateFileA", "CloseHandle", "ReadFile"});
    InfoText_Read();
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("ostrik.nfo", 0x80000000, 1, null, 3, 128, null) -> file1
        ReadFile(file1, *, 4096, &3, null) -> 1
        ReadFile(file1, *, 4096, &0, null) -> 1
        ReadFile(file1, *, 4096, &0, null) -> 1
        CloseHandle(file1) -> 1
    )"));
}

TEST_F(InfoTextRead, OpensTheFileUnderNumberZero) {
    ScratchFolder::write("ostrik.nfo", "a");
    InfoText_New();
    bool wasOpen = false;
    CallRecorder calls;
    calls.before("ReadFile", 1, [&] { wasOpen = record(0) != nullptr; });
    InfoText_Read();
    EXPECT_TRUE(wasOpen);
    EXPECT_EQ(record(0), nullptr) << "and closes it";
}

TEST_F(InfoTextRead, GivesALineForEachOfTheFiles) {
    EXPECT_EQ(linesOf("one\r\ntwo\nthree\rfour"), (Lines{"one", "two", "three", "four"}));
}

TEST_F(InfoTextRead, GivesOneLineWithoutAFinalLineEnd) {
    EXPECT_EQ(linesOf("only"), Lines{"only"});
    EXPECT_EQ(Launcher.InfoLineCount, 1);
}

TEST_F(InfoTextRead, LeavesTheLastLineCurrent) {
    ScratchFolder::write("ostrik.nfo", "one\ntwo");
    InfoText_New();
    InfoText_Read();
    EXPECT_STREQ(InfoText_CurrentLine(), "two");
    EXPECT_EQ(Launcher.InfoLineCurrent, Launcher.InfoLines->last);
}

TEST_F(InfoTextRead, KeepsBlankLinesAsEmptyTexts) {
    EXPECT_EQ(linesOf("a\r\n\r\n\r\nb\r\n"), (Lines{"a", "", "", "b"}));
}

TEST_F(InfoTextRead, OfALoneLineEndIsOneEmptyLine) {
    EXPECT_EQ(linesOf("\r\n"), Lines{""});
    EXPECT_EQ(Launcher.InfoLineCount, 1);
}

TEST_F(InfoTextRead, TrimsNothing) { EXPECT_EQ(linesOf("  a  \r\n "), (Lines{"  a  ", " "})); }

TEST_F(InfoTextRead, MakesFiveBlanksOfEveryTab) {
    EXPECT_EQ(linesOf("\ta"), Lines{"     a"});
    EXPECT_EQ(linesOf("\t\ta"), Lines{"          a"});
    EXPECT_EQ(linesOf("ab\tc\td\t"), Lines{"ab     c     d     "});
    EXPECT_EQ(linesOf("\t\n\t"), (Lines{"     ", "     "}));
}

TEST_F(InfoTextRead, KeepsTheOtherBytesOfALineWithTabs) {
    EXPECT_EQ(linesOf("\xC9\xCD\t\xCD\xBB iI"), Lines{"\xC9\xCD     \xCD\xBB iI"});
}

TEST_F(InfoTextRead, EndsALineAtANulByte) { EXPECT_EQ(linesOf("a\0b\n"s), (Lines{"a", "b"})); }

TEST_F(InfoTextRead, HasNoLimitOfLinesOrLength) {
    const std::string line(5000, 'x');
    EXPECT_TRUE(linesOf(line + "\n\t" + line) == (Lines{line, "     " + line}));
    std::string many;
    for (int n = 0; n < 1000; ++n)
        many += "line " + std::to_string(n) + "\n";
    const Lines lines = linesOf(many);
    ASSERT_EQ(lines.size(), 1000u);
    EXPECT_EQ(lines[999], "line 999");
    EXPECT_EQ(Launcher.InfoLineCount, 1000);
}

TEST_F(InfoTextRead, StoresEachLineInABlockOfItsOwn) {
    ScratchFolder::write("ostrik.nfo", "four\n\nsevenxx");
    InfoText_New();
    Text_Reserve(20000, 0); // so that the accumulator stays out of the calls
    Text_Shrink(20000);
    HeapRecorder calls;
    InfoText_Read();
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 4096) -> block1
        HeapAlloc(general, 0, 552) -> block2
        HeapAlloc(text, 1, 9) -> block3
        HeapAlloc(text, 1, 5) -> block4
        HeapAlloc(text, 1, 12) -> block5
        HeapFree(general, 0, block1) -> 1
    )"));
}

TEST_F(InfoTextRead, ReplacesTabsOverAMoveOfTheAccumulator) {
    ScratchFolder::write("ostrik.nfo", std::string(4000, '\t') + "end");
    InfoText_New();
    CallRecorder calls;
    moveOnReallocation(calls);
    InfoText_Read();
    EXPECT_TRUE(std::string(20000, ' ') + "end" == InfoText_CurrentLine());
}

TEST_F(InfoTextRead, BuildsItsLinesBehindWhatTheAccumulatorHolds) {
    ScratchFolder::write("ostrik.nfo", "\tone\ntwo");
    InfoText_New();
    Text_Append("before");
    InfoText_Read();
    EXPECT_EQ(TextPosition, 6);
    EXPECT_EQ(std::string(TextBase, 6), "before");
    EXPECT_STREQ(InfoText_CurrentLine(), "two");
    List_SelectElement(Launcher.InfoLines, 0);
    EXPECT_STREQ(InfoText_CurrentLine(), "     one");
}

// How often the accumulator grows for a line of 9997 bytes with 4096 tabs, if it has room for 36379
// bytes and `used` of them are taken. Line and terminator are 9998 bytes, and the result 26381.
int growthsForLine(int32_t used) {
    ScratchFolder::write("ostrik.nfo", std::string(4096, '\t') + std::string(9997 - 4096, 'x'));
    InfoText_New();
    Text_Reserve(20000, 0);
    Text_Shrink(20000 - used);
    CallRecorder calls;
    InfoText_Read();
    return calls.uses("HeapReAlloc");
}

TEST_F(InfoTextRead, LeavesTheLineAndItsTerminatorStandingWhileTabsAreReplaced) {
    EXPECT_EQ(growthsForLine(0), 0);
}

TEST_F(InfoTextRead, GrowsTheAccumulatorWhenLineAndResultDoNotFit) {
    EXPECT_EQ(growthsForLine(1), 1);
}

// --- What is shown instead of a file ---

TEST_F(InfoTextRead, SaysThatThereIsNoFile) {
    EXPECT_EQ(read(), Lines{"No NFO File Found"});
    EXPECT_EQ(Launcher.InfoLineCount, 1);
}

TEST_F(InfoTextRead, NeitherClosesNorReportsAMissingFile) {
    InfoText_New();
    CallRecorder calls;
    InfoText_Read();
    EXPECT_TRUE(calls.match(R"(
        CreateFileA("ostrik.nfo", 0x80000000, 1, null, 3, 128, null)
        HeapAlloc(*, 0, 552) -> block1
        HeapAlloc(*, 1, 22) -> block2
    )"));
}

TEST_F(InfoTextRead, SaysThatThereIsNoFileForOneThatCannotBeOpened) {
    CreateDirectoryA("ostrik.nfo", nullptr);
    EXPECT_EQ(read(), Lines{"No NFO File Found"});
}

TEST_F(InfoTextRead, SaysThatTheFileIsEmpty) {
    CallRecorder calls;
    EXPECT_EQ(linesOf(""), Lines{"NFO File is empty"});
    EXPECT_EQ(Launcher.InfoLineCount, 1);
    EXPECT_EQ(calls.live("file"), 0u);
}

TEST_F(InfoTextRead, EndsWhereAFileCannotBeReadOn) {
    std::string content;
    while (content.size() < 10000)
        content += "123456789012345\n"; // a buffer load ends with a line
    CallRecorder calls;
    calls.fail("ReadFile", 2, 0, ERROR_READ_FAULT);
    EXPECT_EQ(linesOf(content).size(), 256u);
    EXPECT_EQ(calls.live("file"), 0u);
}

TEST_F(InfoTextRead, SaysThatAFileIsEmptyThatCannotBeReadAtAll) {
    CallRecorder calls;
    calls.failAlways("ReadFile", 0);
    EXPECT_EQ(linesOf("text"), Lines{"NFO File is empty"});
}

TEST_F(InfoTextTest, ClosesAnEmptyFileBeforeItStoresTheLine) {
    ScratchFolder::write("ostrik.nfo", "");
    InfoText_New();
    CallRecorder calls;
    calls.name(TextHeap, "text");
    calls.only({"CloseHandle", "HeapAlloc"});
    InfoText_Read();
    const Lines lines = calls.take();
    const auto isClose = [](const std::string& line) { return line.starts_with("CloseHandle("); };
    const auto isText = [](const std::string& line) { return line.starts_with("HeapAlloc(text"); };
    const auto closed = std::find_if(lines.begin(), lines.end(), isClose);
    EXPECT_NE(closed, lines.end());
    EXPECT_EQ(std::find_if(lines.begin(), closed, isText), closed);
    EXPECT_NE(std::find_if(closed, lines.end(), isText), lines.end());
}

} // namespace
