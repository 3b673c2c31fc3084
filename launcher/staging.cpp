#include "launcher/staging.h"

#include "desktop/message_box.h"
#include "desktop/process.h"
#include "launcher/end.h"
#include "launcher/variables.h"
#include "runtime/file_system.h"

namespace {

void assignGiven(TextVariable* variable, void (*give)(int32_t place)) {
    const int32_t start = Text_Here();
    give(Text_Here());
    Text_Store(variable, start);
}

void requireDataFile() {
    if (Fs_Size(Launcher.DataSourcePath) != FsSize_Nothing)
        return;
    Desk_MessageBox("Error", JoinedText("Can't open ", Launcher.DataFileName), 0);
    Launcher_End();
}

} // namespace

void Staging_BuildPaths() {
    Text_Assign(&Launcher.DataFileName, "OstrikVelmora2009.dat");
    Text_Assign(&Launcher.StagedExeName, "BlahBlubber.exe");
    assignGiven(&Launcher.CurrentDir, Fs_CurrentDir);
    assignGiven(&Launcher.TempDir, Fs_TempDir);
    JoinedText_Assign(&Launcher.DataSourcePath, Launcher.CurrentDir, Launcher.DataFileName);
    JoinedText_Assign(&Launcher.StagedExePath, Launcher.TempDir, Staging_FolderName,
                      Launcher.StagedExeName);
}

void Staging_Run() {
    Staging_RemoveFolder();
    requireDataFile();
    Launcher.RowIndex = Fs_CreateDir(Staging_Folder());
    Launcher.RowIndex = Fs_Copy(Launcher.DataSourcePath, Launcher.StagedExePath);
    Launcher.RowIndex = Proc_Run(Launcher.StagedExePath, "", Staging_Folder(), PROC_HIDE);
}

void Staging_RemoveFolder() {
    Launcher.RowIndex = Fs_DeleteTree(Staging_Folder(), "*.*", DeleteTree_Recurse);
}

JoinedText Staging_Folder() { return {Launcher.TempDir, Staging_FolderName}; }
