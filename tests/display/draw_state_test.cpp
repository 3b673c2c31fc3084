#include "display/draw.h"

#include "display/draw_state.h"
#include "display/draw_target.h"
#include "tests/support/draw_fixture.h"

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF blue = 0xFF0000;
constexpr COLORREF white = 0xFFFFFF;
constexpr COLORREF black = 0;

// --- Modes and fonts ---

using DrawSetMode = DrawTest;

TEST_F(DrawSetMode, OfNothingIsOpaqueCopyingAndFilled) {
    SetBkMode(canvas.dc(), TRANSPARENT);
    SetROP2(canvas.dc(), R2_NOT);
    begin();
    Draw_SetMode(0);
    EXPECT_EQ(GetBkMode(canvas.dc()), OPAQUE);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_COPYPEN);
    EXPECT_EQ(selected(OBJ_BRUSH), Pass.brush);
}

TEST_F(DrawSetMode, WithBitOneIsTransparentAlone) {
    begin();
    Draw_SetMode(1);
    EXPECT_EQ(Pass.mode, 1);
    EXPECT_EQ(GetBkMode(canvas.dc()), TRANSPARENT);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_COPYPEN);
    EXPECT_EQ(selected(OBJ_BRUSH), Pass.brush);
}

TEST_F(DrawSetMode, WithBitTwoInvertsAlone) {
    begin();
    Draw_SetMode(2);
    EXPECT_EQ(Pass.mode, 2);
    EXPECT_EQ(GetBkMode(canvas.dc()), OPAQUE);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_NOT);
    EXPECT_EQ(selected(OBJ_BRUSH), Pass.brush);
}

TEST_F(DrawSetMode, WithBitFourIsUnfilledAlone) {
    begin();
    Draw_SetMode(4);
    EXPECT_EQ(Pass.mode, 4);
    EXPECT_EQ(GetBkMode(canvas.dc()), OPAQUE);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_COPYPEN);
    EXPECT_EQ(selected(OBJ_BRUSH), GetStockObject(NULL_BRUSH));
}

using DrawSetFont = DrawTest;

TEST_F(DrawSetFont, SelectsTheFontForTheRestOfThePass) {
    HGDIOBJ font = GetStockObject(ANSI_FIXED_FONT);
    begin();
    Draw_SetFont(reinterpret_cast<int64_t>(font));
    EXPECT_EQ(selected(OBJ_FONT), font);
    EXPECT_EQ(Pass.font, font);
}

TEST_F(DrawSetFont, OfMinusOneSelectsTheSystemFont) {
    SelectObject(canvas.dc(), GetStockObject(ANSI_FIXED_FONT));
    begin();
    Draw_SetFont(-1);
    EXPECT_EQ(selected(OBJ_FONT), GetStockObject(SYSTEM_FONT));
    EXPECT_EQ(Pass.font, GetStockObject(SYSTEM_FONT));
}

TEST_F(DrawSetFont, OfAFailedFontLeavesTheOldOneSelected) {
    HGDIOBJ font = GetStockObject(ANSI_FIXED_FONT);
    begin();
    Draw_SetFont(reinterpret_cast<int64_t>(font));
    Draw_SetFont(0);
    EXPECT_EQ(selected(OBJ_FONT), font);
    EXPECT_EQ(Pass.font, nullptr);
}

// --- After pixel work ---

class DrawResumeDc : public DrawTest {
protected:
    DrawResumeDc() : other(64, 48, ground) {
        resumed = other.dc();
        DrawTarget target = targetOf(DrawTarget_Surface);
        target.resume = giveResumed;
        Draw_Begin(&target);
    }
    static HDC giveResumed() {
        stateThen = Pass.dcState;
        return resumed;
    }
    static inline HDC resumed = nullptr;
    static inline int32_t stateThen = 0;
    Canvas other;
};

TEST_F(DrawResumeDc, RebuildsTheStateOnTheContextTakenBack) {
    Draw_SetFont(reinterpret_cast<int64_t>(GetStockObject(ANSI_FIXED_FONT)));
    HPEN pen = CreatePen(PS_SOLID, 2, blue);
    Pass.pen = pen;
    Pass.textColor = red;
    Pass.dcState = -1;
    Draw_ResumeDc();
    EXPECT_EQ(Pass.dc, other.dc());
    EXPECT_EQ(Pass.dcState, 1);
    EXPECT_EQ(stateThen, 1) << "set before the routine is asked";
    EXPECT_EQ(GetTextColor(other.dc()), red);
    EXPECT_EQ(GetTextAlign(other.dc()), static_cast<UINT>(TA_UPDATECP));
    EXPECT_EQ(GetBkColor(other.dc()), white);
    EXPECT_EQ(GetCurrentObject(other.dc(), OBJ_BRUSH), Pass.brush);
    EXPECT_EQ(GetCurrentObject(other.dc(), OBJ_PEN), pen);
    EXPECT_EQ(GetCurrentObject(other.dc(), OBJ_FONT), GetStockObject(ANSI_FIXED_FONT));
}

TEST_F(DrawResumeDc, SetsTheModeAnew) {
    Draw_SetMode(DrawMode_Invert | DrawMode_Unfilled);
    Pass.dcState = -1;
    Draw_ResumeDc();
    EXPECT_EQ(Pass.mode, DrawMode_Invert | DrawMode_Unfilled);
    EXPECT_EQ(GetROP2(other.dc()), R2_NOT);
    EXPECT_EQ(GetCurrentObject(other.dc(), OBJ_BRUSH), GetStockObject(NULL_BRUSH));
}

TEST_F(DrawResumeDc, LeavesAContextThatWasNotGivenUp) {
    Draw_ResumeDc();
    EXPECT_EQ(Pass.dc, canvas.dc());
    Pass.dcState = 0;
    Draw_ResumeDc();
    EXPECT_EQ(Pass.dc, canvas.dc());
}

TEST_F(DrawResumeDc, IsForSurfacesAlone) {
    Pass.kind = DrawTarget_Bits;
    Pass.dcState = -1;
    Draw_ResumeDc();
    EXPECT_EQ(Pass.dc, canvas.dc());
    EXPECT_EQ(Pass.dcState, -1);
}

TEST_F(DrawResumeDc, RunsAheadOfEveryOperation) {
    const TestPicture picture(1, {red});
    const auto takesBack = [this](auto operation) {
        Pass.dc = canvas.dc();
        Pass.dcState = -1;
        operation();
        return Pass.dc == other.dc() && Pass.dcState == 1;
    };
    EXPECT_TRUE(takesBack([] { Draw_SetMode(0); }));
    EXPECT_TRUE(takesBack([] { Draw_SetFont(DrawFont_System); }));
    EXPECT_TRUE(takesBack([] { Draw_Text(0, 0, "", white, black); }));
    EXPECT_TRUE(takesBack([&] { Draw_Image(picture.handle(), 3, 4); }));
    EXPECT_EQ(other.at(3, 4), red) << "and it draws on the context taken back";
}

} // namespace
