#include "display/draw.h"

#include "display/draw_state.h"
#include "display/draw_target.h"
#include "tests/support/draw_fixture.h"

#include <cstddef>
#include <cstring>

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF green = 0x00FF00;
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
    HDC dc = static_cast<HDC>(Draw_Begin(&target));
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

} // namespace
