// How a program is started, call by call. The starts themselves do not happen here: CreateProcessA
// and ShellExecuteExA are played by the test.

#include "desktop/process.h"

#include "desktop/process_state.h"
#include "runtime/heap_state.h"
#include "tests/support/child_run.h"
#include "tests/support/runtime_fixture.h"

namespace {

// Handles of things that end at once, standing for processes and threads.
HANDLE ended() { return CreateEventA(nullptr, TRUE, TRUE, nullptr); }

class ProcessSequence : public RuntimeTest {
protected:
    ProcessSequence() {
        Proc_SubsystemInit();
        calls.name(GeneralHeap, "general");
        calls.name(LooseHeap, "loose");
        calls.name(&input, "input");
        calls.name(&output, "output");
        calls.name(&error, "error");
        calls.replace<hook::GetStdHandle>([this](DWORD which) -> HANDLE {
            return which == STD_INPUT_HANDLE    ? &input
                   : which == STD_OUTPUT_HANDLE ? &output
                                                : &error;
        });
        calls.replace<hook::CreateProcessA>(
            [this](LPCSTR, LPSTR, LPSECURITY_ATTRIBUTES, LPSECURITY_ATTRIBUTES, BOOL, DWORD, LPVOID,
                   LPCSTR, LPSTARTUPINFOA given, LPPROCESS_INFORMATION made) {
                startup = *given;
                if (!startsProcess)
                    return FALSE;
                const QuietScope quiet;
                *made = {ended(), ended(), 4711, 1};
                return TRUE;
            });
        calls.replace<hook::ShellExecuteExA>([this](SHELLEXECUTEINFOA* given) {
            shell = *given;
            if (!startsByShell)
                return FALSE;
            const QuietScope quiet;
            given->hProcess = shellMakesProcess ? ended() : nullptr;
            return TRUE;
        });
        calls.except({"GetCurrentProcess"});
        calls.take();
    }

    CallRecorder calls;
    bool startsProcess = true;
    bool startsByShell = true;
    bool shellMakesProcess = true; // a document may be handed to a program that runs already
    STARTUPINFOA startup{};        // as CreateProcessA got it
    SHELLEXECUTEINFOA shell{};     // as ShellExecuteExA got it
    int input, output, error;      // their addresses stand for the parent's standard handles
};

TEST_F(ProcessSequence, OfTheSetUp) {
    calls.only({"InitializeCriticalSection"});
    Proc_SubsystemInit();
    EXPECT_TRUE(calls.match("InitializeCriticalSection(*)"));
}

// The self-extractor's way: hidden, not waited for, not kept.
TEST_F(ProcessSequence, OfAHiddenStart) {
    EXPECT_EQ(Proc_Run("C:\\t\\Qev\\x.exe", "", "C:\\t\\Qev\\", PROC_HIDE), 1);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 18) -> block1
        CreateProcessA(null, "\"C:\\t\\Qev\\x.exe\"", null, null, 0, 0x28, null, "C:\\t\\Qev\\", {104, flags 1, show 0, in null, out null, err null}, &{process1, thread1}) -> 1
        CloseHandle(thread1) -> 1
        CloseHandle(process1) -> 1
        HeapFree(general, 0, block1) -> 1
    )"));
}

// The intro's way: waited for and kept.
TEST_F(ProcessSequence, OfAStartThatIsWaitedForAndKept) {
    const int64_t child = Proc_Run("C:\\x.exe", "", "C:\\", PROC_WAIT | PROC_KEEP);
    EXPECT_NE(child, 0);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 12) -> block1
        CreateProcessA(null, "\"C:\\x.exe\"", null, null, 0, 0x20, null, "C:\\", {104, flags 1, show 1, in null, out null, err null}, &{process1, thread1}) -> 1
        CloseHandle(thread1) -> 1
        WaitForSingleObject(process1, -1) -> 0
        HeapAlloc(loose, 8, 56) -> block2
        HeapFree(general, 0, block1) -> 1
    )"));
    EXPECT_EQ(Proc_WaitEnd(reinterpret_cast<const ProcessHandle*>(child)), 1);
    EXPECT_EQ(Proc_WaitEndFor(reinterpret_cast<const ProcessHandle*>(child), 250), 1);
    EXPECT_TRUE(calls.match(R"(
        WaitForSingleObject(process1, -1) -> 0
        WaitForSingleObject(process1, 250) -> 0
    )"));
}

TEST_F(ProcessSequence, LocksTheListAroundTheInsertionAndNothingMore) {
    calls.only({"EnterCriticalSection", "LeaveCriticalSection", "HeapAlloc", "CreateProcessA",
                "WaitForSingleObject", "HeapFree"});
    Proc_Run("x", "", "", PROC_WAIT | PROC_KEEP);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, *)
        CreateProcessA(*)
        WaitForSingleObject(*)
        EnterCriticalSection(*)
        HeapAlloc(loose, 8, 56)
        LeaveCriticalSection(*)
        HeapFree(general, *)
    )"));
}

TEST_F(ProcessSequence, FillsInTheRecordWithoutTheLock) {
    const ProcessHandle* record = nullptr;
    HANDLE underTheLock = &input;
    calls.before("HeapAlloc", 2, [&] {
        calls.before("LeaveCriticalSection", 1, [&] {
            record = reinterpret_cast<const ProcessHandle*>(processList + 1);
            underTheLock = record->process;
        });
    });
    Proc_Run("x", "", "", PROC_KEEP);
    EXPECT_EQ(underTheLock, nullptr);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->processId, 4711);
}

TEST_F(ProcessSequence, TakesNoLockForAChildThatIsNotKept) {
    calls.only({"EnterCriticalSection", "LeaveCriticalSection"});
    Proc_Run("x", "", "", PROC_WAIT);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(ProcessSequence, WaitsForAChildThatIsNotKept) {
    calls.only({"WaitForSingleObject", "CloseHandle"});
    Proc_Run("x", "", "", PROC_WAIT);
    EXPECT_TRUE(calls.match(R"(
        CloseHandle(*)
        WaitForSingleObject(*, -1)
        CloseHandle(*)
    )"));
}

TEST_F(ProcessSequence, StartsWithNothingElseSet) {
    Proc_Run("x", "", "", 0);
    STARTUPINFOA plain{};
    plain.cb = sizeof plain;
    plain.dwFlags = STARTF_USESHOWWINDOW;
    plain.wShowWindow = SW_SHOWNORMAL;
    EXPECT_EQ(memcmp(&startup, &plain, sizeof plain), 0);
}

TEST_F(ProcessSequence, OfAStartInAFolderAndOfAProgramAlone) {
    EXPECT_EQ(Proc_RunIn("x", "", "C:\\d\\"), 1);
    EXPECT_EQ(Proc_RunProgram("x"), 1);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(null, "\"x\"", null, null, 0, 0x20, null, "C:\\d\\", *, *) -> 1
        CloseHandle(thread1) -> 1
        CloseHandle(process1) -> 1
        HeapFree(general, 0, block1) -> 1
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(null, "\"x\"", null, null, 0, 0x20, null, null, *, *) -> 1
        CloseHandle(thread1) -> 1
        CloseHandle(process1) -> 1
        HeapFree(general, 0, block1) -> 1
    )"));
}

// --- The command line ---

TEST_F(ProcessSequence, BuildsTheCommandLine) {
    const auto commandLine = [this](const char* program, const char* arguments) {
        calls.only({"CreateProcessA", "HeapAlloc"});
        Proc_Run(program, arguments, nullptr, 0);
        return calls.take();
    };
    const auto expected = [](const char* size, const char* text) {
        return std::vector<std::string>{std::string("HeapAlloc(general, 0, ") + size +
                                            ") -> block1",
                                        std::string("CreateProcessA(null, ") + text +
                                            ", null, null, 0, 32, null, null, {104, flags 1, show "
                                            "1, in null, out null, err null}, &{process1, thread1})"
                                            " -> 1"};
    };
    EXPECT_EQ(commandLine("a b", ""), expected("7", R"("\"a b\"")"));
    EXPECT_EQ(commandLine("a b", "c \"d"), expected("11", R"("\"a b\" c \"d")"));
    EXPECT_EQ(commandLine("\"a b\"", "c"), expected("10", R"("\"a b\" c")"));
    EXPECT_EQ(commandLine("\"a", ""), expected("6", R"("\"a")"));
    EXPECT_EQ(commandLine("", ""), expected("4", R"("\"\"")"));
    EXPECT_EQ(commandLine(nullptr, nullptr), expected("4", R"("\"\"")"));
}

// --- Without memory ---

// A failed allocation is not looked for: what is to be kept is written where there is no memory.
// The fixture is the new process's alone: the test starts that process itself, with CreateProcessA.
class StartWithoutMemory : public ProcessSequence {
public:
    void run(int failingAllocation) {
        calls.except({});
        calls.fail("HeapAlloc", failingAllocation, 0);
        calls.echo();
        Proc_Run("x", "", "", PROC_KEEP);
    }
    void TestBody() override {}
};

TEST(ProcessWithoutMemory, FaultsAtTheCommandLine) {
    const ChildReport child = runInChild([] { StartWithoutMemory().run(1); });
    EXPECT_TRUE(child.diedOfMemoryFaultAfter("HeapAlloc(general, 0, 5)"));
}

TEST(ProcessWithoutMemory, FaultsAtTheRecordOfAKeptChild) {
    const ChildReport child = runInChild([] { StartWithoutMemory().run(2); });
    EXPECT_TRUE(child.diedOfMemoryFaultAfter("HeapAlloc(loose, 8, 56)"));
}

// --- Pipes ---

TEST_F(ProcessSequence, OfThreePipes) {
    const int64_t result =
        Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_IN | PROC_PIPE_OUT | PROC_PIPE_ERR | PROC_HIDE);
    EXPECT_TRUE(calls.match(R"(
        CreatePipe(&pipe1, &pipe2, {24, null, inherit 1}, 0) -> 1
        DuplicateHandle(-1, pipe2, -1, &handle1, 0, 0, 2) -> 1
        CloseHandle(pipe2) -> 1
        CreatePipe(&pipe2, &pipe3, {24, null, inherit 1}, 0) -> 1
        DuplicateHandle(-1, pipe2, -1, &handle2, 0, 0, 2) -> 1
        CloseHandle(pipe2) -> 1
        CreatePipe(&pipe2, &pipe4, {24, null, inherit 1}, 0) -> 1
        DuplicateHandle(-1, pipe2, -1, &handle3, 0, 0, 2) -> 1
        CloseHandle(pipe2) -> 1
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(null, "\"x\"", null, null, 1, 0x20, null, null, {104, flags 0x101, show 0, in pipe1, out pipe3, err pipe4}, &{process1, thread1}) -> 1
        CloseHandle(pipe3) -> 1
        CloseHandle(pipe1) -> 1
        CloseHandle(pipe4) -> 1
        CloseHandle(thread1) -> 1
        HeapAlloc(loose, 8, 56) -> block2
        HeapFree(general, 0, block1) -> 1
    )"));
    const auto* child = reinterpret_cast<const ProcessHandle*>(result);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->processId, 4711);
    calls.only({"CloseHandle"});
    CloseHandle(child->stdinWrite);
    CloseHandle(child->stdoutRead);
    CloseHandle(child->stderrRead);
    CloseHandle(child->process);
    EXPECT_TRUE(calls.match(R"(
        CloseHandle(handle1) -> 1
        CloseHandle(handle2) -> 1
        CloseHandle(handle3) -> 1
        CloseHandle(process1) -> 1
    )"));
}

TEST_F(ProcessSequence, FillsTheOtherStreamsFromTheParentsOwn) {
    calls.only({"CreateProcessA", "GetStdHandle"});
    Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_OUT);
    EXPECT_TRUE(calls.match(R"(
        GetStdHandle(-10) -> input
        GetStdHandle(-12) -> error
        CreateProcessA(null, "\"x\"", null, null, 1, 0x20, null, null, {104, flags 0x101, show 1, in input, out pipe2, err error}, *) -> 1
    )"));
    Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_IN);
    EXPECT_TRUE(calls.match(R"(
        GetStdHandle(-11) -> output
        GetStdHandle(-12) -> error
        CreateProcessA(null, "\"x\"", null, null, 1, 0x20, null, null, {104, flags 0x101, show 1, in *, out output, err error}, *) -> 1
    )"));
    Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_ERR);
    EXPECT_TRUE(calls.match(R"(
        GetStdHandle(-10) -> input
        GetStdHandle(-11) -> output
        CreateProcessA(null, "\"x\"", null, null, 1, 0x20, null, null, {104, flags 0x101, show 1, in input, out output, err *}, *) -> 1
    )"));
}

TEST_F(ProcessSequence, StaysDetachedWithoutARedirection) {
    calls.only({"CreateProcessA"});
    Proc_Run("x", "", "", PROC_HIDE | PROC_KEEP);
    Proc_Run("x", "", "", PROC_HIDE | PROC_PIPE_OUT);
    EXPECT_TRUE(calls.match(R"(
        CreateProcessA(null, *, null, null, 0, 0x28, null, null, {104, flags 1, show 0, in null, out null, err null}, *)
        CreateProcessA(null, *, null, null, 0, 0x28, null, null, {104, flags 1, show 0, in null, out null, err null}, *)
    )"));
}

TEST_F(ProcessSequence, IsHiddenButNotDetachedWithEachRedirection) {
    calls.only({"CreateProcessA"});
    for (const int32_t flag : {PROC_PIPE_IN, PROC_PIPE_OUT, PROC_PIPE_ERR}) {
        Proc_Run("x", "", "", PROC_HIDE | PROC_KEEP | flag);
        EXPECT_TRUE(calls.match("CreateProcessA(null, *, null, null, 1, 0x20, null, null, {104, "
                                "flags 0x101, show 0, *}, *)"))
            << flag;
    }
}

TEST_F(ProcessSequence, OfPipesThatCannotBeMade) {
    calls.failAlways("CreatePipe", 0);
    const auto* child = reinterpret_cast<const ProcessHandle*>(
        Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_IN | PROC_PIPE_OUT | PROC_PIPE_ERR));
    EXPECT_TRUE(calls.match(R"(
        CreatePipe(&?, &?, {24, null, inherit 1}, 0) -> 0
        CreatePipe(&?, &?, {24, null, inherit 1}, 0) -> 0
        CreatePipe(&?, &?, {24, null, inherit 1}, 0) -> 0
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(null, "\"x\"", null, null, 0, 0x20, null, null, {104, flags 1, show 1, in null, out null, err null}, &{process1, thread1}) -> 1
        CloseHandle(thread1) -> 1
        HeapAlloc(loose, 8, 56) -> block2
        HeapFree(general, 0, block1) -> 1
    )"));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
}

// CreatePipe promises nothing about its two results when it fails.
TEST_F(ProcessSequence, KeepsNothingOfAPipeThatFailed) {
    calls.replace<hook::CreatePipe>(
        [this](HANDLE* readEnd, HANDLE* writeEnd, SECURITY_ATTRIBUTES*, DWORD) {
            *readEnd = *writeEnd = &input;
            return FALSE;
        });
    const auto* child = reinterpret_cast<const ProcessHandle*>(
        Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_IN | PROC_PIPE_OUT | PROC_PIPE_ERR));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
    EXPECT_EQ(calls.uses("CloseHandle"), 1) << "the thread's";
}

TEST_F(ProcessSequence, OfAHandleThatCannotBeCopied) {
    calls.fail("DuplicateHandle", 1, 0);
    const auto* child =
        reinterpret_cast<const ProcessHandle*>(Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_IN));
    EXPECT_TRUE(calls.match(R"(
        CreatePipe(&pipe1, &pipe2, {24, null, inherit 1}, 0) -> 1
        DuplicateHandle(-1, pipe2, -1, &?, 0, 0, 2) -> 0
        GetStdHandle(*)
        GetStdHandle(*)
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(null, "\"x\"", null, null, 1, 0x20, null, null, {104, flags 0x101, show 1, in pipe1, *}, *) -> 1
        CloseHandle(pipe1) -> 1
        CloseHandle(thread1) -> 1
        HeapAlloc(loose, 8, 56) -> block2
        HeapFree(general, 0, block1) -> 1
    )"));
    calls.only({"CloseHandle"});
    CloseHandle(child->stdinWrite);
    EXPECT_TRUE(calls.match("CloseHandle(pipe2) -> 1"));
}

// --- A chain ---

TEST_F(ProcessSequence, ChainsTheSendersOutput) {
    const ProcessHandle sender{nullptr, 0, nullptr, &output, nullptr};
    EXPECT_EQ(Proc_RunEx("x", "", "", PROC_CHAIN | PROC_HIDE, &sender), 1);
    EXPECT_TRUE(calls.match(R"(
        GetStdHandle(-11) -> output
        GetStdHandle(-12) -> error
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(null, "\"x\"", null, null, 1, 0x20, null, null, {104, flags 0x101, show 0, in output, out output, err error}, &{process1, thread1}) -> 1
        CloseHandle(thread1) -> 1
        CloseHandle(process1) -> 1
        HeapFree(general, 0, block1) -> 1
    )"));
}

TEST_F(ProcessSequence, PrefersTheChainToAPipe) {
    const ProcessHandle sender{nullptr, 0, nullptr, &output, nullptr};
    const auto* child = reinterpret_cast<const ProcessHandle*>(
        Proc_RunEx("x", "", "", PROC_CHAIN | PROC_KEEP | PROC_PIPE_IN, &sender));
    EXPECT_EQ(calls.uses("CreatePipe"), 0);
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->stdinWrite, nullptr);
}

TEST_F(ProcessSequence, TakesAPipeWhereThereIsNothingToChain) {
    const ProcessHandle mute{nullptr, 0, nullptr, nullptr, nullptr};
    Proc_RunEx("x", "", "", PROC_CHAIN | PROC_KEEP | PROC_PIPE_IN, &mute);
    EXPECT_EQ(calls.uses("CreatePipe"), 1);
    Proc_RunEx("x", "", "", PROC_CHAIN | PROC_KEEP | PROC_PIPE_IN, nullptr);
    EXPECT_EQ(calls.uses("CreatePipe"), 2);
}

TEST_F(ProcessSequence, DoesNotChainUnlessAsked) {
    const ProcessHandle sender{nullptr, 0, nullptr, &output, nullptr};
    Proc_RunEx("x", "", "", 0, &sender);
    EXPECT_EQ(startup.hStdInput, nullptr);
    EXPECT_EQ(startup.dwFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
}

// --- Failures ---

TEST_F(ProcessSequence, OfAFailedStartClosesAllSixEnds) {
    startsProcess = false;
    EXPECT_EQ(
        Proc_Run("x", "", "", PROC_KEEP | PROC_PIPE_IN | PROC_PIPE_OUT | PROC_PIPE_ERR | PROC_WAIT),
        0);
    EXPECT_EQ(calls.liveNames(), std::vector<std::string>{});
    EXPECT_EQ(calls.uses("CloseHandle"), 9) << "three more were closed for their copies";
    EXPECT_EQ(calls.uses("ShellExecuteExA"), 0);
    EXPECT_EQ(calls.take().back(), "HeapFree(general, 0, block1) -> 1");
    EXPECT_EQ(processList, nullptr);
}

TEST_F(ProcessSequence, OfAFailedStartIsBarredFromTheShellByEachPipeAndByAChain) {
    startsProcess = false;
    for (const int32_t flag : {PROC_PIPE_OUT, PROC_PIPE_IN, PROC_PIPE_ERR, PROC_CHAIN})
        EXPECT_EQ(Proc_Run("x", "", "", flag), 0) << flag;
    EXPECT_EQ(calls.uses("ShellExecuteExA"), 0);
    for (const int32_t flag : {0, PROC_WAIT, PROC_HIDE, PROC_KEEP, 128})
        EXPECT_NE(Proc_Run("x", "", "", flag), 0) << flag;
    EXPECT_EQ(calls.uses("ShellExecuteExA"), 5);
}

TEST_F(ProcessSequence, OfAStartThroughTheShell) {
    startsProcess = false;
    EXPECT_EQ(Proc_Run("C:\\d\\read me.txt", "some words", "", 0), 1);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 30) -> block1
        CreateProcessA(null, "\"C:\\d\\read me.txt\" some words", null, null, 0, 0x20, null, null, {104, flags 1, show 1, in null, out null, err null}, *) -> 0
        ShellExecuteExA({112, mask 0x40, null, verb "", file "C:\\d\\read me.txt", arguments "some words", folder "C:\\d\\", show 1}, &process1) -> 1
        CloseHandle(process1) -> 1
        HeapFree(general, 0, block1) -> 1
    )"));
}

TEST_F(ProcessSequence, OfAShellStartThatIsWaitedForAndKept) {
    startsProcess = false;
    const auto* child = reinterpret_cast<const ProcessHandle*>(
        Proc_Run("x.txt", "", "C:\\e\\", PROC_WAIT | PROC_KEEP | PROC_HIDE));
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 9) -> block1
        CreateProcessA(*) -> 0
        ShellExecuteExA({112, mask 0x40, null, verb "", file "x.txt", arguments "", folder "C:\\e\\", show 0}, &process1) -> 1
        WaitForSingleObject(process1, -1) -> 0
        HeapAlloc(loose, 8, 56) -> block2
        HeapFree(general, 0, block1) -> 1
    )"));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->process, reinterpret_cast<const ProcessHandle*>(processList + 1)->process);
    EXPECT_EQ(child->processId, -1);
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
}

TEST_F(ProcessSequence, OfAShellStartThatMakesNoProcess) {
    startsProcess = false;
    shellMakesProcess = false;
    EXPECT_EQ(Proc_Run("x.txt", "", "", 0), 1);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 9) -> block1
        CreateProcessA(*) -> 0
        ShellExecuteExA(*) -> 1
        CloseHandle(null) -> 0
        HeapFree(general, 0, block1) -> 1
    )"));
}

TEST_F(ProcessSequence, OfAShellStartThatMakesNoProcessToWaitForAndKeep) {
    startsProcess = false;
    shellMakesProcess = false;
    const auto* child =
        reinterpret_cast<const ProcessHandle*>(Proc_Run("x.txt", "", "", PROC_WAIT | PROC_KEEP));
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 9) -> block1
        CreateProcessA(*) -> 0
        ShellExecuteExA(*) -> 1
        WaitForSingleObject(null, -1) -> -1
        HeapAlloc(loose, 8, 56) -> block2
        HeapFree(general, 0, block1) -> 1
    )"));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->process, nullptr);
    EXPECT_EQ(child->processId, -1);
}

TEST_F(ProcessSequence, OfAShellStartThatFails) {
    startsProcess = false;
    startsByShell = false;
    EXPECT_EQ(Proc_Run("x", "", "", PROC_WAIT | PROC_KEEP), 0);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 5) -> block1
        CreateProcessA(*) -> 0
        ShellExecuteExA(*) -> 0
        HeapFree(general, 0, block1) -> 1
    )"));
    EXPECT_EQ(processList, nullptr);
}

TEST_F(ProcessSequence, AsksTheShellForNothingElse) {
    startsProcess = false;
    Proc_Run("x", "", "", 0);
    SHELLEXECUTEINFOA plain{};
    plain.cbSize = sizeof plain;
    plain.fMask = SEE_MASK_NOCLOSEPROCESS;
    plain.lpVerb = shell.lpVerb;
    plain.lpFile = shell.lpFile;
    plain.lpParameters = shell.lpParameters;
    plain.nShow = SW_SHOWNORMAL;
    EXPECT_EQ(memcmp(&shell, &plain, sizeof plain), 0);
}

TEST_F(ProcessSequence, TakesTheProgramsFolderForTheShell) {
    startsProcess = false;
    const auto folder = [this](const char* program, const char* given) {
        calls.only({"ShellExecuteExA"});
        Proc_Run(program, "", given, 0);
        const std::string line = calls.take().at(0);
        const size_t start = line.find("folder ") + 7;
        return line.substr(start, line.find(", show") - start);
    };
    EXPECT_EQ(folder("C:\\a\\b c\\d.txt", nullptr), R"("C:\\a\\b c\\")");
    EXPECT_EQ(folder("a\\d.txt", ""), R"("a\\")");
    EXPECT_EQ(folder("a\\", ""), R"("a\\")");
    EXPECT_EQ(folder("d.txt", ""), "null");
    EXPECT_EQ(folder("\\d.txt", ""), "null") << "a backslash at the very front is no folder";
    EXPECT_EQ(folder("\\a\\d.txt", ""), R"("\\a\\")");
    EXPECT_EQ(folder("", ""), "null");
    EXPECT_EQ(folder("C:\\a\\d.txt", "E:\\"), R"("E:\\")");
}

// --- Short forms ---

TEST_F(ProcessSequence, OfTheShortForms) {
    calls.only({"CreateProcessA"});
    Proc_RunIn("x", "y", "C:\\z\\");
    Proc_RunProgram("x");
    EXPECT_TRUE(calls.match(R"(
        CreateProcessA(null, "\"x\" y", null, null, 0, 0x20, null, "C:\\z\\", {104, flags 1, show 1, *}, *)
        CreateProcessA(null, "\"x\"", null, null, 0, 0x20, null, null, {104, flags 1, show 1, *}, *)
    )"));
}

} // namespace
