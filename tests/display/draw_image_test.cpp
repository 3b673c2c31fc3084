#include "display/draw.h"

#include "display/draw_target.h"
#include "tests/support/draw_fixture.h"

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF green = 0x00FF00;
constexpr COLORREF blue = 0xFF0000;
constexpr COLORREF white = 0xFFFFFF;
constexpr COLORREF black = 0;

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

} // namespace
