#include "launcher/staging.h"

#include "audio/module_player.h"
#include "desktop/message_box.h"
#include "display/screen.h"
#include "launcher/end.h"
#include "launcher/variables.h"
#include "runtime/file_system.h"

namespace {

constexpr char folderName[] = "Qev\\";

void assignJoined(TextVariable* variable, const char* first, const char* second,
                  const char* third = nullptr) {
    const int32_t start = Text_Here();
    Text_Append(first);
    Text_Append(second);
    Text_Append(third);
    Text_Store(variable, start);
}

void assignGiven(TextVariable* variable, void (*give)(int32_t place)) {
    const int32_t start = Text_Here();
    give(Text_Here());
    Text_Store(variable, start);
}

// Two texts joined in the accumulator as one argument, popped at the end of the statement. Not to
// be read before all arguments of the call stand.
class JoinedText {
public:
    JoinedText(const char* first, const char* second) : restorePoint(TextPosition) {
        Text_Append(first);
        Text_Append(second);
        TextPosition += 1; // over the terminator, so that the next temporary spares it
    }
    ~JoinedText() { TextPosition = restorePoint; }
    JoinedText(const JoinedText&) = delete;
    JoinedText& operator=(const JoinedText&) = delete;
    operator const char*() const { return TextBase + restorePoint; }

private:
    int64_t restorePoint;
};

// The staging folder is not stored: it is joined again at each use.
JoinedText stagingFolder() { return {Launcher.TempDir, folderName}; }

void requireDataFile() {
    if (Fs_Size(Launcher.DataSourcePath) != FsSize_Nothing)
        return;
    Desk_MessageBox("Error", JoinedText("Can't open ", Launcher.DataFileName), 0);
    Launcher_End();
}

// There is no sleep in this loop and no way out of it without the child: an intro that is not there
// keeps the program here, with the screen closed, until it is ended from outside. The result is
// written as volatile because a compiler may take a loop without side effects for one that ends.
void waitForChild() {
    volatile int64_t& result = Launcher.WaitResult;
    do
        result = Proc_WaitEnd(Launcher.ChildHandle);
    while (result == 0);
}

} // namespace

void Staging_BuildPaths() {
    Text_Assign(&Launcher.DataFileName, "OstrikVelmora2009.dat");
    Text_Assign(&Launcher.StagedExeName, "BlahBlubber.exe");
    assignGiven(&Launcher.CurrentDir, Fs_CurrentDir);
    assignGiven(&Launcher.TempDir, Fs_TempDir);
    assignJoined(&Launcher.DataSourcePath, Launcher.CurrentDir, Launcher.DataFileName);
    assignJoined(&Launcher.StagedExePath, Launcher.TempDir, folderName, Launcher.StagedExeName);
}

void Staging_Run() {
    Staging_RemoveFolder();
    requireDataFile();
    Launcher.RowIndex = Fs_CreateDir(stagingFolder());
    Launcher.RowIndex = Fs_Copy(Launcher.DataSourcePath, Launcher.StagedExePath);
    Launcher.RowIndex = Proc_Run(Launcher.StagedExePath, "", stagingFolder(), PROC_HIDE);
}

void Staging_LaunchIntro(const char* exeName) {
    assignJoined(&Launcher.IntroPath, Launcher.TempDir, folderName, exeName);
    Module_Stop(Launcher.ModuleNumber);
    Screen_Close();
    // The handle of the intro before is not given back: it is kept until the process ends.
    Launcher.ChildHandle = reinterpret_cast<ProcessHandle*>(
        Proc_Run(Launcher.IntroPath, "", stagingFolder(), PROC_WAIT | PROC_KEEP));
    waitForChild();
    Module_Play(Launcher.ModuleNumber);
}

void Staging_RemoveFolder() {
    Launcher.RowIndex = Fs_DeleteTree(stagingFolder(), "*.*", DeleteTree_Recurse);
}
