/* Looks at the desk's windows from inside: what an X client cannot see.
   look            one line a visible window: class, title, place and the texts on it
   look mode       the display's mode: width x height
   look close X    asks the window of class X to close, by message and by system command
   look away       takes the foreground away from whoever has it
   look back X     gives it back to the window of class X */

#include <stdio.h>
#include <string.h>
#include <windows.h>

static BOOL CALLBACK printChild(HWND child, LPARAM unused) {
    char text[512] = "";
    (void)unused;
    SendMessageTimeoutA(child, WM_GETTEXT, sizeof text, (LPARAM)text, SMTO_ABORTIFHUNG, 10000,
                        NULL);
    printf("\t%s", text);
    return TRUE;
}

static BOOL CALLBACK printWindow(HWND window, LPARAM unused) {
    char className[128] = "", title[256] = "";
    RECT place;
    (void)unused;
    if (!IsWindowVisible(window))
        return TRUE;
    GetClassNameA(window, className, sizeof className);
    GetWindowTextA(window, title, sizeof title);
    GetWindowRect(window, &place);
    printf("%s\t%s\t%ld,%ld,%ld,%ld", className, title, place.left, place.top, place.right,
           place.bottom);
    EnumChildWindows(window, printChild, 0);
    printf("\n");
    return TRUE;
}

static int printMode(void) {
    DEVMODEA mode = {.dmSize = sizeof mode};
    BOOL known = EnumDisplaySettingsA(NULL, ENUM_CURRENT_SETTINGS, &mode);
    printf("%lux%lu\n", mode.dmPelsWidth, mode.dmPelsHeight);
    return known;
}

static int askToClose(HWND window) {
    return PostMessageA(window, WM_CLOSE, 0, 0) && PostMessageA(window, WM_SYSCOMMAND, SC_CLOSE, 0);
}

static int giveBack(HWND window) {
    return ShowWindowAsync(window, SW_RESTORE) && SetForegroundWindow(window);
}

int main(int count, char** words) {
    HWND window = count > 2 ? FindWindowA(words[2], NULL) : NULL;
    if (count < 2)
        return EnumWindows(printWindow, 0) ? 0 : 1;
    if (strcmp(words[1], "mode") == 0)
        return printMode() ? 0 : 1;
    if (strcmp(words[1], "close") == 0)
        return askToClose(window) ? 0 : 1;
    if (strcmp(words[1], "away") == 0)
        return SetForegroundWindow(GetDesktopWindow()) ? 0 : 1;
    if (strcmp(words[1], "back") == 0)
        return giveBack(window) ? 0 : 1;
    return 2;
}
