// The user switches to another program between any two steps of a frame, with the surfaces lost or
// not, and comes back: the frame is dropped, the next one is whole.

#include "tests/support/launcher_stage.h"

#include "display/screen_device.h"
#include "input/keyboard.h"
#include "launcher/variables.h"

#include <cctype>
#include <tuple>

namespace {

constexpr int leavingFrame = 6;    // in which the user leaves
constexpr int returningFrame = 12; // before which the user is back
constexpr RECT wholeScreen{0, 0, 1024, 768};
constexpr COLORREF white = RGB(255, 255, 255);

// Each is made once a frame.
constexpr const char* steps[] = {
    "IDirectDrawSurface7::Blt",
    "IDirectInputDevice7A::GetDeviceState",
    "SetTextAlign",
    "SetROP2",
    "BitBlt",
    "PeekMessageA",
    "IDirectDrawSurface7::Flip",
};

class FocusLoss : public testing::TestWithParam<std::tuple<const char*, bool>> {};

std::string nameOf(const testing::TestParamInfo<std::tuple<const char*, bool>>& info) {
    const auto& [step, lost] = info.param;
    std::string name = "Before";
    for (const char* letter = step; *letter; ++letter)
        if (std::isalnum(static_cast<unsigned char>(*letter)))
            name += *letter;
    return name + (lost ? "_SurfacesLost" : "_SurfacesKept");
}

// Runs the action at the beginning of the n-th frame, which is its clear.
void atFrame(LauncherStage& stage, int frame, std::function<void()> action) {
    stage.calls.before("IDirectDrawSurface7::Blt", frame, std::move(action));
}

void comeBackLater(LauncherStage& stage) {
    atFrame(stage, returningFrame, [&stage] { stage.devices.switchBack(); });
}

} // namespace

TEST_P(FocusLoss, DropsTheFrameAndShowsAWholeOneAfterTheReturn) {
    const auto [step, lost] = GetParam();
    onStage([step = step, lost = lost](LauncherStage& stage) {
        stage.devices.input.rest(returningFrame + 8);
        int whiteBefore = 0, flipsAway = 0, flipsBack = 0;
        atFrame(stage, leavingFrame - 1,
                [&] { whiteBefore = stage.devices.ddraw.shownCount(wholeScreen, white); });
        stage.calls.before(step, leavingFrame, [&] { stage.devices.switchAway(lost); });
        atFrame(stage, leavingFrame + 1, [&] { flipsAway = stage.devices.ddraw.flips(); });
        atFrame(stage, returningFrame - 1, [&] { flipsBack = stage.devices.ddraw.flips(); });
        comeBackLater(stage);
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_GT(whiteBefore, 5000);
        EXPECT_EQ(flipsBack, flipsAway) << "nothing is presented in the background";
        EXPECT_GT(stage.devices.ddraw.flips(), flipsBack + 3) << "and frames go on afterwards";
    });
}

TEST_P(FocusLoss, ShowsTheSamePictureAsBefore) {
    const auto [step, lost] = GetParam();
    onStage([step = step, lost = lost](LauncherStage& stage) {
        stage.devices.input.rest(returningFrame + 8);
        int before = -1, after = -2;
        atFrame(stage, leavingFrame - 1,
                [&] { before = stage.devices.ddraw.shownCount(wholeScreen, white); });
        stage.calls.before(step, leavingFrame, [&] { stage.devices.switchAway(lost); });
        comeBackLater(stage);
        // The first frame after the return may be the one that meets the loss.
        atFrame(stage, returningFrame + 2,
                [&] { after = stage.devices.ddraw.shownCount(wholeScreen, white); });
        stage.run();
        EXPECT_EQ(after, before);
    });
}

TEST_P(FocusLoss, RecoversOnceIfSurfacesWereLostAndNotAtAllIfNot) {
    const auto [step, lost] = GetParam();
    onStage([step = step, lost = lost](LauncherStage& stage) {
        stage.devices.input.rest(returningFrame + 8);
        stage.calls.before(step, leavingFrame, [&] { stage.devices.switchAway(lost); });
        comeBackLater(stage);
        stage.run();
        // A switch right before the flip is met by that very flip, which cannot recover yet.
        const bool metAtOnce = lost && std::string(step) == "IDirectDrawSurface7::Flip";
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), lost ? 1 + metAtOnce : 0);
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::SetDisplayMode"), 1 + (lost ? 1 + metAtOnce : 0));
    });
}

INSTANTIATE_TEST_SUITE_P(Steps, FocusLoss,
                         testing::Combine(testing::ValuesIn(steps), testing::Bool()), nameOf);

TEST(FocusLossKeys, AreNotReadInTheBackgroundAndAPendingReleaseActsAfterTheReturn) {
    onStage([](LauncherStage& stage) {
        // Down is seen pressed in the frame before the switch and let go while away.
        stage.devices.input.script({{}, {}, {}, {}, {DIK_DOWN}});
        atFrame(stage, leavingFrame, [&] { stage.devices.switchAway(true); });
        comeBackLater(stage);
        stage.devices.input.onScriptEnd = [&, reads = 0]() mutable {
            if (++reads > 6)
                stage.devices.input.press(DIK_ESCAPE);
        };
        stage.run();
        EXPECT_EQ(Launcher.SelectedRow, 1);
    });
}

TEST(FocusLossInfoPage, KeepsPageAndPlace) {
    onStage([](LauncherStage& stage) {
        std::string text;
        for (int line = 0; line < 121; ++line)
            text += "line\n";
        stage.writeFile("ostrik.nfo", text);
        stage.press({DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN, DIK_DOWN});
        stage.devices.input.rest(20);
        stage.calls.before("BitBlt", 13, [&] { stage.devices.switchAway(true); });
        int before = -1, after = -2;
        atFrame(stage, 12, [&] { before = stage.devices.ddraw.shownCount(wholeScreen, white); });
        atFrame(stage, 18, [&] { stage.devices.switchBack(); });
        atFrame(stage, 20, [&] {
            after = stage.devices.ddraw.shownCount(wholeScreen, white);
            EXPECT_EQ(Launcher.MenuMode, MenuMode_Info);
            EXPECT_EQ(Launcher.InfoFirstLine, 60);
        });
        stage.run();
        EXPECT_GT(before, 1000);
        EXPECT_EQ(after, before);
    });
}

TEST(FocusLossLaunch, DirectlyBeforeALaunchComesBackWhole) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.rest(6);
        stage.calls.before("IDirectSoundBuffer::Stop", 1, [&] { stage.devices.switchAway(true); });
        stage.onChild = [&](const std::string&) {
            if (stage.children.size() == 2)
                stage.devices.switchBack();
        };
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), 0) << "they were made anew";
        EXPECT_GT(stage.devices.ddraw.flips(), 5);
    });
}

TEST(FocusLossLaunch, DirectlyAfterALaunchRecovers) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_RETURN);
        stage.devices.input.rest(12);
        atFrame(stage, 2, [&] { stage.devices.switchAway(true); }); // the first frame's
        atFrame(stage, 6, [&] { stage.devices.switchBack(); });
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_EQ(stage.calls.uses("IDirectDraw7::RestoreAllSurfaces"), 1);
    });
}

TEST(FocusLossRelease, OfAltSavesEarlyAndChangesNothingElse) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.rest(8);
        atFrame(stage, 3, [&] { stage.devices.desktop->post(WM_SYSKEYUP, VK_MENU); });
        int32_t notified = -1, active = -1;
        atFrame(stage, 5, [&] {
            notified = Screen.lostNotified;
            active = Screen.active;
        });
        stage.run();
        EXPECT_EQ(notified, 1);
        EXPECT_EQ(active, 1);
    });
}
