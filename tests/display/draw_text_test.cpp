#include "display/draw.h"

#include "display/draw_state.h"
#include "tests/support/draw_fixture.h"

#include <cstring>

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF green = 0x00FF00;
constexpr COLORREF blue = 0xFF0000;
constexpr COLORREF white = 0xFFFFFF;
constexpr COLORREF black = 0;

POINT positionOf(HDC dc) {
    POINT at{-1, -1};
    GetCurrentPositionEx(dc, &at);
    return at;
}

SIZE extentOf(HDC dc, const char* text) {
    SIZE size{};
    GetTextExtentPoint32A(dc, text, static_cast<int>(strlen(text)), &size);
    return size;
}

class DrawnText : public DrawTest {
protected:
    DrawnText() {
        begin();
        Draw_SetFont(reinterpret_cast<int64_t>(GetStockObject(ANSI_FIXED_FONT)));
        Draw_SetMode(0);
        cell = extentOf(canvas.dc(), "Hi");
    }
    SIZE cell;
};

TEST_F(DrawnText, CoversItsCellsWithTheBackgroundAndNothingElse) {
    Draw_Text(10, 8, "Hi", white, blue);
    const int right = 10 + cell.cx;
    const int bottom = 8 + cell.cy;
    EXPECT_EQ(canvas.count(ground, 10, 8, right, bottom), 0);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - cell.cx * cell.cy);
    EXPECT_GT(canvas.count(blue, 10, 8, right, bottom), 0);
    EXPECT_GT(canvas.count(white, 10, 8, right, bottom), 0);
}

TEST_F(DrawnText, HasNoBoxInTransparentMode) {
    Draw_SetMode(DrawMode_Transparent);
    Draw_Text(10, 8, "Hi", white, blue);
    EXPECT_EQ(canvas.count(blue, 0, 0, 64, 48), 0);
    EXPECT_GT(canvas.count(white, 0, 0, 64, 48), 0);
}

TEST_F(DrawnText, BeforeAnyModeTakesTheContextsOwn) {
    Draw_End();
    SetBkMode(canvas.dc(), TRANSPARENT);
    begin();
    Draw_Text(10, 8, "Hi", white, blue);
    EXPECT_EQ(canvas.count(blue, 0, 0, 64, 48), 0);
    Draw_End();
    SetBkMode(canvas.dc(), OPAQUE);
    begin();
    Draw_Text(10, 8, "Hi", white, blue);
    EXPECT_GT(canvas.count(blue, 0, 0, 64, 48), 0);
}

TEST_F(DrawnText, GivesThePositionBehindIt) {
    EXPECT_EQ(Draw_Text(10, 8, "Hi", white, blue), 10 + cell.cx);
}

TEST_F(DrawnText, OfNothingGivesItsOwnPositionAndDrawsNothing) {
    EXPECT_EQ(Draw_Text(10, 8, nullptr, white, blue), 10);
    EXPECT_EQ(Draw_Text(-11, 8, "", white, blue), -11);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48);
}

TEST_F(DrawnText, LeavesThePositionAtZero) {
    Draw_Text(10, 8, "Hi", white, blue);
    EXPECT_EQ(positionOf(canvas.dc()).x, 0);
    EXPECT_EQ(positionOf(canvas.dc()).y, 0);
    Draw_Text(10, 8, "", white, blue);
    EXPECT_EQ(positionOf(canvas.dc()).x, 0);
    EXPECT_EQ(positionOf(canvas.dc()).y, 0);
}

TEST_F(DrawnText, KeepsBothColoursToItself) {
    SetBkColor(canvas.dc(), green);
    Draw_Text(10, 8, "Hi", white, blue);
    EXPECT_EQ(GetTextColor(canvas.dc()), black);
    EXPECT_EQ(GetBkColor(canvas.dc()), green);
}

TEST_F(DrawnText, PutsThePassesOwnColourBack) {
    Pass.textColor = red;
    SetTextColor(canvas.dc(), red);
    Draw_Text(10, 8, "Hi", white, blue);
    EXPECT_EQ(GetTextColor(canvas.dc()), red);
}

TEST_F(DrawnText, InThePassesOwnColourChangesNoColour) {
    CallRecorder calls;
    calls.only({"SetTextColor"});
    Draw_Text(10, 8, "Hi", black, blue);
    EXPECT_TRUE(calls.match(""));
    Pass.textColor = red;
    Draw_Text(10, 8, "Hi", red, blue);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(DrawnText, ThatRunsOffTheTargetIsCut) {
    EXPECT_EQ(Draw_Text(60, 40, "Hi", white, blue), 60 + cell.cx);
    EXPECT_EQ(canvas.count(ground, 60, 40, 64, 48), 0);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 4 * 8);
}

} // namespace
