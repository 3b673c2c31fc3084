#include "desktop/process.h"

#include "desktop/process_state.h"
#include "tests/support/box_presser.h"
#include "tests/support/probe_program.h"
#include "tests/support/runtime_fixture.h"

namespace {

// Documents of the type .probe are opened by this program.
class ShellStart : public RuntimeTest {
protected:
    ShellStart() {
        Proc_SubsystemInit();
        setDefault(extension, type);
        setDefault(command, "\"" + Probe::ownPath() + "\" \"%1\"");
        char temp[MAX_PATH];
        GetTempPathA(sizeof temp, temp);
        folder = temp;
        document = folder + "document" + std::to_string(GetCurrentProcessId()) + ".probe";
        fclose(fopen(document.c_str(), "wb"));
        GetCurrentDirectoryA(sizeof temp, temp);
        ownFolder = temp;
    }
    ~ShellStart() override { DeleteFileA(document.c_str()); }

    static void setDefault(const std::string& key, const std::string& value) {
        RegSetValueA(HKEY_CLASSES_ROOT, key.c_str(), REG_SZ, value.c_str(),
                     static_cast<DWORD>(value.size()));
    }

    const std::string extension = ".probe";
    const std::string type = "ProbeDocument";
    const std::string command = type + "\\shell\\open\\command";
    std::string folder;
    std::string document;
    std::string ownFolder;
};

TEST_F(ShellStart, OpensADocument) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(document.c_str(), "", "", 0), 1);
    EXPECT_NE(probe.report().commandLine.find(document), std::string::npos);
    EXPECT_EQ(processList, nullptr);
}

TEST_F(ShellStart, RunsADocumentInItsOwnFolderUnlessOneIsGiven) {
    ASSERT_NE(ownFolder + "\\", folder);
    const Probe probe;
    EXPECT_EQ(Proc_Run(document.c_str(), "", nullptr, PROC_WAIT), 1);
    EXPECT_EQ(probe.report().folder + "\\", folder);
}

TEST_F(ShellStart, RunsADocumentInTheFolderThatIsGiven) {
    const Probe probe;
    EXPECT_EQ(Proc_Run(document.c_str(), "", ownFolder.c_str(), PROC_WAIT), 1);
    EXPECT_EQ(probe.report().folder, ownFolder);
}

TEST_F(ShellStart, WaitsForTheDocumentsProgramAndKeepsIt) {
    Probe probe("hold");
    CallRecorder calls;
    calls.before("WaitForSingleObject", 1, [&] { probe.letGo(); });
    const auto* child = reinterpret_cast<const ProcessHandle*>(
        Proc_Run(document.c_str(), "", "", PROC_WAIT | PROC_KEEP));
    ASSERT_NE(child, nullptr);
    DWORD code = 0;
    GetExitCodeProcess(child->process, &code);
    EXPECT_EQ(code, Probe::exitCode);
    EXPECT_EQ(child->processId, -1);
    EXPECT_EQ(child->stdinWrite, nullptr);
    EXPECT_EQ(child->stdoutRead, nullptr);
    EXPECT_EQ(child->stderrRead, nullptr);
    EXPECT_EQ(Proc_WaitEnd(child), 1);
}

TEST_F(ShellStart, IsBarredByEachPipeAndByAChain) {
    const Probe probe;
    CallRecorder calls;
    for (const int32_t flag : {PROC_PIPE_OUT, PROC_PIPE_IN, PROC_PIPE_ERR, PROC_CHAIN}) {
        EXPECT_EQ(Proc_Run(document.c_str(), "", "", flag), 0) << flag;
        EXPECT_EQ(Proc_Run(document.c_str(), "", "", flag | PROC_KEEP), 0) << flag;
    }
    EXPECT_EQ(calls.uses("ShellExecuteExA"), 0);
    EXPECT_EQ(calls.liveNames(), std::vector<std::string>{});
}

TEST_F(ShellStart, IsNotBarredByTheOtherFlags) {
    const Probe probe;
    EXPECT_NE(Proc_Run(document.c_str(), "", "", PROC_WAIT | PROC_HIDE | PROC_KEEP), 0);
}

TEST_F(ShellStart, GivesZeroForAProgramThatIsMissing) {
    const BoxPresser user(IDOK); // the shell may complain in a box of its own
    CallRecorder calls;
    const int64_t result =
        Proc_Run((folder + "no such program.exe").c_str(), "", "", PROC_WAIT | PROC_KEEP);
    EXPECT_EQ(result, 0);
    EXPECT_EQ(calls.uses("CreateProcessA"), 1);
    EXPECT_EQ(calls.uses("ShellExecuteExA"), 1);
    EXPECT_EQ(Proc_WaitEnd(reinterpret_cast<const ProcessHandle*>(result)), 0);
    EXPECT_EQ(processList, nullptr);
    EXPECT_EQ(calls.liveNames(), std::vector<std::string>{});
}

} // namespace
