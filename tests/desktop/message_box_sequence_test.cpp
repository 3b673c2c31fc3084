// What a message box asks of Windows, call by call, on windows that the test makes up.

#include "desktop/message_box.h"

#include "desktop/message_box_state.h"
#include "runtime/heap_state.h"
#include "tests/support/runtime_fixture.h"

#include <map>

namespace {

struct MadeUpWindow {
    DWORD threadId;
    DWORD processId;
    bool isVisible = true;
    bool isEnabled = true;
};

HWND handle(uintptr_t number) { return reinterpret_cast<HWND>(number); }

class MessageBoxSequence : public RuntimeTest {
protected:
    MessageBoxSequence() {
        calls.name(LooseHeap, "loose");
        for (const auto& [number, name] : {std::pair{1, "one"}, {2, "two"}, {3, "three"}})
            calls.name(handle(static_cast<uintptr_t>(number) << 16), name);
        takeOver();
        calls.except({"GetCurrentThreadId", "GetCurrentProcessId"});
        calls.take();
    }

    void takeOver() {
        calls.replace<hook::EnumWindows>([this](WNDENUMPROC visit, LPARAM value) {
            for (const auto& [window, facts] : windows)
                results.push_back(visit(window, value));
            return TRUE;
        });
        calls.replace<hook::GetWindowThreadProcessId>([this](HWND window, DWORD* owner) {
            if (owner)
                *owner = windows.at(window).processId;
            return windows.at(window).threadId;
        });
        calls.replace<hook::IsWindowVisible>(
            [this](HWND window) { return windows.at(window).isVisible; });
        calls.replace<hook::IsWindowEnabled>(
            [this](HWND window) { return windows.at(window).isEnabled; });
        calls.replace<hook::EnableWindow>([this](HWND window, BOOL on) {
            windows.at(window).isEnabled = on != FALSE;
            return FALSE;
        });
        calls.replace<hook::GetForegroundWindow>([this] { return foreground; });
        calls.replace<hook::MessageBoxA>([](HWND, LPCSTR, LPCSTR, UINT) { return IDOK; });
    }

    static constexpr DWORD otherThread = 0xABCDE;
    static constexpr DWORD otherProcess = 0xBCDEF;
    const DWORD thread = GetCurrentThreadId();
    const DWORD process = GetCurrentProcessId();
    const HWND one = handle(1 << 16);
    const HWND two = handle(2 << 16);
    const HWND three = handle(3 << 16);

    CallRecorder calls;
    std::map<HWND, MadeUpWindow> windows;
    HWND foreground = nullptr;
    std::vector<BOOL> results; // what EnumWindows' visitor gave
};

TEST_F(MessageBoxSequence, OfASetUp) {
    calls.replace<hook::CoInitialize>([](void*) { return RPC_E_CHANGED_MODE; });
    EXPECT_EQ(Desk_SubsystemInit(), RPC_E_CHANGED_MODE);
    EXPECT_TRUE(calls.match(R"(
        InitCommonControls()
        CoInitialize(null)
    )"));
}

TEST_F(MessageBoxSequence, OfABoxInAProcessWithoutWindows) {
    EXPECT_EQ(Desk_MessageBox("Error", "Some words", MB_ICONERROR), IDOK);
    EXPECT_TRUE(calls.match(R"(
        EnumWindows(routine, 0) -> 1
        GetForegroundWindow() -> null
        MessageBoxA(null, "Some words", "Error", 0x10) -> 1
    )"));
}

TEST_F(MessageBoxSequence, OfABoxWithAParentAndAnotherWindow) {
    windows = {{one, {thread, process}}, {two, {thread, process}}};
    foreground = two;
    Desk_MessageBox("Error", "Some words", 0);
    EXPECT_TRUE(calls.match(R"(
        EnumWindows(routine, 0) -> 1
        GetWindowThreadProcessId(one, null)
        IsWindowVisible(one) -> 1
        IsWindowEnabled(one) -> 1
        GetForegroundWindow() -> two
        EnableWindow(one, 0)
        HeapAlloc(loose, 8, 32) -> block1
        GetWindowThreadProcessId(two, null)
        IsWindowVisible(two) -> 1
        IsWindowEnabled(two) -> 1
        GetForegroundWindow() -> two
        GetForegroundWindow() -> two
        GetWindowThreadProcessId(two, *)
        MessageBoxA(two, "Some words", "Error", 0) -> 1
        EnableWindow(one, 1)
        HeapFree(loose, 0, block1) -> 1
    )"));
    EXPECT_EQ(disabledWindows, nullptr);
}

TEST_F(MessageBoxSequence, OfABoxWhoseForegroundIsAnotherProcesss) {
    windows = {{one, {thread, process}}, {two, {otherThread, otherProcess}}};
    foreground = two;
    Desk_MessageBox("Error", "Some words", 0);
    EXPECT_TRUE(calls.match(R"(
        EnumWindows(routine, 0) -> 1
        ...
        MessageBoxA(null, "Some words", "Error", 0) -> 1
        EnableWindow(one, 1)
        HeapFree(loose, 0, block1) -> 1
    )"));
}

TEST_F(MessageBoxSequence, OfABoxThoughTheWindowsCannotBeListed) {
    windows = {{one, {thread, process}}};
    calls.fail("EnumWindows", 1, 0);
    EXPECT_EQ(Desk_MessageBox("Error", "Some words", 0), IDOK);
    EXPECT_TRUE(calls.match(R"(
        EnumWindows(routine, 0) -> 0
        GetForegroundWindow() -> null
        MessageBoxA(null, "Some words", "Error", 0) -> 1
    )"));
}

TEST_F(MessageBoxSequence, OfABoxThoughTheForegroundIsGoneMeanwhile) {
    windows = {{two, {thread, process}}};
    foreground = two;
    calls.fail("GetWindowThreadProcessId", 2, 0); // the first is of the walk
    EXPECT_EQ(Desk_MessageBox("Error", "Some words", 0), IDOK);
    EXPECT_TRUE(calls.match(R"(
        EnumWindows(routine, 0) -> 1
        ...
        GetForegroundWindow() -> two
        GetWindowThreadProcessId(two, *) -> 0
        MessageBoxA(null, "Some words", "Error", 0) -> 1
    )"));
}

TEST_F(MessageBoxSequence, OfABoxThatCannotBeShown) {
    windows = {{one, {thread, process}}};
    calls.fail("MessageBoxA", 1, 0);
    EXPECT_EQ(Desk_MessageBox("Error", "Some words", 0), 0);
    EXPECT_TRUE(calls.match(R"(
        ...
        MessageBoxA(null, "Some words", "Error", 0) -> 0
        EnableWindow(one, 1)
        HeapFree(loose, 0, block1) -> 1
    )"));
}

TEST_F(MessageBoxSequence, LooksNoFurtherAtAWindowThatIsToStayAsItIs) {
    windows = {{one, {otherThread, process}},
               {two, {thread, process, false}},
               {three, {thread, process, true, false}}};
    Desk_DisableThreadWindows();
    EXPECT_TRUE(calls.match(R"(
        EnumWindows(routine, 0) -> 1
        GetWindowThreadProcessId(one, null)
        GetWindowThreadProcessId(two, null)
        IsWindowVisible(two) -> 0
        GetWindowThreadProcessId(three, null)
        IsWindowVisible(three) -> 1
        IsWindowEnabled(three) -> 0
    )"));
    EXPECT_EQ(disabledWindows, nullptr);
}

TEST_F(MessageBoxSequence, GoesThroughAllWindows) {
    windows = {{one, {otherThread, process}}, {two, {thread, process}}, {three, {thread, process}}};
    foreground = two;
    Desk_DisableThreadWindows();
    EXPECT_EQ(results, (std::vector<BOOL>{TRUE, TRUE, TRUE}));
    EXPECT_FALSE(windows[three].isEnabled);
    Desk_EnableThreadWindows();
}

TEST_F(MessageBoxSequence, GivesWindowsBackFromTheNewestToTheOldest) {
    windows = {{one, {thread, process}}, {two, {thread, process}}, {three, {thread, process}}};
    Desk_DisableThreadWindows();
    calls.take();
    Desk_EnableThreadWindows();
    EXPECT_TRUE(calls.match(R"(
        EnableWindow(three, 1)
        HeapFree(loose, 0, block3) -> 1
        EnableWindow(two, 1)
        HeapFree(loose, 0, block2) -> 1
        EnableWindow(one, 1)
        HeapFree(loose, 0, block1) -> 1
    )"));
}

} // namespace
