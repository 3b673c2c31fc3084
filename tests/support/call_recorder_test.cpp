#include "tests/support/call_recorder.h"

#include "tests/support/call_hooks.h"
#include "tests/support/child_run.h"
#include "tests/support/import_table.h"
#include "tests/support/line_difference.h"

#include <gtest/gtest-spi.h>

namespace {

using Lines = std::vector<std::string>;

TEST(CallRecorder, WritesNameArgumentsAndResultInOrder) {
    CallRecorder calls;
    HBRUSH brush = CreateSolidBrush(0xFF00FF);
    DeleteObject(brush);
    Sleep(0);
    EXPECT_EQ(calls.take(), (Lines{"CreateSolidBrush(0xFF00FF) -> brush1",
                                   "DeleteObject(brush1) -> 1", "Sleep(0)"}));
}

TEST(CallRecorder, GivesTheSameNamesToTheSameSteps) {
    CallRecorder calls;
    for (int pass = 0; pass < 2; ++pass) {
        HPEN kept = CreatePen(PS_SOLID, 0, 0);
        HPEN other = CreatePen(PS_SOLID, 1, 0);
        DeleteObject(kept);
        DeleteObject(other);
        EXPECT_TRUE(calls.match(R"(
            CreatePen(0, 0, 0) -> pen1
            CreatePen(0, 1, 0) -> pen2
            DeleteObject(pen1) -> 1
            DeleteObject(pen2) -> 1
        )"));
    }
}

TEST(CallRecorder, TakesTheTestsOwnNames) {
    HDC dc = CreateCompatibleDC(nullptr);
    CallRecorder calls;
    calls.name(dc, "memory");
    SetTextColor(dc, 0x010203);
    DeleteDC(dc);
    EXPECT_TRUE(calls.match(R"(
        SetTextColor(memory, 0x010203) -> 0
        DeleteDC(memory) -> 1
    )"));
}

TEST(CallRecorder, ShowsWhatACallWroteThroughAPointer) {
    HDC dc = CreateCompatibleDC(nullptr);
    CallRecorder calls;
    POINT old{};
    MoveToEx(dc, 3, 4, nullptr);
    MoveToEx(dc, 5, 6, &old);
    char folder[300];
    GetCurrentDirectoryA(sizeof folder, folder);
    DeleteDC(dc);
    EXPECT_TRUE(calls.match(R"(
        MoveToEx(dc1, 3, 4, null) -> 1
        MoveToEx(dc1, 5, 6, &{3, 4}) -> 1
        GetCurrentDirectoryA(300, &"*\\*")
        DeleteDC(dc1)
    )"));
}

TEST(CallRecorder, ShowsWhatLiesInStructures) {
    CallRecorder calls;
    WNDCLASSEXA window{};
    window.cbSize = sizeof window;
    window.style = CS_DBLCLKS;
    window.lpszClassName = "recorder test";
    RegisterClassExA(&window);
    EXPECT_TRUE(calls.match(R"(
        RegisterClassExA({80, style 8, null, 0, 0, null, icon null, cursor null, brush null, menu null, "recorder test", small null})
    )"));
}

TEST(CallRecorder, FailsTheNthUseFromNowAndNoOther) {
    CallRecorder calls;
    DeleteObject(CreateSolidBrush(1));
    calls.fail("CreateSolidBrush", 2, 0, ERROR_OUTOFMEMORY);
    HBRUSH first = CreateSolidBrush(1);
    SetLastError(0);
    HBRUSH second = CreateSolidBrush(2);
    const DWORD error = GetLastError();
    HBRUSH third = CreateSolidBrush(3);
    EXPECT_NE(first, nullptr);
    EXPECT_EQ(second, nullptr);
    EXPECT_EQ(error, static_cast<DWORD>(ERROR_OUTOFMEMORY));
    EXPECT_NE(third, nullptr);
    DeleteObject(first);
    DeleteObject(third);
    EXPECT_EQ(calls.uses("CreateSolidBrush"), 4);
}

TEST(CallRecorder, FailsForGoodUntilNothingFailsAnyMore) {
    CallRecorder calls;
    calls.failAlways("CreateSolidBrush", 0);
    EXPECT_EQ(CreateSolidBrush(1), nullptr);
    EXPECT_EQ(CreateSolidBrush(2), nullptr);
    calls.failNothing();
    HBRUSH brush = CreateSolidBrush(3);
    EXPECT_NE(brush, nullptr);
    DeleteObject(brush);
}

TEST(CallRecorder, LetsNoFailedCallHappen) {
    HBRUSH brush = CreateSolidBrush(1);
    {
        CallRecorder calls;
        calls.fail("DeleteObject", 1, 0);
        EXPECT_EQ(DeleteObject(brush), 0);
    }
    EXPECT_EQ(DeleteObject(brush), TRUE);
}

TEST(CallRecorder, ReplacesACallByTheTestsOwn) {
    CallRecorder calls;
    std::string shown;
    calls.replace<hook::MessageBoxA>([&](HWND, LPCSTR text, LPCSTR title, UINT) {
        shown = std::string(title) + ": " + text;
        return IDCANCEL;
    });
    EXPECT_EQ(MessageBoxA(nullptr, "words", "Title", MB_OK), IDCANCEL);
    EXPECT_EQ(shown, "Title: words");
    EXPECT_TRUE(calls.match(R"(MessageBoxA(null, "words", "Title", 0) -> 2)"));
}

TEST(CallRecorder, LetsAReplacementCallTheOriginal) {
    CallRecorder calls;
    calls.replace<hook::MulDiv>([&](int number, int numerator, int denominator) {
        return calls.original<hook::MulDiv>()(number, numerator, denominator) + 1;
    });
    EXPECT_EQ(MulDiv(14, 96, 72), 20);
}

TEST(CallRecorder, ActsJustBeforeAndJustAfterACall) {
    CallRecorder calls;
    std::string order;
    calls.replace<hook::Sleep>([&](DWORD) { order += "sleep "; });
    calls.before("Sleep", 2, [&] { order += "before "; });
    calls.after("Sleep", 2, [&] { order += "after "; });
    Sleep(1);
    Sleep(1);
    Sleep(1);
    EXPECT_EQ(order, "sleep before sleep after sleep ");
}

TEST(CallRecorder, KeepsTheLastErrorOfTheCall) {
    CallRecorder calls;
    SetLastError(ERROR_INVALID_DATA);
    GetCurrentThreadId();
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_DATA));
    EXPECT_EQ(GetFileAttributesA("no such file here"), INVALID_FILE_ATTRIBUTES);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST(CallRecorder, CountsWhatWasNotGivenBack) {
    CallRecorder calls;
    HANDLE heap = HeapCreate(0, 4096, 0);
    void* block = HeapAlloc(heap, 0, 16);
    block = HeapReAlloc(heap, 0, block, 70000);
    HeapAlloc(heap, 0, 32);
    HFONT font = CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial");
    EXPECT_EQ(calls.live("block"), 2u);
    EXPECT_EQ(calls.liveNames(), (Lines{"block1", "block2", "font1", "heap1"}));
    DeleteObject(font);
    HeapFree(heap, 0, block);
    EXPECT_EQ(calls.live("block"), 1u);
    HeapDestroy(heap);
    EXPECT_EQ(calls.liveNames(), Lines{});
}

TEST(CallRecorder, CountsHandlesThatCallsWriteThroughPointers) {
    CallRecorder calls;
    HANDLE readEnd = nullptr;
    HANDLE writeEnd = nullptr;
    CreatePipe(&readEnd, &writeEnd, nullptr, 0);
    HANDLE copy = nullptr;
    DuplicateHandle(GetCurrentProcess(), readEnd, GetCurrentProcess(), &copy, 0, FALSE,
                    DUPLICATE_SAME_ACCESS);
    EXPECT_EQ(calls.liveNames(), (Lines{"handle1", "pipe1", "pipe2"}));
    CloseHandle(readEnd);
    CloseHandle(writeEnd);
    CloseHandle(copy);
    EXPECT_EQ(calls.liveNames(), Lines{});
    EXPECT_TRUE(calls.match(R"(
        CreatePipe(&pipe1, &pipe2, null, 0) -> 1
        ...
        DuplicateHandle(-1, pipe1, -1, &handle1, 0, 0, 2) -> 1
        CloseHandle(pipe1) -> 1
        CloseHandle(pipe2) -> 1
        CloseHandle(handle1) -> 1
    )"));
}

TEST(CallRecorder, RecordsOnlyWhatIsAskedFor) {
    CallRecorder calls;
    calls.only({"GDI32", "Sleep"});
    calls.except({"DeleteObject"});
    DeleteObject(CreateSolidBrush(1));
    GetForegroundWindow();
    Sleep(0);
    EXPECT_TRUE(calls.match("CreateSolidBrush(1)\n Sleep(0)"));
    EXPECT_EQ(calls.uses("DeleteObject"), 1);
}

TEST(CallRecorder, DoesNotSeeQuietCalls) {
    CallRecorder calls;
    calls.failAlways("CreateSolidBrush", 0);
    HBRUSH brush = nullptr;
    {
        const QuietScope quiet;
        brush = CreateSolidBrush(1);
        EXPECT_NE(brush, nullptr);
        DeleteObject(brush);
    }
    EXPECT_EQ(calls.take(), Lines{});
    EXPECT_EQ(CreateSolidBrush(1), nullptr);
}

DWORD WINAPI sleepOnce(void*) {
    Sleep(0);
    return 0;
}

TEST(CallRecorder, KeepsOtherThreadsApart) {
    CallRecorder calls;
    HANDLE thread = CreateThread(nullptr, 8192, sleepOnce, nullptr, 0, nullptr);
    WaitForSingleObject(thread, INFINITE);
    CloseHandle(thread);
    EXPECT_TRUE(calls.match(R"(
        CreateThread(null, 8192, routine, null, 0, null) -> thread1
        WaitForSingleObject(thread1, -1) -> 0
        CloseHandle(thread1) -> 1
    )"));
    EXPECT_EQ(calls.takeOtherThreads(), Lines{"Sleep(0)"});
}

// Where the followed thread dies, its last call stands last, whatever another thread does then.
TEST(CallRecorder, EchoesTheFollowedThreadAlone) {
    const ChildReport child = runInChild([] {
        CallRecorder calls;
        HANDLE thread = CreateThread(nullptr, 0, sleepOnce, nullptr, CREATE_SUSPENDED, nullptr);
        calls.echo();
        Sleep(1);
        ResumeThread(thread);
        WaitForSingleObject(thread, INFINITE);
        EXPECT_EQ(calls.uses("Sleep"), 2);
    });
    EXPECT_TRUE(child.succeeded());
    EXPECT_NE(child.output.find("\r\nSleep(1)\r\n"), std::string::npos) << child.output;
    EXPECT_EQ(child.output.find("Sleep(0)"), std::string::npos) << child.output;
}

TEST(CallRecorder, IsNotDisturbedByTheTestsOwnMemory) {
    CallRecorder calls;
    for (int size = 1; size < 100000; size *= 3)
        std::string(static_cast<size_t>(size), 'x').shrink_to_fit();
    EXPECT_EQ(calls.uses("HeapAlloc"), 0);
    EXPECT_EQ(calls.take(), Lines{});
}

TEST(CallRecorder, PutsTheImportTableBack) {
    void** place = importPlaces("CreateSolidBrush").at(0);
    void* before = *place;
    EXPECT_EQ(hooksInImportTable(), 0u);
    {
        CallRecorder calls;
        EXPECT_NE(*place, before);
        EXPECT_GT(hooksInImportTable(), 10u);
    }
    EXPECT_EQ(*place, before);
    EXPECT_EQ(hooksInImportTable(), 0u);
}

TEST(CallRecorder, RefusesCallsThatCannotComeByAHook) {
    CallRecorder calls;
    EXPECT_TRUE(isHooked("Sleep"));
    EXPECT_TRUE(isHooked("IDirectDrawSurface7::Flip"));
    EXPECT_TRUE(isHooked("DirectDrawCreateEx"));
    EXPECT_FALSE(isHooked("NoSuchFunction"));
}

TEST(CallRecorder, FailsATestThatPlansForACallItCannotSee) {
    EXPECT_NONFATAL_FAILURE(
        {
            CallRecorder calls;
            calls.fail("CreateSolidBrsh", 1, 0);
        },
        "CreateSolidBrsh is not watched");
}

TEST(CallRecorder, PrintsTheDifferenceOfAFailedMatch) {
    CallRecorder calls;
    DeleteObject(CreateSolidBrush(1));
    const testing::AssertionResult result = calls.match("CreateSolidBrush(2) -> brush1");
    EXPECT_FALSE(result);
    EXPECT_STREQ(result.message(), "calls differ at recorded line 1 of 2, expected line 1 of 1:\n"
                                   "  expected: CreateSolidBrush(2) -> brush1\n"
                                   "  recorded: CreateSolidBrush(1) -> brush1\n"
                                   "    DeleteObject(brush1) -> 1\n");
    EXPECT_TRUE(calls.match("")) << "a look forgets what it saw";
}

TEST(CallRecorder, WatchesFunctionsThatAreFetchedByName) {
    CallRecorder calls;
    HMODULE library = LoadLibraryA("Kernel32.DLL");
    using Rewrite = DWORD(WINAPI*)(LPCSTR, LPSTR, DWORD);
    const auto rewrite = reinterpret_cast<Rewrite>(
        reinterpret_cast<void*>(GetProcAddress(library, "GetLongPathNameA")));
    char path[260];
    calls.fail("GetLongPathNameA", 1, 0);
    EXPECT_EQ(rewrite("C:\\", path, sizeof path), 0u);
    EXPECT_EQ(rewrite("C:\\", path, sizeof path), 3u);
    FreeLibrary(library);
    EXPECT_TRUE(calls.match(R"(
        LoadLibraryA("Kernel32.DLL") -> library1
        GetProcAddress(library1, "GetLongPathNameA") -> routine
        GetLongPathNameA("C:\\", &?, 260) -> 0
        GetLongPathNameA("C:\\", &"C:\\", 260) -> 3
        FreeLibrary(library1) -> 1
    )"));
}

TEST(CallRecorder, StopsFailingWhenItEnds) {
    {
        CallRecorder calls;
        calls.failAlways("CreateSolidBrush", 0);
    }
    CallRecorder next;
    HBRUSH brush = CreateSolidBrush(1);
    EXPECT_NE(brush, nullptr);
    DeleteObject(brush);
    EXPECT_EQ(next.uses("CreateSolidBrush"), 1);
}

TEST(ExpectedCalls, CompareNumbersByValue) {
    EXPECT_TRUE(lineMatches("A(0xFF, -1) -> 16", "A(255, 0xFFFFFFFF) -> 0x10"));
    EXPECT_FALSE(lineMatches("A(0xFF)", "A(254)"));
    EXPECT_FALSE(lineMatches("A(dc1)", "A(dc01)")) << "names are no numbers";
    EXPECT_FALSE(lineMatches("A(\"0x10\")", "A(\"16\")")) << "nor are texts";
}

TEST(ExpectedCalls, MayLeaveTheResultOpen) {
    EXPECT_TRUE(lineMatches("A(1)", "A(1) -> 7"));
    EXPECT_FALSE(lineMatches("A(1) -> 8", "A(1) -> 7"));
    EXPECT_FALSE(lineMatches("A(1) -> 7", "A(1)"));
}

TEST(ExpectedCalls, TakeAStarForAnything) {
    EXPECT_TRUE(lineMatches("A(*, 2) -> *", "A(\"x\", 2) -> 9"));
    EXPECT_FALSE(lineMatches("A(*, 2)", "A(1, 3)"));
}

TEST(ExpectedCalls, TakeThreeDotsForAnyLines) {
    EXPECT_EQ(lineDifference({"...", "B()"}, {"A()", "A()", "B()"}), "");
    EXPECT_EQ(lineDifference({"A()", "..."}, {"A()"}), "");
    EXPECT_EQ(lineDifference({"A()", "...", "B()", "...", "C()"}, {"A()", "B()", "B()", "C()"}),
              "");
    EXPECT_NE(lineDifference({"...", "B()"}, {"A()", "B()", "C()"}), "");
}

TEST(ExpectedCalls, SkipBlankLinesAndComments) {
    EXPECT_EQ(expectedLines("\n  // first\n  A()  \n\n\tB()"), (Lines{"A()", "B()"}));
}

TEST(ExpectedCalls, TellWhereTheyDiffer) {
    const Lines recorded = {"A()", "B(2) -> 1", "C()"};
    EXPECT_EQ(lineDifference({"A()", "B(3) -> 1", "C()"}, recorded),
              "calls differ at recorded line 2 of 3, expected line 2 of 3:\n"
              "    A()\n"
              "  expected: B(3) -> 1\n"
              "  recorded: B(2) -> 1\n"
              "    C()\n");
}

TEST(ExpectedCalls, TellWhatIsMissingOrTooMuch) {
    EXPECT_EQ(lineDifference({"A()", "B()"}, {"A()"}),
              "calls differ at recorded line 2 of 1, expected line 2 of 2:\n"
              "    A()\n"
              "  expected: B()\n"
              "  recorded: no further call\n");
    EXPECT_EQ(lineDifference({}, {"A()"}),
              "calls differ at recorded line 1 of 1, expected line 1 of 0:\n"
              "  expected: no further call\n"
              "  recorded: A()\n");
}

} // namespace
