#include "tests/support/launcher_stage.h"

#include "audio/module_player.h"
#include "audio/module_player_state.h"
#include "tests/support/wait_until.h"

#include <cstring>
#include <fstream>

namespace {

// Nothing is ever written to it, and a wait for it ends at once: what a process is that has ended.
HANDLE endedProcess() { return CreateEventA(nullptr, TRUE, TRUE, nullptr); }

// Not that of the stage before: a call of CloseHandle that failed may have left a file open there.
std::filesystem::path newFolder() {
    static int count = 0;
    const std::string process = std::to_string(GetCurrentProcessId());
    return std::filesystem::temp_directory_path() /
           ("stage-" + process + "-" + std::to_string(++count));
}

DWORD giveTempPath(const std::filesystem::path& temp, DWORD size, LPSTR buffer) {
    const std::string text = temp.string() + "\\";
    if (text.size() >= size)
        return 0;
    std::strcpy(buffer, text.c_str());
    return static_cast<DWORD>(text.size());
}

// On the stage frames take no time: a song could be stopped before its thread has begun, which
// would then meet the song's next start and render beside the next thread. Other threads are not
// the program's: GoogleTest makes one for the first assertion that fails on a thread.
HANDLE startRenderThread(LPSECURITY_ATTRIBUTES attributes, SIZE_T stack,
                         LPTHREAD_START_ROUTINE routine, LPVOID parameter, DWORD flags,
                         LPDWORD id) {
    HANDLE thread = CallRecorder::original<hook::CreateThread>()(attributes, stack, routine,
                                                                 parameter, flags, id);
    if (routine == Module_RenderThread) {
        const auto* player = static_cast<const ModulePlayer*>(parameter);
        waitUntil([player] { return player->renderRunning != 0; });
    }
    return thread;
}

} // namespace

LauncherStage::LauncherStage() : devices(calls) {
    QuietScope quiet;
    folder = newFolder();
    temp = folder / "temp";
    // A stage of the same process id may have been left behind by a scenario that died.
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(temp);
    SetCurrentDirectoryA(folder.string().c_str());
    writeFile("OstrikVelmora2009.dat", "a self-extractor, said to be");
    calls.replace<hook::GetTempPathA>(
        [this](DWORD size, LPSTR buffer) { return giveTempPath(temp, size, buffer); });
    calls.replace<hook::CreateProcessA>([this](LPCSTR, LPSTR commandLine, LPSECURITY_ATTRIBUTES,
                                               LPSECURITY_ATTRIBUTES, BOOL, DWORD flags, LPVOID,
                                               LPCSTR workingFolder, LPSTARTUPINFOA info,
                                               LPPROCESS_INFORMATION made) {
        return startChild(commandLine, workingFolder, flags, *info, made);
    });
    calls.replace<hook::CreateThread>(startRenderThread);
    calls.replace<hook::ShellExecuteExA>([](SHELLEXECUTEINFOA*) { return FALSE; });
    devices.input.onScriptEnd = [this] { devices.input.press(DIK_ESCAPE); };
}

LauncherStage::~LauncherStage() {
    QuietScope quiet;
    std::error_code ignored;
    std::filesystem::current_path(folder.parent_path(), ignored);
    std::filesystem::remove_all(folder, ignored);
}

void LauncherStage::writeFile(const char* name, const std::string& content) const {
    QuietScope quiet;
    std::ofstream(folder / name, std::ios::binary) << content;
}

ProgramEnd LauncherStage::run() {
    return runToExit(calls, [] { WinMain(nullptr, nullptr, nullptr, 0); });
}

BOOL LauncherStage::startChild(const char* commandLine, const char* workingFolder,
                               DWORD creationFlags, const STARTUPINFOA& info,
                               PROCESS_INFORMATION* made) {
    QuietScope quiet;
    if (!missing.empty() && std::strstr(commandLine, missing.c_str())) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return FALSE;
    }
    children.push_back(
        {commandLine, workingFolder ? workingFolder : "", creationFlags, info.wShowWindow});
    if (onChild)
        onChild(commandLine);
    *made = {endedProcess(), endedProcess(), 4711, 4712};
    return TRUE;
}

void onStage(const std::function<void(LauncherStage&)>& scenario) {
    LauncherStage stage;
    scenario(stage);
}

ChildReport reportFromStage(const std::function<void(LauncherStage&)>& scenario,
                            std::chrono::milliseconds busyLimit) {
    return runInChild([&] { onStage(scenario); }, busyLimit);
}
