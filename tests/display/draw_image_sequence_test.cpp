#include "display/draw.h"

#include "display/draw_target.h"
#include "tests/support/draw_fixture.h"

namespace {

class ImageSequence : public DrawSequence {
protected:
    ImageSequence() { calls.name(picture.gdi(), "picture"); }
    const TestPicture picture{3, {1, 2, 3, 4, 5, 6}}; // 3 by 2
};

TEST_F(ImageSequence, AnImageIsCopiedAtItsOwnSize) {
    beginUnseen();
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(picture) -> 7
        CreateCompatibleDC(dc) -> dc1
        GetObjectA(picture, 32, *) -> 32
        SelectObject(dc1, picture)
        BitBlt(dc, 20, 10, 3, 2, dc1, 0, 0, 0xCC0020) -> 1
        DeleteDC(dc1) -> 1
    )"));
    EXPECT_EQ(calls.live("dc"), 0u);
}

TEST_F(ImageSequence, AnImageInvertsInTheInvertingMode) {
    beginUnseen();
    Draw_SetMode(DrawMode_Invert);
    calls.take();
    Draw_Image(picture.handle(), 20, 10);
    Draw_ImageSized(picture.handle(), 20, 10, 6, 4);
    EXPECT_TRUE(calls.match(R"(
        ...
        BitBlt(dc, 20, 10, 3, 2, dc1, 0, 0, 0x1100A6) -> 1
        ...
        StretchBlt(dc, 20, 10, 6, 4, dc1, 0, 0, 3, 2, 0x1100A6) -> 1
        DeleteDC(dc1)
    )"));
}

TEST_F(ImageSequence, OtherModeBitsLeaveImagesAlone) {
    beginUnseen();
    Draw_SetMode(DrawMode_Transparent | DrawMode_Unfilled);
    calls.take();
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_TRUE(calls.match("...\n BitBlt(dc, 20, 10, 3, 2, dc1, 0, 0, 0xCC0020)\n DeleteDC(dc1)"));
}

TEST_F(ImageSequence, ItsOwnSizeGivenInFullIsCopied) {
    beginUnseen();
    Draw_ImageSized(picture.handle(), 20, 10, 3, 2);
    EXPECT_TRUE(calls.match("...\n BitBlt(dc, 20, 10, 3, 2, dc1, 0, 0, 0xCC0020)\n DeleteDC(dc1)"));
}

struct SizedCall {
    int32_t width;
    int32_t height;
    const char* expected;
};

void PrintTo(const SizedCall& size, std::ostream* out) {
    *out << size.width << " x " << size.height;
}

class SizedSequence : public ImageSequence, public testing::WithParamInterface<SizedCall> {};

TEST_P(SizedSequence, IsCopiedOrStretched) {
    beginUnseen();
    Draw_ImageSized(picture.handle(), 20, 10, GetParam().width, GetParam().height);
    EXPECT_TRUE(calls.match(std::string(R"(
        GetObjectType(picture) -> 7
        CreateCompatibleDC(dc) -> dc1
        GetObjectA(picture, 32, *) -> 32
        SelectObject(dc1, picture)
        )") + GetParam().expected +
                            R"(
        DeleteDC(dc1) -> 1
    )"));
}

const SizedCall sizes[] = {
    {9, 0, "BitBlt(dc, 20, 10, 3, 2, dc1, 0, 0, 0xCC0020)"},
    {0, 9, "BitBlt(dc, 20, 10, 3, 2, dc1, 0, 0, 0xCC0020)"},
    {3, 9, "SetStretchBltMode(dc, 4)\n StretchBlt(dc, 20, 10, 3, 9, dc1, 0, 0, 3, 2, 0xCC0020)"},
    {9, 2, "SetStretchBltMode(dc, 4)\n StretchBlt(dc, 20, 10, 9, 2, dc1, 0, 0, 3, 2, 0xCC0020)"},
    {6, 4, "SetStretchBltMode(dc, 4)\n StretchBlt(dc, 20, 10, 6, 4, dc1, 0, 0, 3, 2, 0xCC0020)"},
};

INSTANTIATE_TEST_SUITE_P(Sizes, SizedSequence, testing::ValuesIn(sizes));

TEST_F(ImageSequence, WithoutAMemoryContextNothingIsDrawn) {
    beginUnseen();
    calls.fail("CreateCompatibleDC", 1, 0);
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_TRUE(calls.match("GetObjectType(picture)\n CreateCompatibleDC(dc) -> null"));
}

// More, because the system adds the size of the pixels to the header.
TEST_F(ImageSequence, ATargetOfBitsTakesAPackedBitmap) {
    beginUnseen(DrawTarget_Bits);
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(picture) -> 7
        CreateCompatibleDC(dc) -> dc1
        GetObjectA(picture, 32, *) -> 32
        GetObjectA(picture, 32, *) -> 32
        GlobalAlloc(0x40, 64) -> global1
        GetDC(null) -> dc2
        GetDIBits(dc2, picture, 0, 2, *)
        ReleaseDC(null, dc2)
        SetStretchBltMode(dc, 3)
        StretchDIBits(dc, 20, 10, 3, 2, 0, 0, 3, 2, *, {40, 3, 2, 1, 24, 0, and more}, 0, 0xCC0020)
        GlobalFree(global1) -> null
        DeleteDC(dc1) -> 1
    )"));
    EXPECT_EQ(calls.live("global"), 0u);
}

TEST_F(ImageSequence, ATargetOfBitsScalesAndInverts) {
    beginUnseen(DrawTarget_Bits);
    Draw_SetMode(DrawMode_Invert);
    calls.take();
    Draw_ImageSized(picture.handle(), 20, 10, 6, 5);
    EXPECT_TRUE(calls.match(R"(
        ...
        SetStretchBltMode(dc, 3)
        StretchDIBits(dc, 20, 10, 6, 5, 0, 0, 3, 2, *, {40, 3, 2, 1, 24, 0, and more}, 0, 0x1100A6)
        GlobalFree(global1)
        DeleteDC(dc1)
    )"));
}

TEST_F(ImageSequence, ATargetOfBitsWithoutAPackedBitmapGetsNothing) {
    beginUnseen(DrawTarget_Bits);
    calls.fail("GetDIBits", 1, 0);
    Draw_Image(picture.handle(), 20, 10);
    EXPECT_TRUE(calls.match(R"(
        ...
        ReleaseDC(null, dc2)
        GlobalFree(global1)
        DeleteDC(dc1) -> 1
    )"));
    EXPECT_EQ(canvas.count(ground, 0, 0, 64, 48), 64 * 48);
}

// No result of a drawing call is looked at: the calls behind one that fails are the same.
struct IgnoredCall {
    const char* call;
    int32_t target;
};

void PrintTo(const IgnoredCall& ignored, std::ostream* out) {
    *out << ignored.call << ", target " << ignored.target;
}

class IgnoredSequence : public ImageSequence, public testing::WithParamInterface<IgnoredCall> {
protected:
    std::vector<std::string> drawnCalls() {
        calls.take();
        Draw_ImageSized(picture.handle(), 20, 10, 6, 5);
        std::vector<std::string> names = calls.take();
        for (std::string& line : names)
            line.resize(line.find('('));
        return names;
    }
};

TEST_P(IgnoredSequence, GoesOnAsIfTheCallHadSucceeded) {
    beginUnseen(GetParam().target);
    const std::vector<std::string> unharmed = drawnCalls();
    calls.fail(GetParam().call, 1, 0);
    EXPECT_EQ(drawnCalls(), unharmed);
    EXPECT_GE(calls.uses(GetParam().call), 2) << "the call was there to fail";
}

const IgnoredCall ignoredCalls[] = {
    {"SelectObject", DrawTarget_Surface}, {"SetStretchBltMode", DrawTarget_Surface},
    {"StretchBlt", DrawTarget_Surface},   {"DeleteDC", DrawTarget_Surface},
    {"ReleaseDC", DrawTarget_Bits},       {"SetStretchBltMode", DrawTarget_Bits},
    {"StretchDIBits", DrawTarget_Bits},   {"DeleteDC", DrawTarget_Bits},
};

INSTANTIATE_TEST_SUITE_P(Calls, IgnoredSequence, testing::ValuesIn(ignoredCalls));

TEST_F(ImageSequence, WhatIsNoBitmapIsDrawnAsAnIcon) {
    HICON icon = LoadIconA(nullptr, reinterpret_cast<LPCSTR>(IDI_APPLICATION));
    calls.name(icon, "picture2");
    beginUnseen();
    Draw_Image(reinterpret_cast<int64_t>(icon), 20, 10);
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(picture2) -> 0
        DrawIconEx(dc, 20, 10, picture2, 0, 0, 0, null, 3) -> 1
    )"));
    Draw_ImageSized(reinterpret_cast<int64_t>(icon), 1, 2, 33, 44);
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(picture2) -> 0
        DrawIconEx(dc, 1, 2, picture2, 33, 44, 0, null, 3) -> 1
    )"));
}

TEST_F(ImageSequence, AFailedImageGoesTheIconsWay) {
    beginUnseen();
    Draw_Image(0, 20, 10);
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(null) -> 0
        DrawIconEx(dc, 20, 10, null, 0, 0, 0, null, 3) -> 0
    )"));
}

} // namespace
