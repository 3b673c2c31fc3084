/* An intro that tells on itself, for the desk tests. It writes down how it was started, shows a
   window and waits for Escape. A file named "crash" in its folder on drive C orders it to crash
   at once, one named "leave" to end by itself. Under the name of the staged data file it plays the
   self-extractor instead and writes itself into its working folder under each name of a list. */

#include <stdio.h>
#include <string.h>
#include <windows.h>

#define DESK_FOLDER "C:\\probe\\"
static const char unpackerName[] = "BlahBlubber.exe";

static char programPath[MAX_PATH];
static const char* programName;

static void findName(void) {
    GetModuleFileNameA(NULL, programPath, sizeof programPath);
    programName = strrchr(programPath, '\\') + 1;
}

static void unpack(void) {
    char name[MAX_PATH];
    FILE* names = fopen(DESK_FOLDER "names.txt", "r");
    while (names && fgets(name, sizeof name, names)) {
        name[strcspn(name, "\r\n")] = 0;
        CopyFileA(programPath, name, FALSE);
    }
}

static int isOrdered(const char* order) {
    char path[MAX_PATH];
    sprintf(path, DESK_FOLDER "%s", order);
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

/* The report gets its final name when it is complete: a reader never sees half of one. */
static void report(void) {
    char folder[MAX_PATH], path[MAX_PATH];
    DEVMODEA mode = {.dmSize = sizeof mode};
    FILE* out = fopen(DESK_FOLDER "unfinished", "w");
    GetCurrentDirectoryA(sizeof folder, folder);
    EnumDisplaySettingsA(NULL, ENUM_CURRENT_SETTINGS, &mode);
    fprintf(out, "program=%s\nfolder=%s\ncommand=%s\nmode=%lux%lu\n", programPath, folder,
            GetCommandLineA(), mode.dmPelsWidth, mode.dmPelsHeight);
    fclose(out);
    for (int number = 1; number < 1000; ++number) {
        sprintf(path, DESK_FOLDER "run-%03d.txt", number);
        if (MoveFileA(DESK_FOLDER "unfinished", path))
            return;
    }
}

/* A bar that grows to the right and starts again, under the part that tests look at. */
static void drawMovement(HWND window) {
    static int length;
    RECT all = {0, 190, 320, 200}, bar = {0, 190, length = (length + 20) % 320, 200};
    HDC canvas = GetDC(window);
    FillRect(canvas, &all, GetStockObject(BLACK_BRUSH));
    FillRect(canvas, &bar, GetStockObject(WHITE_BRUSH));
    ReleaseDC(window, canvas);
}

static LRESULT CALLBACK handleMessage(HWND window, UINT message, WPARAM first, LPARAM second) {
    if (message == WM_KEYDOWN && first == VK_ESCAPE)
        PostQuitMessage(0);
    if (message == WM_TIMER && isOrdered("leave"))
        PostQuitMessage(0);
    if (message == WM_TIMER)
        drawMovement(window);
    return DefWindowProcA(window, message, first, second);
}

static void showWindow(HINSTANCE instance) {
    WNDCLASSA windowClass = {.lpfnWndProc = handleMessage,
                             .hInstance = instance,
                             .hbrBackground = CreateSolidBrush(RGB(0, 128, 64)),
                             .lpszClassName = "Probe"};
    RegisterClassA(&windowClass);
    HWND window = CreateWindowA("Probe", programName, WS_POPUP | WS_VISIBLE, 0, 0, 320, 200, NULL,
                                NULL, instance, NULL);
    SetForegroundWindow(window);
    SetTimer(window, 1, 20, NULL);
}

static void waitForEscape(void) {
    MSG message;
    while (GetMessageA(&message, NULL, 0, 0) > 0)
        DispatchMessageA(&message);
}

int WINAPI WinMain(HINSTANCE instance, HINSTANCE previous, LPSTR arguments, int show) {
    (void)previous, (void)arguments, (void)show;
    findName();
    if (strcmp(programName, unpackerName) == 0) {
        unpack();
        return 0;
    }
    report();
    if (isOrdered("crash"))
        *(volatile int*)0 = 0;
    showWindow(instance);
    waitForEscape();
    return 7; /* nobody may ask for it */
}
