#include "display/draw.h"

#include "tests/support/draw_fixture.h"
#include "tests/support/image_files.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF green = 0x00FF00;
constexpr COLORREF blue = 0xFF0000;
constexpr COLORREF white = 0xFFFFFF;
constexpr COLORREF black = 0;

LOGBRUSH brushData(HGDIOBJ brush) {
    LOGBRUSH data{};
    GetObjectA(brush, sizeof data, &data);
    return data;
}

LOGPEN penData(HGDIOBJ pen) {
    LOGPEN data{};
    GetObjectA(pen, sizeof data, &data);
    return data;
}

void expectSolidBlackBrush(HGDIOBJ brush) {
    EXPECT_EQ(GetObjectType(brush), static_cast<DWORD>(OBJ_BRUSH));
    EXPECT_EQ(brushData(brush).lbStyle, static_cast<UINT>(BS_SOLID));
    EXPECT_EQ(brushData(brush).lbColor, black);
}

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

// --- The records ---

TEST(DrawTargetRecord, HasItsFieldsInOrder) {
    EXPECT_EQ(offsetof(DrawTarget, kind), 0u);
    EXPECT_EQ(offsetof(DrawTarget, window), 8u);
    EXPECT_EQ(offsetof(DrawTarget, dc), 16u);
    EXPECT_EQ(offsetof(DrawTarget, release), 24u);
    EXPECT_EQ(offsetof(DrawTarget, buffer), 32u);
    EXPECT_EQ(offsetof(DrawTarget, bufferInfo), 40u);
    EXPECT_EQ(offsetof(DrawTarget, width), 44u);
    EXPECT_EQ(offsetof(DrawTarget, height), 48u);
    EXPECT_EQ(offsetof(DrawTarget, depth), 52u);
    EXPECT_EQ(offsetof(DrawTarget, format), 56u);
    EXPECT_EQ(offsetof(DrawTarget, resume), 64u);
    EXPECT_EQ(offsetof(DrawTarget, lock), 72u);
}

TEST(DrawPassRecord, HasItsFieldsInOrder) {
    EXPECT_EQ(offsetof(DrawPass, dc), 0u);
    EXPECT_EQ(offsetof(DrawPass, textColor), 8u);
    EXPECT_EQ(offsetof(DrawPass, mode), 12u);
    EXPECT_EQ(offsetof(DrawPass, dcState), 16u);
    EXPECT_EQ(offsetof(DrawPass, backColor), 20u);
    EXPECT_EQ(offsetof(DrawPass, brush), 24u);
    EXPECT_EQ(offsetof(DrawPass, pen), 32u);
    EXPECT_EQ(offsetof(DrawPass, font), 40u);
    EXPECT_EQ(offsetof(DrawPass, defaultBrush), 48u);
    EXPECT_EQ(offsetof(DrawPass, defaultPen), 56u);
    EXPECT_EQ(offsetof(DrawPass, savedBrush), 64u);
    EXPECT_EQ(offsetof(DrawPass, savedPen), 72u);
    EXPECT_EQ(offsetof(DrawPass, kind), 80u);
    EXPECT_EQ(offsetof(DrawPass, window), 88u);
    EXPECT_EQ(offsetof(DrawPass, release), 96u);
    EXPECT_EQ(offsetof(DrawPass, buffer), 104u);
    EXPECT_EQ(offsetof(DrawPass, bufferInfo), 112u);
    EXPECT_EQ(offsetof(DrawPass, width), 116u);
    EXPECT_EQ(offsetof(DrawPass, height), 120u);
    EXPECT_EQ(offsetof(DrawPass, depth), 124u);
    EXPECT_EQ(offsetof(DrawPass, format), 128u);
    EXPECT_EQ(offsetof(DrawPass, resume), 136u);
    EXPECT_EQ(offsetof(DrawPass, lock), 144u);
}

// --- Set-up ---

TEST(DrawSubsystemInit, EmptiesThePass) {
    memset(static_cast<void*>(&Pass), 0x5A, sizeof Pass);
    Draw_SubsystemInit();
    DrawPass expected{};
    expected.defaultBrush = Pass.defaultBrush;
    expected.defaultPen = Pass.defaultPen;
    EXPECT_EQ(memcmp(&Pass, &expected, sizeof Pass), 0);
}

TEST(DrawSubsystemInit, MakesABlackBrushAndABlackHairlineForTheLifeOfTheProcess) {
    Draw_SubsystemInit();
    expectSolidBlackBrush(Pass.defaultBrush);
    const LOGPEN pen = penData(Pass.defaultPen);
    EXPECT_EQ(pen.lopnStyle, static_cast<UINT>(PS_SOLID));
    EXPECT_LE(pen.lopnWidth.x, 1);
    EXPECT_EQ(pen.lopnColor, black);
}

// --- Begin ---

using DrawBegin = DrawTest;

TEST_F(DrawBegin, GivesTheTargetsContext) {
    EXPECT_EQ(begin(), canvas.dc());
    EXPECT_EQ(Pass.dc, canvas.dc());
}

TEST_F(DrawBegin, StartsThePassWithItsStandingValues) {
    begin();
    Draw_SetFont(DrawFont_System);
    Pass.mode = DrawMode_Invert;
    Pass.textColor = red;
    Pass.backColor = green;
    Pass.dcState = -1;
    begin();
    EXPECT_EQ(Pass.mode, 0);
    EXPECT_EQ(Pass.textColor, black);
    EXPECT_EQ(Pass.backColor, white);
    EXPECT_EQ(Pass.dcState, 1);
    EXPECT_EQ(Pass.font, nullptr);
    EXPECT_EQ(Pass.pen, nullptr);
    expectSolidBlackBrush(Pass.brush);
}

TEST_F(DrawBegin, PutsTheContextInOrder) {
    SetTextColor(canvas.dc(), green);
    begin();
    EXPECT_EQ(GetTextAlign(canvas.dc()), static_cast<UINT>(TA_UPDATECP));
    EXPECT_EQ(GetTextColor(canvas.dc()), black);
    EXPECT_EQ(selected(OBJ_BRUSH), Pass.defaultBrush);
    EXPECT_EQ(selected(OBJ_PEN), Pass.defaultPen);
    EXPECT_NE(Pass.brush, Pass.defaultBrush);
}

TEST_F(DrawBegin, LeavesFontAndModesAsTheyCame) {
    HGDIOBJ font = GetStockObject(ANSI_FIXED_FONT);
    SelectObject(canvas.dc(), font);
    SetBkMode(canvas.dc(), TRANSPARENT);
    SetROP2(canvas.dc(), R2_XORPEN);
    begin();
    EXPECT_EQ(selected(OBJ_FONT), font);
    EXPECT_EQ(GetBkMode(canvas.dc()), TRANSPARENT);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_XORPEN);
}

TEST_F(DrawBegin, KeepsTheBrushAndPenThatTheContextHeld) {
    HGDIOBJ brush = GetStockObject(GRAY_BRUSH);
    HGDIOBJ pen = GetStockObject(WHITE_PEN);
    SelectObject(canvas.dc(), brush);
    SelectObject(canvas.dc(), pen);
    begin();
    EXPECT_EQ(Pass.savedBrush, brush);
    EXPECT_EQ(Pass.savedPen, pen);
}

class FullTarget : public DrawTest {
protected:
    static HDC resumeNothing() { return nullptr; }
    static void* lockNothing(int32_t*) { return nullptr; }

    DrawTarget fullTarget(int32_t kind) {
        DrawTarget target = targetOf(kind);
        target.window = reinterpret_cast<HWND>(11);
        target.buffer = &canvas;
        target.bufferInfo = 12;
        target.width = 13;
        target.height = 14;
        target.depth = 15;
        target.format = 16;
        target.resume = resumeNothing;
        target.lock = lockNothing;
        return target;
    }
};

TEST_F(FullTarget, OfASurfaceIsCopiedWhole) {
    const DrawTarget target = fullTarget(DrawTarget_Surface);
    Draw_Begin(&target);
    EXPECT_EQ(Pass.kind, DrawTarget_Surface);
    EXPECT_EQ(Pass.window, reinterpret_cast<HWND>(11));
    EXPECT_EQ(Pass.release, &FullTarget::countRelease);
    EXPECT_EQ(Pass.buffer, &canvas);
    EXPECT_EQ(Pass.bufferInfo, 12);
    EXPECT_EQ(Pass.width, 13);
    EXPECT_EQ(Pass.height, 14);
    EXPECT_EQ(Pass.depth, 15);
    EXPECT_EQ(Pass.format, 16);
    EXPECT_EQ(Pass.resume, &FullTarget::resumeNothing);
    EXPECT_EQ(Pass.lock, &FullTarget::lockNothing);
}

class OtherFullTarget : public FullTarget, public testing::WithParamInterface<int32_t> {};

TEST_P(OtherFullTarget, IsCopiedUpToItsReleaseRoutine) {
    const DrawTarget target = fullTarget(GetParam());
    Draw_Begin(&target);
    EXPECT_EQ(Pass.kind, GetParam());
    EXPECT_EQ(Pass.window, reinterpret_cast<HWND>(11));
    EXPECT_EQ(Pass.release, &FullTarget::countRelease);
    EXPECT_EQ(Pass.buffer, nullptr);
    EXPECT_EQ(Pass.bufferInfo, 0);
    EXPECT_EQ(Pass.width, 0);
    EXPECT_EQ(Pass.height, 0);
    EXPECT_EQ(Pass.depth, 0);
    EXPECT_EQ(Pass.format, 0);
    EXPECT_EQ(Pass.resume, nullptr);
    EXPECT_EQ(Pass.lock, nullptr);
}

INSTANTIATE_TEST_SUITE_P(Kinds, OtherFullTarget,
                         testing::Values(DrawTarget_Context, DrawTarget_Bits));

TEST_F(DrawBegin, GivesNothingForANullTarget) {
    EXPECT_EQ(Draw_Begin(nullptr), nullptr);
    EXPECT_EQ(Pass.dc, nullptr);
}

TEST_F(DrawBegin, WithANullTargetEndsTheOpenPass) {
    begin();
    EXPECT_EQ(Draw_Begin(nullptr), nullptr);
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(Pass.dc, nullptr);
}

TEST_F(DrawBegin, EndsTheOpenPassBeforeANewOne) {
    begin();
    HBRUSH first = Pass.brush;
    Canvas other(8, 8);
    const DrawTarget target = targetOf(DrawTarget_Context, other.dc());
    EXPECT_EQ(Draw_Begin(&target), other.dc());
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(GetObjectType(first), 0u) << "the old pass's brush is gone";
    EXPECT_EQ(Pass.kind, DrawTarget_Context);
    Draw_End();
}

TEST_F(DrawBegin, OnATargetWithoutAContextIsAnEmptyPass) {
    Pass.mode = 3;
    const DrawTarget target = targetOf(DrawTarget_Surface, nullptr);
    EXPECT_EQ(Draw_Begin(&target), nullptr);
    EXPECT_EQ(Pass.dc, nullptr);
    EXPECT_EQ(Pass.kind, DrawTarget_Surface);
    EXPECT_EQ(Pass.mode, 0);
    EXPECT_EQ(Pass.dcState, 1);
    EXPECT_EQ(Pass.brush, nullptr);
}

TEST_F(DrawBegin, TakesTheContextOfAWindow) {
    HWND window =
        CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    DrawTarget target = targetOf(DrawTarget_Window);
    target.window = window;
    HDC dc = Draw_Begin(&target);
    EXPECT_NE(dc, nullptr);
    EXPECT_NE(dc, canvas.dc()) << "the target's own context does not count";
    EXPECT_EQ(WindowFromDC(dc), window);
    Draw_End();
    EXPECT_EQ(releases, 0);
    EXPECT_EQ(WindowFromDC(dc), nullptr) << "given back";
    DestroyWindow(window);
}

TEST_F(DrawBegin, ForgetsTheModeOfThePassBefore) {
    begin();
    Draw_SetMode(DrawMode_Invert);
    Draw_End();
    begin();
    EXPECT_EQ(Pass.mode, 0);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_NOT) << "what the context itself holds stands until then";
    Draw_SetMode(0);
    EXPECT_EQ(GetROP2(canvas.dc()), R2_COPYPEN);
}

// --- End ---

using DrawEnd = DrawTest;

TEST_F(DrawEnd, WithoutAPassDoesNothing) {
    Draw_End();
    EXPECT_EQ(releases, 0);
}

TEST_F(DrawEnd, ASecondTimeDoesNothing) {
    begin();
    Draw_End();
    Draw_End();
    EXPECT_EQ(releases, 1);
}

TEST_F(DrawEnd, GivesTheContextItsBrushAndPenBackAndKeepsTheFont) {
    HGDIOBJ brush = SelectObject(canvas.dc(), GetStockObject(GRAY_BRUSH));
    HGDIOBJ pen = SelectObject(canvas.dc(), GetStockObject(WHITE_PEN));
    begin();
    Draw_SetFont(reinterpret_cast<int64_t>(GetStockObject(ANSI_FIXED_FONT)));
    Draw_End();
    EXPECT_EQ(selected(OBJ_BRUSH), GetStockObject(GRAY_BRUSH));
    EXPECT_EQ(selected(OBJ_PEN), GetStockObject(WHITE_PEN));
    EXPECT_EQ(selected(OBJ_FONT), GetStockObject(ANSI_FIXED_FONT));
    SelectObject(canvas.dc(), brush);
    SelectObject(canvas.dc(), pen);
}

TEST_F(DrawEnd, DeletesThePassesBrushAndPenAndNoDefaults) {
    begin();
    HBRUSH brush = Pass.brush;
    HPEN pen = CreatePen(PS_SOLID, 3, red);
    Pass.pen = pen;
    Draw_End();
    EXPECT_EQ(GetObjectType(brush), 0u);
    EXPECT_EQ(GetObjectType(pen), 0u);
    EXPECT_EQ(Pass.brush, nullptr);
    EXPECT_EQ(Pass.pen, nullptr);
    EXPECT_EQ(GetObjectType(Pass.defaultBrush), static_cast<DWORD>(OBJ_BRUSH));
    EXPECT_EQ(GetObjectType(Pass.defaultPen), static_cast<DWORD>(OBJ_PEN));
}

TEST_F(DrawEnd, LeavesNoPass) {
    begin();
    Draw_End();
    EXPECT_EQ(Pass.dc, nullptr);
}

class DrawEndOfKind : public DrawTest, public testing::WithParamInterface<int32_t> {};

TEST_P(DrawEndOfKind, GivesTheContextBackByTheTargetsRoutine) {
    begin(GetParam());
    Draw_End();
    EXPECT_EQ(releases, 1);
    EXPECT_EQ(GetObjectType(canvas.dc()), static_cast<DWORD>(OBJ_MEMDC)) << "not deleted";
}

INSTANTIATE_TEST_SUITE_P(Kinds, DrawEndOfKind, testing::Values(2, 5, 7));

class DrawEndOfHandedOver : public DrawTest, public testing::WithParamInterface<int32_t> {};

TEST_P(DrawEndOfHandedOver, DeletesTheContext) {
    HDC dc = CreateCompatibleDC(nullptr);
    const DrawTarget target = targetOf(GetParam(), dc);
    Draw_Begin(&target);
    Draw_End();
    EXPECT_EQ(releases, 0);
    EXPECT_EQ(GetObjectType(dc), 0u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DrawEndOfHandedOver, testing::Values(-1, 0, 3, 4, 6, 8));

// --- Without a pass ---

using EmptyPass = DrawTest;

TEST_F(EmptyPass, LetsEveryOperationDoNothing) {
    const TestPicture picture(1, {red});
    CallRecorder calls;
    Draw_SetMode(7);
    Draw_SetFont(DrawFont_System);
    Draw_Image(picture.handle(), 0, 0);
    Draw_ImageSized(picture.handle(), 0, 0, 4, 4);
    EXPECT_EQ(Draw_Text(5, 5, "text", white, black), 0);
    Draw_End();
    EXPECT_EQ(calls.take(), std::vector<std::string>());
    EXPECT_EQ(Pass.mode, 0);
    EXPECT_EQ(Pass.font, nullptr);
}

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

// --- Text ---

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

// --- Images ---

class DrawImage : public DrawTest {
protected:
    DrawImage() { begin(); }
    const TestPicture picture{3, {red, green, blue, white, black, red}}; // 3 by 2
};

TEST_F(DrawImage, CoversItsOwnSizeAtThePosition) {
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_EQ(canvas.at(20, 10), red);
    EXPECT_EQ(canvas.at(21, 10), green);
    EXPECT_EQ(canvas.at(22, 10), blue);
    EXPECT_EQ(canvas.at(20, 11), white);
    EXPECT_EQ(canvas.at(21, 11), black);
    EXPECT_EQ(canvas.at(22, 11), red);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 6);
}

TEST_F(DrawImage, ThatRunsOffTheTargetIsCut) {
    Draw_Image(picture.handle(), 62, -1);
    EXPECT_EQ(canvas.at(62, 0), white);
    EXPECT_EQ(canvas.at(63, 0), black);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 2);
}

TEST_F(DrawImage, OfAFailedImageShowsNothing) {
    Draw_Image(0, 20, 10);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48);
}

TEST_F(DrawImage, InInvertingModeErasesToTheInverseOfBoth) {
    Draw_SetMode(DrawMode_Invert);
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_EQ(canvas.at(20, 10), 0xFFFFFF & ~(ground | red));
    EXPECT_EQ(canvas.at(20, 11), black);
    EXPECT_EQ(canvas.at(21, 11), 0xFFFFFF & ~ground);
}

using DrawImageSized = DrawImage;

TEST_F(DrawImageSized, ScalesToTheGivenSize) {
    const TestPicture plain(2, {red, red, red, red});
    Draw_ImageSized(plain.handle(), 5, 6, 7, 9);
    EXPECT_EQ(canvas.count(red, 5, 6, 12, 15), 7 * 9);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 7 * 9);
}

TEST_F(DrawImageSized, WithOneSideOfZeroTakesTheImagesOwnSize) {
    Draw_ImageSized(picture.handle(), 0, 0, 30, 0);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 6);
    Draw_ImageSized(picture.handle(), 0, 0, 0, 30);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 6);
}

TEST_F(DrawImageSized, InTheImagesOwnWidthAloneStillScales) {
    Draw_ImageSized(picture.handle(), 0, 0, 3, 20);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 3 * 20);
    Draw_ImageSized(picture.handle(), 0, 0, 30, 2);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 3 * 20 - 27 * 2);
}

TEST_F(DrawImageSized, OnATargetOfBitsDrawsTheSamePixels) {
    begin(DrawTarget_Bits);
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_EQ(canvas.at(20, 10), red);
    EXPECT_EQ(canvas.at(21, 10), green);
    EXPECT_EQ(canvas.at(22, 10), blue);
    EXPECT_EQ(canvas.at(20, 11), white);
    EXPECT_EQ(canvas.at(22, 11), red);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 6);
}

TEST_F(DrawImageSized, OnATargetOfBitsScalesAndInverts) {
    const TestPicture plain(2, {red, red, red, red});
    begin(DrawTarget_Bits);
    Draw_SetMode(DrawMode_Invert);
    Draw_ImageSized(plain.handle(), 5, 6, 7, 9);
    EXPECT_EQ(canvas.count(0xFFFFFF & ~(ground | red), 5, 6, 12, 15), 7 * 9);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 7 * 9);
}

class DrawIcon : public DrawTest {
protected:
    // 16 by 16, the left half seen through.
    DrawIcon() {
        Canvas mask(16, 16, black);
        mask.fill(0, 0, 8, 16, white);
        Canvas colour(16, 16, black);
        colour.fill(8, 0, 16, 16, green);
        ICONINFO info{};
        info.fIcon = TRUE;
        info.hbmMask = static_cast<HBITMAP>(GetCurrentObject(mask.dc(), OBJ_BITMAP));
        info.hbmColor = static_cast<HBITMAP>(GetCurrentObject(colour.dc(), OBJ_BITMAP));
        icon = CreateIconIndirect(&info);
        begin();
    }
    ~DrawIcon() override { DestroyIcon(icon); }

    int64_t handle() const { return reinterpret_cast<int64_t>(icon); }
    HICON icon;
};

TEST_F(DrawIcon, ShowsItAtItsOwnSizeThroughItsMask) {
    Draw_Image(handle(), 20, 10);
    EXPECT_EQ(canvas.count(green, 28, 10, 36, 26), 8 * 16);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 8 * 16);
}

TEST_F(DrawIcon, ScalesItToTheGivenSize) {
    Draw_ImageSized(handle(), 20, 10, 32, 8);
    EXPECT_EQ(canvas.count(green, 36, 10, 52, 18), 16 * 8);
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48 - 16 * 8);
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
    static HDC giveResumed() { return resumed; }
    static inline HDC resumed = nullptr;
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
