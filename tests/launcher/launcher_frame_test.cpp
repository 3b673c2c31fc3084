// What one frame of either page asks of Windows, and what is then on the screen.

#include "tests/support/launcher_stage.h"
#include "tests/support/line_difference.h"

#include "display/font.h"
#include "display/font_state.h"
#include "display/image.h"
#include "display/image_state.h"
#include "input/keyboard.h"
#include "launcher/variables.h"

#include <algorithm>
#include <string>

namespace {

constexpr COLORREF red = RGB(255, 0, 0);
constexpr COLORREF cyan = RGB(0, 255, 255);
constexpr COLORREF white = RGB(255, 255, 255);

// Selects the row of the info file and chooses it: eight snapshots.
void openInfoPage(LauncherStage& stage) { stage.press({DIK_LEFT, DIK_UP, DIK_UP, DIK_RETURN}); }

std::string numberedLines(int count) {
    std::string text;
    for (int line = 0; line < count; ++line)
        text += "line " + std::to_string(line) + "\r\n";
    return text;
}

// A pass begins with the standing pair of brush and pen, black as its text colour and a black brush
// of its own, and every page with the banner.
const std::string beginning = R"(
    SelectObject(dc1, brush1) -> old1
    SelectObject(dc1, pen1) -> old2
    SetTextColor(dc1, 0)
    SelectObject(dc1, brush2) -> brush1
    SelectObject(dc2, bitmap1)
    BitBlt(dc1, 192, 0, 640, 135, dc2, 0, 0, 0xCC0020) -> 1
)";
const std::string end = "SelectObject(dc1, old1) -> brush2\nSelectObject(dc1, old2) -> pen1\n";

// The calls of Draw_SetFont.
std::string font(int number) { return "SelectObject(dc1, font" + std::to_string(number) + ")\n"; }

// The calls of Draw_Text for a text that is not empty.
std::string drawn(int x, int y, const std::string& text, COLORREF foreground, COLORREF background) {
    return "SetTextColor(*, " + std::to_string(foreground) + ")\n" + //
           "SetBkColor(*, " + std::to_string(background) + ")\n" +   //
           "MoveToEx(*, " + std::to_string(x) + ", " + std::to_string(y) + ", null)\n" +
           "TextOutA(*, 0, 0, \"" + text + "\", " + std::to_string(text.size()) + ")\n" +
           "SetBkColor(*, *)\nSetTextColor(*, 0)\nMoveToEx(*, 0, 0, *)\n";
}

testing::AssertionResult linesMatch(const std::string& recorded, const std::string& expected) {
    const std::string difference = lineDifference(expectedLines(expected), expectedLines(recorded));
    if (difference.empty())
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << difference;
}

void watchTexts(LauncherStage& stage, int flip, std::string* lines) {
    stage.calls.only(
        {"SelectObject", "SetTextColor", "SetBkColor", "MoveToEx", "TextOutA", "BitBlt"});
    stage.calls.before("IDirectDrawSurface7::Flip", flip - 1, [&stage] { stage.calls.take(); });
    stage.calls.before("IDirectDrawSurface7::Flip", flip, [&stage, lines] {
        for (const std::string& line : stage.calls.take())
            *lines += line + "\n";
    });
}

} // namespace

TEST(Frame, OfTheCataloguePageAsksWindowsInThisOrder) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.rest(4);
        stage.calls.except({"SetTextColor", "SetBkColor", "MoveToEx", "TextOutA", "HeapAlloc",
                            "HeapFree", "HeapReAlloc"});
        // From inside one flip to inside the flip after the next.
        stage.calls.before("IDirectDrawSurface7::Flip", 2, [&] { stage.calls.take(); });
        stage.calls.before("IDirectDrawSurface7::Flip", 4, [&] {
            EXPECT_TRUE(stage.calls.match(R"(
                Sleep(1)
                IDirectDrawSurface7::Blt(surface2, null, null, null, 0x400, {128, fill 0}) -> 0
                IDirectInputDevice7A::GetDeviceState(device1, 256, *) -> 0
                IDirectDrawSurface7::GetDC(surface2, *) -> 0
                SetTextAlign(*, 1)
                SelectObject(*, brush1)
                SelectObject(*, pen1)
                CreateSolidBrush(0) -> brush2
                SetROP2(*, 13)
                SelectObject(*, brush2)
                SetBkMode(*, 2)
                GetObjectType(bitmap1) -> 7
                CreateCompatibleDC(*)
                GetObjectA(bitmap1, 32, *)
                SelectObject(*, bitmap1)
                BitBlt(*, 192, 0, 640, 135, *, 0, 0, 0xCC0020) -> 1
                DeleteDC(*)
                SelectObject(*, font1)
                SelectObject(*, font2)
                SelectObject(*, *)
                SelectObject(*, *)
                DeleteObject(brush2) -> 1
                IDirectDrawSurface7::ReleaseDC(surface2, *) -> 0
                PeekMessageA(*, null, 0, 0, 1) -> 0
                IDirectDrawSurface7::Flip(surface1, null, 1) -> 0
                Sleep(1)
                IDirectDrawSurface7::Blt(*)
                ...
            )"));
        });
        stage.run();
        EXPECT_GE(stage.calls.uses("IDirectDrawSurface7::Flip"), 4);
    });
}

TEST(Frame, OfTheCataloguePageDrawsEveryTextAtItsPlaceInItsColours) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_DOWN);
        stage.devices.input.rest(4);
        std::string recorded;
        watchTexts(stage, 4, &recorded);
        stage.run();
        std::string expected = beginning + font(1);
        for (int row = 0; row < 30; ++row)
            expected += drawn(row < 15 ? 100 : 600, 145 + row % 15 * 30,
                              Launcher.IntroCatalogue[row].Title, white, row == 1 ? red : 0);
        expected += font(2);
        expected += drawn(100, 620, "Welcome to my Tessel Intros Keldara 2009!", cyan, 0);
        expected += drawn(100, 640,
                          "It contains almost all of the intros that I created With the Tessel "
                          "Forge in 2009.",
                          cyan, 0);
        expected += drawn(100, 660,
                          "Select an Intro using the cursor keys and press the Enter Key To "
                          "execute it. Press ESC To quit the intro or this program.",
                          cyan, 0);
        expected += drawn(100, 680, "Cheers! Ilmar aka Ostrik.", cyan, 0);
        EXPECT_TRUE(linesMatch(recorded, expected + end));
    });
}

TEST(Frame, OfTheInfoPageAsksWindowsInThisOrder) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", "alone");
        openInfoPage(stage);
        stage.devices.input.rest(4);
        stage.calls.except({"HeapAlloc", "HeapFree", "HeapReAlloc"});
        stage.calls.before("IDirectDrawSurface7::Flip", 10, [&] { stage.calls.take(); });
        stage.calls.before("IDirectDrawSurface7::Flip", 12, [&] {
            EXPECT_TRUE(stage.calls.match(R"(
                Sleep(1)
                IDirectDrawSurface7::Blt(surface2, null, null, null, 0x400, {128, fill 0}) -> 0
                IDirectInputDevice7A::GetDeviceState(device1, 256, *) -> 0
                IDirectDrawSurface7::GetDC(surface2, *) -> 0
                SetTextAlign(dc1, 1)
                SelectObject(dc1, brush1)
                SelectObject(dc1, pen1)
                CreateSolidBrush(0) -> brush2
                SetTextColor(dc1, 0)
                SetROP2(dc1, 13)
                SelectObject(dc1, brush2)
                SetBkMode(dc1, 2)
                GetObjectType(bitmap1) -> 7
                CreateCompatibleDC(dc1) -> dc2
                GetObjectA(bitmap1, 32, *)
                SelectObject(dc2, bitmap1)
                BitBlt(dc1, 192, 0, 640, 135, dc2, 0, 0, 0xCC0020) -> 1
                DeleteDC(dc2)
                SelectObject(dc1, font3)
                SetTextColor(dc1, 0xFFFFFF)
                SetBkColor(dc1, 0)
                MoveToEx(dc1, 100, 145, null)
                TextOutA(dc1, 0, 0, "alone", 5)
                SetBkColor(dc1, *)
                SetTextColor(dc1, 0)
                MoveToEx(dc1, 0, 0, *)
                SelectObject(dc1, old1)
                SelectObject(dc1, old2)
                DeleteObject(brush2) -> 1
                IDirectDrawSurface7::ReleaseDC(surface2, dc1) -> 0
                PeekMessageA(*, null, 0, 0, 1) -> 0
                IDirectDrawSurface7::Flip(surface1, null, 1) -> 0
                Sleep(1)
                IDirectDrawSurface7::Blt(*)
                ...
            )"));
        });
        stage.run();
        EXPECT_GE(stage.calls.uses("IDirectDrawSurface7::Flip"), 12);
    });
}

TEST(Frame, OfTheInfoPageDrawsSixtyLinesTenPixelsApart) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", numberedLines(61));
        openInfoPage(stage);
        stage.devices.input.rest(4);
        std::string recorded;
        watchTexts(stage, 10, &recorded);
        stage.run();
        std::string expected = beginning + font(3);
        for (int line = 0; line < 60; ++line)
            expected += drawn(100, 145 + line * 10, "line " + std::to_string(line), white, 0);
        EXPECT_TRUE(linesMatch(recorded, expected + end));
    });
}

TEST(Frame, OfTheSecondInfoPageDrawsTheRestOnly) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", numberedLines(61));
        openInfoPage(stage);
        stage.devices.input.press(DIK_DOWN);
        stage.devices.input.press(DIK_DOWN);
        stage.devices.input.rest(4);
        std::string recorded;
        watchTexts(stage, 14, &recorded);
        stage.run();
        EXPECT_TRUE(
            linesMatch(recorded, beginning + font(3) + drawn(100, 145, "line 60", white, 0) + end));
    });
}

TEST(Frame, EmptyInfoLineStillTakesItsTenPixels) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", "above\r\n\r\nbelow");
        openInfoPage(stage);
        stage.devices.input.rest(4);
        std::string recorded;
        watchTexts(stage, 10, &recorded);
        stage.run();
        EXPECT_NE(recorded.find(", 100, 155, null)"), std::string::npos);
        EXPECT_NE(recorded.find(", 100, 165, null)"), std::string::npos);
        EXPECT_EQ(recorded.find(", 100, 175, null)"), std::string::npos);
    });
}

TEST(Frame, WithoutAnInfoFileShowsTheLineThatSaysSo) {
    onStage([](LauncherStage& stage) {
        openInfoPage(stage);
        stage.devices.input.press(DIK_DOWN);
        stage.devices.input.press(DIK_UP);
        stage.devices.input.rest(4);
        std::string recorded;
        watchTexts(stage, 14, &recorded);
        stage.run();
        EXPECT_TRUE(linesMatch(recorded, beginning + font(3) +
                                             drawn(100, 145, "No NFO File Found", white, 0) + end));
    });
}

TEST(Frame, StoresWhereEachRowWasDrawn) {
    onStage([](LauncherStage& stage) {
        stage.run();
        for (int row = 0; row < 30; ++row) {
            EXPECT_EQ(Launcher.IntroCatalogue[row].X, row < 15 ? 100 : 600) << row;
            EXPECT_EQ(Launcher.IntroCatalogue[row].Y, 145 + row % 15 * 30) << row;
        }
        for (int row = 30; row < 32; ++row) {
            EXPECT_EQ(Launcher.IntroCatalogue[row].Title, nullptr);
            EXPECT_EQ(Launcher.IntroCatalogue[row].X, 0);
        }
    });
}

TEST(Frame, BeginsBothColumnsWhereTheVariablesSay) {
    onStage([](LauncherStage& stage) {
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.MenuTop = 200; });
        stage.run();
        EXPECT_EQ(Launcher.IntroCatalogue[0].Y, 200);
        EXPECT_EQ(Launcher.IntroCatalogue[15].Y, 200);
    });
}

TEST(Frame, OfTheInfoPageShowsAsManyLinesAsTheVariablesSay) {
    onStage([](LauncherStage& stage) {
        stage.writeFile("ostrik.nfo", numberedLines(5));
        openInfoPage(stage);
        stage.devices.input.rest(4);
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [] { Launcher.InfoPageSize = 2; });
        std::string recorded;
        watchTexts(stage, 10, &recorded);
        stage.run();
        EXPECT_TRUE(linesMatch(recorded, beginning + font(3) + drawn(100, 145, "line 0", white, 0) +
                                             drawn(100, 155, "line 1", white, 0) + end));
    });
}

TEST(Frame, LeavesTheNumberBehindTheLastRowOrLineInTheRowIndex) {
    onStage([](LauncherStage& stage) {
        openInfoPage(stage);
        stage.devices.input.rest(4);
        int64_t behindRows = -1, behindLines = -1;
        stage.calls.before("IDirectDrawSurface7::Flip", 1, [&] { behindRows = Launcher.RowIndex; });
        stage.calls.before("IDirectDrawSurface7::Flip", 10,
                           [&] { behindLines = Launcher.RowIndex; });
        stage.run();
        EXPECT_EQ(behindRows, 30);
        EXPECT_EQ(behindLines, 60);
    });
}

TEST(Frame, WithoutABackBufferDrawsNothingButStoresPlacesAndActsOnKeys) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_DOWN);
        stage.calls.failAlways("IDirectDrawSurface7::GetDC", E_FAIL);
        stage.run();
        EXPECT_EQ(stage.calls.uses("TextOutA"), 0);
        EXPECT_EQ(stage.calls.uses("BitBlt"), 0);
        EXPECT_EQ(Launcher.IntroCatalogue[29].Y, 565);
        EXPECT_EQ(Launcher.SelectedRow, 1);
    });
}

TEST(Frame, ShowsTheHighlightBehindTheSelectedRowAlone) {
    onStage([](LauncherStage& stage) {
        stage.devices.input.press(DIK_RIGHT);
        stage.devices.input.rest(3);
        int first = -1, sixteenth = -1;
        stage.calls.before("IDirectDrawSurface7::Blt", 5, [&] {
            first = stage.devices.ddraw.shownCount({100, 145, 500, 175}, red);
            sixteenth = stage.devices.ddraw.shownCount({600, 145, 1000, 175}, red);
        });
        stage.run();
        EXPECT_EQ(first, 0);
        EXPECT_GT(sixteenth, 1000);
    });
}

TEST(Frame, AsksForItsHandlesEachTime) {
    onStage([](LauncherStage& stage) {
        HGDIOBJ otherFont = GetStockObject(ANSI_FIXED_FONT);
        HBITMAP otherImage = CreateBitmap(1, 1, 1, 32, nullptr);
        std::vector<std::string> lines;
        stage.calls.name(otherFont, "otherFont");
        stage.calls.name(otherImage, "otherImage");
        stage.devices.input.rest(6);
        stage.calls.after("IDirectDrawSurface7::Flip", 2, [&] {
            static_cast<FontObject*>(Registry_Lookup(fontRegistry, 0))->handle =
                reinterpret_cast<int64_t>(otherFont);
            static_cast<ImageObject*>(Registry_Lookup(imageRegistry, 0))->handle =
                reinterpret_cast<int64_t>(otherImage);
            stage.calls.take();
        });
        stage.calls.before("IDirectDrawSurface7::Flip", 3, [&] { lines = stage.calls.take(); });
        stage.run();
        const auto selects = [&lines](const char* name) {
            return std::count_if(lines.begin(), lines.end(), [name](const std::string& line) {
                return line.starts_with("SelectObject(") &&
                       line.find(std::string(", ") + name + ")") != std::string::npos;
            });
        };
        EXPECT_EQ(selects("otherFont"), 1);
        EXPECT_EQ(selects("otherImage"), 1);
    });
}
