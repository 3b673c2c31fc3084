#include "launcher/launch.h"

#include "audio/module_player.h"
#include "desktop/process.h"
#include "display/screen.h"
#include "launcher/staging.h"
#include "launcher/variables.h"

namespace {

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

void Launch_Intro(const char* exeName) {
    JoinedText_Assign(&Launcher.IntroPath, Launcher.TempDir, Staging_FolderName, exeName);
    Module_Stop(Launcher.ModuleNumber);
    Screen_Close();
    // The handle of the intro before is not given back: it is kept until the process ends.
    Launcher.ChildHandle = reinterpret_cast<ProcessHandle*>(
        Proc_Run(Launcher.IntroPath, "", Staging_Folder(), PROC_WAIT | PROC_KEEP));
    waitForChild();
    Module_Play(Launcher.ModuleNumber);
}
