#include "desktop/message_box.h"

#include "desktop/message_box_state.h"
#include "tests/support/box_presser.h"
#include "tests/support/runtime_fixture.h"

#include <cstddef>
#include <thread>

static_assert(offsetof(DisabledWindowRec, threadId) == 0);
static_assert(offsetof(DisabledWindowRec, window) == 8);

namespace {

class Window {
public:
    explicit Window(DWORD style = WS_POPUP | WS_VISIBLE)
        : handle(CreateWindowExA(0, "STATIC", "test", style, 10, 10, 100, 60, nullptr, nullptr,
                                 nullptr, nullptr)) {}
    ~Window() { DestroyWindow(handle); }
    Window(const Window&) = delete;
    Window& operator=(const Window&) = delete;

    bool isEnabled() const { return IsWindowEnabled(handle) != FALSE; }

    const HWND handle;
};

// Real windows and real boxes.
class MessageBoxTest : public RuntimeTest {
protected:
    // The desktop's window belongs to another process.
    static void takeForegroundAway() {
        SetForegroundWindow(GetDesktopWindow());
        EXPECT_TRUE(waitUntil([] {
            DWORD process = 0;
            GetWindowThreadProcessId(GetForegroundWindow(), &process);
            return process != GetCurrentProcessId();
        }));
    }
    static void takeForeground(const Window& window) {
        SetForegroundWindow(window.handle);
        EXPECT_TRUE(waitUntil([&] { return GetForegroundWindow() == window.handle; }));
    }
    static int recordCount() {
        int count = 0;
        for (LooseBlock* block = disabledWindows; block; block = block->older)
            ++count;
        return count;
    }
};

// --- The box ---

std::string textOf(HWND window) {
    char text[100] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

TEST_F(MessageBoxTest, ShowsTitleAndMessage) {
    std::string title;
    std::string message;
    BoxPresser user(IDOK, [&](HWND box) {
        title = textOf(box);
        message = textOf(GetDlgItem(box, 0xFFFF));
    });
    EXPECT_EQ(Desk_MessageBox("Error", "Can't initialize system", 0), IDOK);
    EXPECT_TRUE(user.hasPressed());
    EXPECT_EQ(title, "Error");
    EXPECT_EQ(message, "Can't initialize system");
}

TEST_F(MessageBoxTest, GivesTheButtonThatWasPressed) {
    for (const int button : {IDYES, IDNO}) {
        const BoxPresser user(button);
        EXPECT_EQ(Desk_MessageBox("Title", "Message", MB_YESNO), button);
    }
}

TEST_F(MessageBoxTest, GivesZeroAndTheWindowsBackWhereThereCanBeNoBox) {
    const Window window;
    takeForegroundAway();
    CallRecorder calls;
    calls.fail("MessageBoxA", 1, 0);
    EXPECT_EQ(Desk_MessageBox("Title", "Message", 0), 0);
    EXPECT_EQ(calls.uses("EnableWindow"), 2);
    EXPECT_TRUE(window.isEnabled());
    EXPECT_EQ(disabledWindows, nullptr);
}

TEST_F(MessageBoxTest, KeepsTheSignOfTheResult) {
    CallRecorder calls;
    calls.fail("MessageBoxA", 1, -2);
    EXPECT_EQ(Desk_MessageBox("Title", "Message", 0), -2);
}

// --- What a box does to the windows ---

TEST_F(MessageBoxTest, StandsWithoutAParentInAProcessWithoutWindows) {
    HWND owner = reinterpret_cast<HWND>(1);
    BoxPresser user(IDOK, [&](HWND box) { owner = GetWindow(box, GW_OWNER); });
    EXPECT_EQ(Desk_MessageBox("Title", "Message", 0), IDOK);
    EXPECT_TRUE(user.hasPressed());
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(recordCount(), 0);
}

TEST_F(MessageBoxTest, DisablesAllWindowsOfTheThreadWhileTheForegroundIsAnotherProcesss) {
    const Window first;
    const Window second;
    takeForegroundAway();
    HWND owner = reinterpret_cast<HWND>(1);
    bool enabled[2] = {true, true};
    int records = 0;
    BoxPresser user(IDOK, [&](HWND box) {
        owner = GetWindow(box, GW_OWNER);
        enabled[0] = first.isEnabled();
        enabled[1] = second.isEnabled();
        records = recordCount();
    });
    Desk_MessageBox("Title", "Message", 0);
    EXPECT_TRUE(user.hasPressed());
    EXPECT_EQ(owner, nullptr);
    EXPECT_FALSE(enabled[0]);
    EXPECT_FALSE(enabled[1]);
    EXPECT_EQ(records, 2);
    EXPECT_TRUE(first.isEnabled());
    EXPECT_TRUE(second.isEnabled());
    EXPECT_EQ(recordCount(), 0);
}

TEST_F(MessageBoxTest, HangsOnTheForegroundWindowAndLeavesItToTheBox) {
    const Window back;
    const Window front;
    takeForeground(front);
    HWND owner = nullptr;
    int records = 0;
    BoxPresser user(IDOK, [&](HWND box) {
        owner = GetWindow(box, GW_OWNER);
        records = recordCount();
    });
    Desk_MessageBox("Title", "Message", 0);
    EXPECT_TRUE(user.hasPressed());
    EXPECT_EQ(owner, front.handle);
    EXPECT_EQ(records, 1) << "the other window's";
    EXPECT_TRUE(front.isEnabled());
    EXPECT_TRUE(back.isEnabled());
}

TEST_F(MessageBoxTest, LeavesADisabledWindowDisabled) {
    const Window window(WS_POPUP | WS_VISIBLE | WS_DISABLED);
    takeForegroundAway();
    const BoxPresser user(IDOK);
    Desk_MessageBox("Title", "Message", 0);
    EXPECT_FALSE(window.isEnabled());
}

TEST_F(MessageBoxTest, ASecondBoxFindsAnEmptyList) {
    const Window window;
    takeForegroundAway();
    for (int box = 0; box < 2; ++box) {
        int records = 0;
        BoxPresser user(IDOK, [&](HWND) { records = recordCount(); });
        EXPECT_EQ(disabledWindows, nullptr);
        Desk_MessageBox("Title", "Message", 0);
        EXPECT_TRUE(user.hasPressed());
        EXPECT_EQ(records, 1);
        takeForegroundAway();
    }
    EXPECT_EQ(disabledWindows, nullptr);
}

// --- Its steps ---

TEST_F(MessageBoxTest, DisablingLeavesHiddenAndDisabledAndForegroundWindowsAlone) {
    const Window hidden(WS_POPUP);
    const Window disabled(WS_POPUP | WS_VISIBLE | WS_DISABLED);
    const Window plain;
    const Window front;
    takeForeground(front);
    Desk_DisableThreadWindows();
    EXPECT_TRUE(hidden.isEnabled());
    EXPECT_TRUE(front.isEnabled());
    EXPECT_FALSE(plain.isEnabled());
    EXPECT_EQ(recordCount(), 1);
    Desk_EnableThreadWindows();
    EXPECT_TRUE(plain.isEnabled());
    EXPECT_FALSE(disabled.isEnabled());
}

TEST_F(MessageBoxTest, DisablingTwiceTakesEachWindowOnce) {
    const Window window;
    takeForegroundAway();
    Desk_DisableThreadWindows();
    Desk_DisableThreadWindows();
    EXPECT_EQ(recordCount(), 1);
    Desk_EnableThreadWindows();
    EXPECT_TRUE(window.isEnabled());
}

TEST_F(MessageBoxTest, TellsWhichThreadDisabledWhichWindow) {
    const Window window;
    takeForegroundAway();
    Desk_DisableThreadWindows();
    ASSERT_EQ(recordCount(), 1);
    const auto* record = reinterpret_cast<DisabledWindowRec*>(disabledWindows + 1);
    EXPECT_EQ(record->threadId, GetCurrentThreadId());
    EXPECT_EQ(record->window, window.handle);
    Desk_EnableThreadWindows();
}

// A second thread with a window and a box of its own, one after the other with this one's.
TEST_F(MessageBoxTest, EveryThreadDisablesAndGivesBackItsOwnWindowsAlone) {
    const Window mine;
    takeForegroundAway();
    Desk_DisableThreadWindows();
    std::thread([&mine] {
        const Window other;
        takeForegroundAway();
        Desk_DisableThreadWindows();
        EXPECT_FALSE(other.isEnabled());
        EXPECT_EQ(recordCount(), 2);
        Desk_EnableThreadWindows();
        EXPECT_TRUE(other.isEnabled());
        EXPECT_FALSE(mine.isEnabled());
        EXPECT_EQ(recordCount(), 1);
    }).join();
    Desk_EnableThreadWindows();
    EXPECT_TRUE(mine.isEnabled());
    EXPECT_EQ(recordCount(), 0);
}

TEST_F(MessageBoxTest, FindsItsRecordsBehindThoseOfAnotherThread) {
    const Window first;
    const Window second;
    takeForegroundAway();
    EnableWindow(second.handle, FALSE);
    Desk_DisableThreadWindows();
    std::thread([] {
        const Window left; // its record stays on the list, in the middle
        takeForegroundAway();
        Desk_DisableThreadWindows();
    }).join();
    EnableWindow(second.handle, TRUE);
    Desk_DisableThreadWindows();
    ASSERT_EQ(recordCount(), 3);
    Desk_EnableThreadWindows();
    EXPECT_TRUE(first.isEnabled());
    EXPECT_TRUE(second.isEnabled());
    EXPECT_EQ(recordCount(), 1);
}

TEST_F(MessageBoxTest, TakesTheForegroundWindowOfAnyThreadOfTheProcessForTheParent) {
    CallRecorder calls;
    Window window;
    calls.replace<hook::GetForegroundWindow>([&window] { return window.handle; });
    HWND found = nullptr;
    std::thread([&found] { found = Desk_ForegroundParent(); }).join();
    EXPECT_EQ(found, window.handle);
}

TEST_F(MessageBoxTest, FindsNoParentWithoutAForegroundWindow) {
    CallRecorder calls;
    calls.failAlways("GetForegroundWindow", 0);
    EXPECT_EQ(Desk_ForegroundParent(), nullptr);
    EXPECT_EQ(calls.uses("GetWindowThreadProcessId"), 0);
}

TEST_F(MessageBoxTest, FindsNoParentInAnotherProcess) {
    const Window window;
    takeForegroundAway();
    EXPECT_EQ(Desk_ForegroundParent(), nullptr);
    takeForeground(window);
    EXPECT_EQ(Desk_ForegroundParent(), window.handle);
}

// --- Set-up ---

TEST(DeskSubsystemInit, StartsComForTheThread) {
    EXPECT_EQ(Desk_SubsystemInit(), S_OK);
    EXPECT_EQ(Desk_SubsystemInit(), S_FALSE) << "it has been started already";
}

} // namespace
