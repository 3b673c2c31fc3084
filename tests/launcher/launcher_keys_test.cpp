// What each key does on each page, by the state of the menu after it.

#include "tests/support/launcher_stage.h"

#include "input/keyboard.h"
#include "launcher/variables.h"

#include <vector>

namespace {

// The selected row after the keys, from row `start` on.
int64_t rowAfter(LauncherStage& stage, int64_t start, const std::vector<uint8_t>& keys) {
    for (const uint8_t key : keys)
        stage.devices.input.press(key);
    stage.calls.before("IDirectDrawSurface7::Flip", 1, [=] { Launcher.SelectedRow = start; });
    stage.run();
    return Launcher.SelectedRow;
}

void expectRow(int64_t start, uint8_t key, int64_t expected) {
    onStage([=](LauncherStage& stage) { EXPECT_EQ(rowAfter(stage, start, {key}), expected); });
}

std::string lines(int count) {
    std::string text;
    for (int line = 0; line < count; ++line)
        text += "line\n";
    return text;
}

// The first line shown after the keys, which are pressed on the info page.
int64_t firstLineAfter(LauncherStage& stage, int lineCount, const std::vector<uint8_t>& keys) {
    stage.writeFile("ostrik.nfo", lines(lineCount));
    for (const uint8_t key : keys)
        stage.devices.input.press(key);
    stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.MenuMode = MenuMode_Info; });
    stage.run();
    return Launcher.InfoFirstLine;
}

void expectFirstLine(int lineCount, const std::vector<uint8_t>& keys, int64_t expected) {
    onStage(
        [=](LauncherStage& stage) { EXPECT_EQ(firstLineAfter(stage, lineCount, keys), expected); });
}

// Pages of ten lines instead of sixty, through 25 lines.
void expectFirstLineInTens(const std::vector<uint8_t>& keys, int64_t expected) {
    onStage([=](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.InfoPageSize = 10; });
        EXPECT_EQ(firstLineAfter(stage, 25, keys), expected);
    });
}

// A key that is let go in the frame after Enter has opened the info page, which ignores it.
void expectForgottenOnTheInfoPage(uint8_t key) {
    onStage([=](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.SelectedRow = 28; });
        stage.devices.input.script({{DIK_RETURN, key}, {key}, {}, {DIK_ESCAPE}, {}});
        stage.devices.input.rest(2);
        stage.run();
        EXPECT_EQ(Launcher.SelectedRow, 28);
    });
}

// Enter on a row whose file name is another one.
void enterOnRenamed(LauncherStage& stage, int64_t row, const char* name) {
    stage.calls.before("IDirectDrawSurface7::Flip", 1, [=] {
        Launcher.SelectedRow = row;
        Text_Assign(&Launcher.IntroCatalogue[row].ExeName, name);
    });
    stage.devices.input.press(DIK_RETURN);
}

void expectRunOfRenamed(int64_t row, const char* name) {
    onStage([=](LauncherStage& stage) {
        enterOnRenamed(stage, row, name);
        stage.run();
        ASSERT_EQ(stage.children.size(), 2u);
        EXPECT_NE(stage.children[1].commandLine.find(name), std::string::npos);
    });
}

} // namespace

TEST(Keys, UpGoesToTheRowBefore) { expectRow(7, DIK_UP, 6); }
TEST(Keys, UpFromRow1GoesToRow0) { expectRow(1, DIK_UP, 0); }
TEST(Keys, UpFromRow0WrapsToRow14) { expectRow(0, DIK_UP, 14); }
TEST(Keys, UpFromRow15WrapsToRow29AndNotToRow14) { expectRow(15, DIK_UP, 29); }
TEST(Keys, UpFromRow16GoesToRow15) { expectRow(16, DIK_UP, 15); }
TEST(Keys, DownGoesToTheRowAfter) { expectRow(7, DIK_DOWN, 8); }
TEST(Keys, DownFromRow13GoesToRow14) { expectRow(13, DIK_DOWN, 14); }
TEST(Keys, DownFromRow14WrapsToRow0AndNotToRow15) { expectRow(14, DIK_DOWN, 0); }
TEST(Keys, DownFromRow29WrapsToRow15) { expectRow(29, DIK_DOWN, 15); }
TEST(Keys, DownFromRow28GoesToRow29) { expectRow(28, DIK_DOWN, 29); }
TEST(Keys, LeftOnRow28GivesRow13) { expectRow(28, DIK_LEFT, 13); }
TEST(Keys, LeftOnRow13GivesRow28) { expectRow(13, DIK_LEFT, 28); }
TEST(Keys, LeftOnRow14GivesRow29) { expectRow(14, DIK_LEFT, 29); }
TEST(Keys, RightOnRow15GivesRow0) { expectRow(15, DIK_RIGHT, 0); }
TEST(Keys, RightOnRow0GivesRow15) { expectRow(0, DIK_RIGHT, 15); }

TEST(Keys, LeftAndRightLetGoTogetherMoveThereAndBack) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_LEFT, DIK_RIGHT}, {}});
        stage.run();
        EXPECT_EQ(Launcher.SelectedRow, 0);
    });
}

TEST(Keys, TwoLetGoInOneSnapshotBothAct) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_UP, DIK_RIGHT}, {}});
        stage.run();
        EXPECT_EQ(Launcher.SelectedRow, 29);
    });
}

TEST(Keys, UpAndDownLetGoTogetherComeBackToTheSameRow) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_UP, DIK_DOWN}, {}});
        stage.run();
        EXPECT_EQ(Launcher.SelectedRow, 0);
    });
}

TEST(Keys, UpActsBeforeDownOnTheFirstPage) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_UP, DIK_DOWN}, {}});
        EXPECT_EQ(firstLineAfter(stage, 121, {}), 60) << "up stays there, then comes down";
    });
}

TEST(Keys, UpActsBeforeDownOnTheLastPage) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 2, [] { Launcher.InfoFirstLine = 120; });
        stage.devices.input.script({{DIK_UP, DIK_DOWN}, {}});
        EXPECT_EQ(firstLineAfter(stage, 121, {}), 120) << "up goes to 60, and down back again";
    });
}

TEST(Keys, LeftLetGoOnTheInfoPageIsForgottenThere) { expectForgottenOnTheInfoPage(DIK_LEFT); }
TEST(Keys, RightLetGoOnTheInfoPageIsForgottenThere) { expectForgottenOnTheInfoPage(DIK_RIGHT); }

TEST(Keys, HeldActOnceAndOnlyWhenTheyAreLetGo) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.script({{DIK_DOWN}, {DIK_DOWN}, {DIK_DOWN}, {}, {}, {}});
        int64_t whileHeld = -1;
        stage.calls.before("IDirectDrawSurface7::Flip", 4,
                           [&] { whileHeld = Launcher.SelectedRow; });
        stage.run();
        EXPECT_EQ(whileHeld, 0);
        EXPECT_EQ(Launcher.SelectedRow, 1);
    });
}

TEST(Keys, OfSixtyLinesShowOnePage) { expectFirstLine(60, {DIK_DOWN}, 0); }
TEST(Keys, OfSixtyOneLinesDownShowsTheLast) { expectFirstLine(61, {DIK_DOWN}, 60); }
TEST(Keys, OfSixtyOneLinesDownStopsAtTheLastPage) { expectFirstLine(61, {DIK_DOWN, DIK_DOWN}, 60); }
TEST(Keys, OfOneHundredTwentyLinesDownStopsAtTheSecondPage) {
    expectFirstLine(120, {DIK_DOWN, DIK_DOWN}, 60);
}
TEST(Keys, OfOneHundredTwentyOneLinesDownReachesTheThirdPage) {
    expectFirstLine(121, {DIK_DOWN, DIK_DOWN}, 120);
}
TEST(Keys, UpGoesAWholePageBack) { expectFirstLine(121, {DIK_DOWN, DIK_DOWN, DIK_UP}, 60); }
TEST(Keys, UpOnTheFirstPageStaysThere) { expectFirstLine(121, {DIK_UP}, 0); }
TEST(Keys, LeftRightAndEnterDoNothingOnTheInfoPage) {
    onStage([](LauncherStage& stage) {
        EXPECT_EQ(firstLineAfter(stage, 121, {DIK_LEFT, DIK_RIGHT, DIK_LEFT, DIK_RETURN}), 0);
        EXPECT_EQ(Launcher.SelectedRow, 0);
        EXPECT_EQ(stage.children.size(), 1u);
    });
}

TEST(Keys, UpStepsBelowZeroComeToZero) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 2, [] { Launcher.InfoFirstLine = 30; });
        EXPECT_EQ(firstLineAfter(stage, 121, {DIK_LEFT, DIK_UP}), 0);
    });
}

TEST(Keys, DownTurnsAsManyLinesAsTheVariablesSay) {
    expectFirstLineInTens({DIK_DOWN, DIK_DOWN, DIK_DOWN}, 20);
}
TEST(Keys, UpTurnsAsManyLinesBackAsTheVariablesSay) {
    expectFirstLineInTens({DIK_DOWN, DIK_DOWN, DIK_UP}, 10);
}

TEST(Keys, EscapeOnTheInfoPageGoesBackAndKeepsPageAndRow) {
    onStage([](LauncherStage& stage) {
        int64_t modeThen = -1;
        stage.calls.before("IDirectDrawSurface7::Flip", 6, [&] { modeThen = Launcher.MenuMode; });
        EXPECT_EQ(firstLineAfter(stage, 121, {DIK_DOWN, DIK_ESCAPE, DIK_DOWN}), 60);
        EXPECT_EQ(modeThen, MenuMode_Catalogue);
        EXPECT_EQ(Launcher.SelectedRow, 1) << "the row moves again, and the page does not";
    });
}

TEST(Keys, EnterOnTheInfoRowOpensThePageWhereItWasLeft) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", lines(121));
        stage.press(
            {DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN, DIK_DOWN, DIK_ESCAPE, DIK_RETURN, DIK_DOWN});
        stage.run();
        EXPECT_EQ(Launcher.InfoFirstLine, 120);
        EXPECT_EQ(Launcher.SelectedRow, 28);
        EXPECT_EQ(stage.children.size(), 1u);
    });
}

TEST(Keys, EnterAndEscapeTogetherOnTheInfoRowOpenAndCloseThePage) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.SelectedRow = 28; });
        stage.devices.input.script({{DIK_RETURN, DIK_ESCAPE}, {}, {}, {}});
        stage.doNotLeave();
        int64_t modeThen = -1;
        stage.calls.before("IDirectDrawSurface7::Flip", 3, [&] {
            modeThen = Launcher.MenuMode;
            stage.devices.input.press(DIK_ESCAPE);
        });
        EXPECT_EQ(stage.run().exitCode, 0u);
        EXPECT_EQ(modeThen, MenuMode_Catalogue) << "within the one frame";
    });
}

TEST(Keys, EnterOnAnyRowNamedLikeTheInfoRowShowsTheInfoPage) {
    onStage([](LauncherStage& stage) {
        enterOnRenamed(stage, 0, "NFOFILE");
        int64_t modeThen = -1;
        stage.calls.before("IDirectDrawSurface7::Flip", 3, [&] { modeThen = Launcher.MenuMode; });
        stage.run();
        EXPECT_EQ(modeThen, MenuMode_Info);
        EXPECT_EQ(stage.children.size(), 1u);
    });
}

TEST(Keys, EnterOnAnyRowNamedLikeTheQuitRowLeaves) {
    onStage([](LauncherStage& stage) {
        enterOnRenamed(stage, 0, "QUIT");
        stage.run();
        EXPECT_EQ(stage.children.size(), 1u);
        EXPECT_TRUE(std::filesystem::exists(stage.stagingFolder())) << "by the quit row's way out";
    });
}

TEST(Keys, EnterRunsTheInfoRowUnderAnotherName) { expectRunOfRenamed(28, "one.exe"); }
TEST(Keys, EnterRunsTheQuitRowUnderAnotherName) { expectRunOfRenamed(29, "one.exe"); }
TEST(Keys, EnterTakesQuitInSmallLettersForAFile) { expectRunOfRenamed(29, "quit"); }
TEST(Keys, EnterTakesNfoFileInSmallLettersForAFile) { expectRunOfRenamed(28, "NfoFile"); }

TEST(Keys, InfoPageKeepsItsPlaceOverAnIntro) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", lines(121));
        stage.press(
            {DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN, DIK_DOWN, DIK_ESCAPE, DIK_UP, DIK_RETURN});
        stage.run();
        EXPECT_EQ(stage.children.size(), 2u);
        EXPECT_EQ(Launcher.InfoFirstLine, 60);
        EXPECT_EQ(Launcher.SelectedRow, 27);
    });
}

TEST(Keys, EnterKeepsItsHistoryOnTheInfoPage) {
    onStage([](LauncherStage& stage) {
        int64_t modeThen = -1;
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] {
            Launcher.SelectedRow = 28;
            Launcher.MenuMode = MenuMode_Info;
        });
        stage.devices.input.script({{DIK_RETURN, DIK_ESCAPE}, {DIK_RETURN}, {}});
        stage.calls.before("IDirectDrawSurface7::Flip", 4, [&] { modeThen = Launcher.MenuMode; });
        stage.run();
        EXPECT_EQ(modeThen, MenuMode_Info) << "opened again by the release of Enter";
    });
}
