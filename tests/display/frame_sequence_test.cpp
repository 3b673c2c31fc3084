#include "display/frame.h"

#include "display/draw.h"
#include "display/draw_state.h"
#include "display/frame_target.h"
#include "tests/support/screen_fixture.h"

namespace {

constexpr COLORREF white = 0xFFFFFF;

class FrameSequence : public OpenScreenTest {
protected:
    FrameSequence() {
        Draw_SubsystemInit();
        calls.name(Pass.defaultBrush, "defaultBrush");
        calls.name(Pass.defaultPen, "defaultPen");
        calls.take();
    }
    ~FrameSequence() override { Draw_End(); }
};

// --- Clear and target ---

TEST_F(FrameSequence, ClearIsOneFillWithoutAWait) {
    Screen_Clear(0x0000FF);
    const std::string size = std::to_string(sizeof(DDBLTFX));
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::Blt(back, null, null, null, 0x400, {" + size +
                            ", fill 0xF800}) -> 0"));
}

TEST_F(FrameSequence, BackBufferTakesOneContext) {
    Screen_BackBuffer();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::GetDC(back, &dc1) -> 0"));
    Screen_BackBuffer();
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FrameSequence, BackBufferThatFailsTriesOnce) {
    devices.ddraw.loseSurfaces();
    EXPECT_EQ(Screen_BackBuffer(), nullptr);
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::GetDC(back, *) -> 0x887601C2"));
}

// --- A whole frame ---

TEST_F(FrameSequence, AFrameIsOneFillOneContextAndOneFlip) {
    Screen_Clear(0);
    Draw_Begin(Screen_BackBuffer());
    Draw_SetMode(0);
    Draw_Text(3, 4, "row", white, 0);
    Draw_End();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Blt(back, null, null, null, 0x400, {*, fill 0}) -> 0
        IDirectDrawSurface7::GetDC(back, &dc1) -> 0
        SetTextAlign(dc1, 1)
        SelectObject(dc1, defaultBrush) -> old1
        SelectObject(dc1, defaultPen) -> old2
        CreateSolidBrush(0) -> brush1
        SetTextColor(dc1, 0)
        SetROP2(dc1, 13)
        SelectObject(dc1, brush1) -> defaultBrush
        SetBkMode(dc1, 2)
        SetTextColor(dc1, 0xFFFFFF)
        SetBkColor(dc1, 0)
        MoveToEx(dc1, 3, 4, null)
        TextOutA(dc1, 0, 0, "row", 3)
        SetBkColor(dc1, 0xFFFFFF)
        SetTextColor(dc1, 0)
        MoveToEx(dc1, 0, 0, &{*, 4})
        SelectObject(dc1, old1) -> brush1
        SelectObject(dc1, old2) -> defaultPen
        DeleteObject(brush1) -> 1
        IDirectDrawSurface7::ReleaseDC(back, dc1) -> 0
        PeekMessageA(*, null, 0, 0, 1) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(FrameSequence, TheSameFrameRunsTheSameCalls) {
    const auto frame = [this] {
        Screen_Clear(0);
        Draw_Begin(Screen_BackBuffer());
        Draw_SetMode(0);
        Draw_Text(3, 4, "row", white, 0);
        Draw_End();
        Screen_Flip();
        return calls.take();
    };
    const std::vector<std::string> first = frame();
    EXPECT_EQ(frame(), first);
    EXPECT_EQ(frame(), first);
}

TEST_F(FrameSequence, AFlipEndsDrawingThatWasLeftOpen) {
    Draw_Begin(Screen_BackBuffer());
    calls.take();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::ReleaseDC(back, dc1) -> 0
        PeekMessageA(*) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(FrameSequence, AFlipUnlocksWhatWasLeftLocked) {
    int32_t pitch = 0;
    Screen_BackBuffer();
    Screen_LockPixels(&pitch);
    calls.take();
    Screen_Flip();
    EXPECT_TRUE(calls.match(R"(
        IDirectDrawSurface7::Unlock(back, null) -> 0
        PeekMessageA(*) -> 0
        IDirectDrawSurface7::Flip(primary, null, 1) -> 0
    )"));
}

TEST_F(FrameSequence, AnEmptyPassDrawsNothing) {
    calls.fail("IDirectDrawSurface7::GetDC", 1, DDERR_SURFACELOST);
    Draw_Begin(Screen_BackBuffer());
    Draw_SetMode(0);
    Draw_SetFont(DrawFont_System);
    Draw_Text(3, 4, "row", white, 0);
    Draw_Image(5, 0, 0);
    Draw_End();
    EXPECT_TRUE(calls.match("IDirectDrawSurface7::GetDC(back, *)"));
}

} // namespace
