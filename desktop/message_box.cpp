#include "desktop/message_box.h"

#include "desktop/message_box_state.h"

#include <commctrl.h>
#include <objbase.h>

namespace {

bool belongsToThread(HWND window) {
    return GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId();
}

// The foreground window is left out: it will be the box's parent, and the box itself disables it.
bool isToBeDisabled(HWND window) {
    return belongsToThread(window) && IsWindowVisible(window) && IsWindowEnabled(window) &&
           window != GetForegroundWindow();
}

void disable(HWND window) {
    EnableWindow(window, FALSE);
    auto* record = static_cast<DisabledWindowRec*>(
        LooseList_Alloc(&disabledWindows, sizeof(LooseBlock) + sizeof(DisabledWindowRec)));
    record->window = window;
    record->threadId = GetCurrentThreadId();
}

BOOL CALLBACK visitWindow(HWND window, LPARAM) {
    if (isToBeDisabled(window))
        disable(window);
    return TRUE;
}

} // namespace

int32_t Desk_SubsystemInit() {
    InitCommonControls();
    return CoInitialize(nullptr);
}

int64_t Desk_MessageBox(const char* title, const char* message, int32_t flags) {
    Desk_DisableThreadWindows();
    HWND parent = Desk_ForegroundParent();
    const int64_t button = MessageBoxA(parent, message, title, static_cast<UINT>(flags));
    Desk_EnableThreadWindows();
    return button;
}

HWND Desk_ForegroundParent() {
    HWND window = GetForegroundWindow();
    if (!window)
        return nullptr;
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    return process == GetCurrentProcessId() ? window : nullptr;
}

void Desk_DisableThreadWindows() { EnumWindows(visitWindow, 0); }

void Desk_EnableThreadWindows() {
    LooseBlock* block = disabledWindows;
    while (block) {
        LooseBlock* older = block->older;
        auto* record = reinterpret_cast<DisabledWindowRec*>(block + 1);
        if (record->threadId == GetCurrentThreadId()) {
            EnableWindow(record->window, TRUE);
            LooseList_Free(&disabledWindows, record);
        }
        block = older;
    }
}
