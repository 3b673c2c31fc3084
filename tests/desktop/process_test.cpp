#include "desktop/process.h"

#include "desktop/process_state.h"
#include "tests/support/probe_program.h"
#include "tests/support/runtime_fixture.h"

#include <cstddef>
#include <thread>

static_assert(offsetof(ProcessHandle, process) == 0);
static_assert(offsetof(ProcessHandle, processId) == 8);
static_assert(offsetof(ProcessHandle, stdinWrite) == 16);
static_assert(offsetof(ProcessHandle, stdoutRead) == 24);
static_assert(offsetof(ProcessHandle, stderrRead) == 32);
static_assert(PROC_WAIT == 1 && PROC_HIDE == 2 && PROC_KEEP == 4 && PROC_PIPE_OUT == 8);
static_assert(PROC_PIPE_IN == 16 && PROC_PIPE_ERR == 32 && PROC_CHAIN == 64);

namespace {

constexpr int32_t keptWithPipes = PROC_KEEP | PROC_PIPE_OUT | PROC_PIPE_IN | PROC_PIPE_ERR;

// Has a folder of its own under the temp folder for programs and documents.
class ProcessTest : public RuntimeTest {
protected:
    ProcessTest() {
        Proc_SubsystemInit();
        char temp[MAX_PATH];
        GetTempPathA(sizeof temp, temp);
        folder = temp + ("process" + std::to_string(GetCurrentProcessId()) + "\\");
        CreateDirectoryA(folder.c_str(), nullptr);
        GetCurrentDirectoryA(sizeof temp, temp);
        ownFolder = temp;
    }
    ~ProcessTest() override {
        for (const std::string& file : files)
            waitUntil([&] { return DeleteFileA(file.c_str()); });
        RemoveDirectoryA(folder.c_str());
    }

    // A copy of this program.
    std::string program(const char* name) {
        const std::string path = file(name);
        CopyFileA(Probe::ownPath().c_str(), path.c_str(), FALSE);
        return path;
    }
    std::string document(const char* name) {
        const std::string path = file(name);
        fclose(fopen(path.c_str(), "wb"));
        return path;
    }
    std::string file(const char* name) { return files.emplace_back(folder + name); }

    const std::string self = Probe::ownPath();
    std::string folder;
    std::string ownFolder; // the parent's current one
    std::vector<std::string> files;
};

const ProcessHandle* kept(int64_t result) { return reinterpret_cast<const ProcessHandle*>(result); }

bool hasEnded(const ProcessHandle* child) {
    DWORD code = STILL_ACTIVE;
    GetExitCodeProcess(child->process, &code);
    return code == Probe::exitCode;
}

// All that comes by the pipe up to its end, which has to come.
std::string readToEnd(HANDLE pipe) {
    std::string text;
    DWORD waiting = 0;
    const auto drain = [&] {
        char letter;
        DWORD count;
        while (PeekNamedPipe(pipe, nullptr, 0, nullptr, &waiting, nullptr)) {
            if (waiting == 0)
                return false;
            ReadFile(pipe, &letter, 1, &count, nullptr);
            text += letter;
        }
        return GetLastError() == ERROR_BROKEN_PIPE;
    };
    EXPECT_TRUE(waitUntil(drain)) << "someone still holds the end that is written to";
    return text;
}

void write(HANDLE pipe, const std::string& text) {
    DWORD written;
    WriteFile(pipe, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
}

bool isInheritable(HANDLE handle) {
    DWORD flags = 0;
    GetHandleInformation(handle, &flags);
    return (flags & HANDLE_FLAG_INHERIT) != 0;
}

// --- The command line ---

using ProcRun = ProcessTest;

TEST_F(ProcRun, RunsAPathWithBlanksAndNotTheProgramOfItsFirstWord) {
    const Probe probe;
    const std::string path = program("pro be.exe");
    program("pro.exe");
    const auto* child = kept(Proc_Run(path.c_str(), "", "", PROC_WAIT | PROC_KEEP));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(probe.report().program, path);
    EXPECT_EQ(probe.report().commandLine, "\"" + path + "\"");
}

TEST_F(ProcRun, DoesNotQuoteAQuotedPathAgain) {
    const Probe probe;
    const std::string quoted = "\"" + program("pro be.exe") + "\"";
    EXPECT_NE(Proc_Run(quoted.c_str(), "", "", PROC_WAIT | PROC_KEEP), 0);
    EXPECT_EQ(probe.report().commandLine, quoted);
}

TEST_F(ProcRun, AddsNothingBehindTheProgramForEmptyArguments) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(self.c_str(), "", "", PROC_WAIT), 1);
    EXPECT_EQ(probe.report().commandLine, "\"" + self + "\"");
}

TEST_F(ProcRun, TakesNullArgumentsForEmptyOnes) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(self.c_str(), nullptr, nullptr, PROC_WAIT), 1);
    EXPECT_EQ(probe.report().commandLine, "\"" + self + "\"");
}

TEST_F(ProcRun, PassesArgumentsOnUnchangedBehindOneBlank) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(self.c_str(), R"( a "b c" \"d\" %e)", "", PROC_WAIT), 1);
    EXPECT_EQ(probe.report().commandLine, "\"" + self + R"("  a "b c" \"d\" %e)");
}

// --- The working folder ---

TEST_F(ProcRun, GivesTheChildItsWorkingFolder) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(self.c_str(), "", folder.c_str(), PROC_WAIT), 1);
    EXPECT_EQ(probe.report().folder + "\\", folder);
}

TEST_F(ProcRun, TakesAnEmptyFolderForTheParents) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(program("probe.exe").c_str(), "", "", PROC_WAIT), 1);
    EXPECT_EQ(probe.report().folder, ownFolder);
}

TEST_F(ProcRun, TakesANullFolderForTheParents) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(program("probe.exe").c_str(), "", nullptr, PROC_WAIT), 1);
    EXPECT_EQ(probe.report().folder, ownFolder);
}

// --- Waiting and keeping ---

TEST_F(ProcRun, ComesBackAfterTheEndOfAChildThatIsWaitedFor) {
    Probe probe("hold");
    CallRecorder calls;
    calls.before("WaitForSingleObject", 1, [&] { probe.letGo(); });
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP));
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(hasEnded(child));
    EXPECT_EQ(Proc_WaitEndFor(child, 0), 1) << "nothing is left to wait for";
    EXPECT_EQ(Proc_WaitEnd(child), 1);
}

TEST_F(ProcRun, ComesBackAtOnceFromAChildThatIsNotWaitedFor) {
    Probe probe("hold");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_KEEP));
    ASSERT_NE(child, nullptr);
    EXPECT_FALSE(hasEnded(child));
    EXPECT_EQ(Proc_WaitEndFor(child, 0), 0);
    probe.letGo();
    EXPECT_EQ(Proc_WaitEnd(child), 1);
    EXPECT_TRUE(hasEnded(child));
}

TEST_F(ProcRun, GivesOneAndHoldsNoHandleOfAChildThatIsNotKept) {
    const Probe probe;
    CallRecorder calls;
    EXPECT_EQ(Proc_Run(self.c_str(), "", "", 0), 1);
    EXPECT_EQ(calls.liveNames(), std::vector<std::string>{});
    EXPECT_EQ(processList, nullptr);
    probe.report();
}

TEST_F(ProcRun, KeepsOneProcessHandleAndOneRecordOfAKeptChild) {
    const Probe probe;
    CallRecorder calls;
    EXPECT_NE(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP), 0);
    EXPECT_EQ(calls.live("process"), 1u);
    EXPECT_EQ(calls.live("block"), 1u);
    EXPECT_EQ(calls.liveNames().size(), 2u);
}

TEST_F(ProcRun, KeepsTheChildsIdAndNoPipesUnlessTheyAreAskedFor) {
    const Probe probe;
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(static_cast<DWORD>(child->processId), probe.report().processId);
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
}

TEST_F(ProcRun, AddsARecordForEveryKeptChildAndKeepsTheOlderOnes) {
    const Probe probe;
    const auto* first = kept(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP));
    const auto* second = kept(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP));
    ASSERT_NE(processList, nullptr);
    EXPECT_EQ(static_cast<const void*>(processList + 1), second);
    EXPECT_EQ(static_cast<const void*>(processList->older + 1), first);
    EXPECT_EQ(processList->older->older, nullptr);
    EXPECT_TRUE(hasEnded(first));
    EXPECT_TRUE(hasEnded(second));
}

TEST_F(ProcRun, MayBeCalledByTwoThreadsAtOnce) {
    const Probe probe;
    const auto start = [this] { Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP); };
    std::thread other(start);
    start();
    other.join();
    ASSERT_NE(processList, nullptr);
    ASSERT_NE(processList->older, nullptr);
    EXPECT_TRUE(hasEnded(reinterpret_cast<const ProcessHandle*>(processList + 1)));
    EXPECT_TRUE(hasEnded(reinterpret_cast<const ProcessHandle*>(processList->older + 1)));
}

// --- Hiding ---

TEST_F(ProcRun, ShowsAChildNormally) {
    const Probe probe;
    Proc_Run(self.c_str(), "", "", PROC_WAIT);
    EXPECT_EQ(probe.report().show, static_cast<DWORD>(SW_SHOWNORMAL));
    EXPECT_EQ(probe.report().startupFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
}

TEST_F(ProcRun, HidesAChild) {
    const Probe probe;
    Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_HIDE);
    EXPECT_EQ(probe.report().show, static_cast<DWORD>(SW_HIDE));
    EXPECT_EQ(probe.report().startupFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
}

TEST_F(ProcRun, HidesAChildWithAPipe) {
    const Probe probe("speak");
    const auto* child =
        kept(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_HIDE | PROC_KEEP | PROC_PIPE_OUT));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(probe.report().show, static_cast<DWORD>(SW_HIDE));
    EXPECT_EQ(readToEnd(child->stdoutRead), "spoken");
}

// --- Pipes ---

TEST_F(ProcRun, PipesTheChildsOutputUpToItsEnd) {
    const Probe probe("speak");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_KEEP | PROC_PIPE_OUT));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(readToEnd(child->stdoutRead), "spoken");
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
}

TEST_F(ProcRun, PipesTheChildsErrorsUpToTheirEnd) {
    const Probe probe("speak");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_KEEP | PROC_PIPE_ERR));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(readToEnd(child->stderrRead), "complained");
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
}

TEST_F(ProcRun, PipesToTheChildWhichMeetsTheEndOnceOurEndIsClosed) {
    const Probe probe("listen");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_KEEP | PROC_PIPE_IN));
    ASSERT_NE(child, nullptr);
    write(child->stdinWrite, "words");
    CloseHandle(child->stdinWrite);
    EXPECT_EQ(Proc_WaitEndFor(child, 60000), 1) << "the child holds our end open itself";
    EXPECT_EQ(probe.report().heard, "words");
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
}

TEST_F(ProcRun, KeepsTheThreeStreamsApart) {
    const Probe probe("listen speak");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", keptWithPipes));
    ASSERT_NE(child, nullptr);
    write(child->stdinWrite, "words");
    CloseHandle(child->stdinWrite);
    EXPECT_EQ(readToEnd(child->stdoutRead), "spoken");
    EXPECT_EQ(readToEnd(child->stderrRead), "complained");
    EXPECT_EQ(probe.report().heard, "words");
}

TEST_F(ProcRun, KeepsItsOwnEndsOfThePipesFromChildren) {
    const Probe probe("listen");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", keptWithPipes));
    ASSERT_NE(child, nullptr);
    EXPECT_FALSE(isInheritable(child->stdinWrite));
    EXPECT_FALSE(isInheritable(child->stdoutRead));
    EXPECT_FALSE(isInheritable(child->stderrRead));
    CloseHandle(child->stdinWrite);
    EXPECT_EQ(Proc_WaitEnd(child), 1);
}

TEST_F(ProcRun, MakesNoPipesForAChildThatIsNotKept) {
    const Probe probe;
    CallRecorder calls;
    EXPECT_EQ(Proc_Run(self.c_str(), "", "", keptWithPipes & ~PROC_KEEP), 1);
    EXPECT_EQ(calls.uses("CreatePipe"), 0);
    EXPECT_EQ(probe.report().startupFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
}

TEST_F(ProcRun, RunsTheChildWithoutAPipeThatCannotBeMade) {
    const Probe probe("speak");
    CallRecorder calls;
    calls.fail("CreatePipe", 1, 0);
    const auto* child =
        kept(Proc_Run(self.c_str(), "", "", PROC_KEEP | PROC_PIPE_OUT | PROC_PIPE_ERR));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(readToEnd(child->stderrRead), "complained");
}

TEST_F(ProcRun, UsesAPipesEndAsItIsWhereNoCopyCanBeMade) {
    const Probe probe("speak");
    CallRecorder calls;
    calls.failAlways("DuplicateHandle", 0);
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_KEEP | PROC_PIPE_OUT));
    ASSERT_NE(child, nullptr);
    EXPECT_TRUE(isInheritable(child->stdoutRead));
    EXPECT_EQ(readToEnd(child->stdoutRead), "spoken");
}

// --- A chain ---

using ProcRunEx = ProcessTest;

TEST_F(ProcRunEx, ChainsTheSendersOutputToTheChildsInput) {
    const ProcessHandle* sender = nullptr;
    {
        const Probe probe("speak");
        sender = kept(Proc_Run(self.c_str(), "", "", PROC_WAIT | PROC_KEEP | PROC_PIPE_OUT));
        ASSERT_NE(sender, nullptr);
    }
    // The sender's end of the pipe is ours and not inheritable; a child gets it all the same, once
    // it is made so.
    SetHandleInformation(sender->stdoutRead, HANDLE_FLAG_INHERIT, HANDLE_FLAG_INHERIT);
    const Probe probe("listen");
    EXPECT_EQ(Proc_RunEx(self.c_str(), "", "", PROC_WAIT | PROC_CHAIN, sender), 1);
    EXPECT_EQ(probe.report().heard, "spoken");
    EXPECT_EQ(probe.report().startupFlags,
              static_cast<DWORD>(STARTF_USESHOWWINDOW | STARTF_USESTDHANDLES));
}

TEST_F(ProcRunEx, RunsAChildWithoutAChainWhereThereIsNoSender) {
    const Probe probe;
    EXPECT_EQ(Proc_RunEx(self.c_str(), "", "", PROC_WAIT | PROC_CHAIN, nullptr), 1);
    EXPECT_EQ(probe.report().startupFlags, static_cast<DWORD>(STARTF_USESHOWWINDOW));
}

// --- Short forms ---

TEST_F(ProcessTest, RunInTakesAFolderAndNoFlags) {
    const Probe probe;
    EXPECT_EQ(Proc_RunIn(self.c_str(), "words", folder.c_str()), 1);
    EXPECT_EQ(probe.report().commandLine, "\"" + self + "\" words");
    EXPECT_EQ(probe.report().folder + "\\", folder);
    EXPECT_EQ(probe.report().show, static_cast<DWORD>(SW_SHOWNORMAL));
    EXPECT_EQ(processList, nullptr);
}

TEST_F(ProcessTest, RunProgramTakesTheProgramAlone) {
    const Probe probe;
    EXPECT_EQ(Proc_RunProgram(self.c_str()), 1);
    EXPECT_EQ(probe.report().commandLine, "\"" + self + "\"");
    EXPECT_EQ(probe.report().folder, ownFolder);
    EXPECT_EQ(processList, nullptr);
}

// --- Waiting for the end ---

TEST_F(ProcessTest, WaitingForNoChildIsOverAtOnceWithZero) {
    CallRecorder calls;
    EXPECT_EQ(Proc_WaitEnd(nullptr), 0);
    EXPECT_EQ(Proc_WaitEndFor(nullptr, INFINITE), 0);
    EXPECT_EQ(calls.uses("WaitForSingleObject"), 0);
}

TEST_F(ProcessTest, WaitingWithALimitGivesZeroOnATimeOut) {
    Probe probe("hold");
    const auto* child = kept(Proc_Run(self.c_str(), "", "", PROC_KEEP));
    ASSERT_NE(child, nullptr);
    EXPECT_EQ(Proc_WaitEndFor(child, 1), 0);
    probe.letGo();
    EXPECT_EQ(Proc_WaitEndFor(child, 60000), 1);
}

TEST_F(ProcessTest, WaitingGivesZeroWhereTheWaitFails) {
    const ProcessHandle broken{INVALID_HANDLE_VALUE, 1, nullptr, nullptr, nullptr};
    CallRecorder calls;
    calls.failAlways("WaitForSingleObject", static_cast<int64_t>(WAIT_FAILED));
    EXPECT_EQ(Proc_WaitEnd(&broken), 0);
    EXPECT_EQ(Proc_WaitEndFor(&broken, 5), 0);
    calls.failNothing();
    calls.failAlways("WaitForSingleObject", WAIT_ABANDONED);
    EXPECT_EQ(Proc_WaitEnd(&broken), 0) << "only WAIT_OBJECT_0 is an end";
}

} // namespace
