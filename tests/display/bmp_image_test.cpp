#include "display/image.h"

#include "tests/support/image_fixture.h"

#include <cstring>

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF green = 0x00FF00;
constexpr COLORREF blue = 0xFF0000;
constexpr COLORREF white = 0xFFFFFF;

void expectSmallPicture(HBITMAP bitmap) {
    const Canvas picture(bitmap);
    EXPECT_EQ(picture.at(0, 0), red);
    EXPECT_EQ(picture.at(1, 0), green);
    EXPECT_EQ(picture.at(2, 0), blue);
    EXPECT_EQ(picture.at(0, 1), white);
    EXPECT_EQ(picture.at(1, 1), 0u);
    EXPECT_EQ(picture.at(2, 1), red);
}

using BmpImage = ImageTest;

TEST_F(BmpImage, IsA32BitSectionInTheFilesRowOrder) {
    const int64_t handle = Image_FromMemory(0, smallBmp().data());
    DIBSECTION section{};
    ASSERT_EQ(GetObjectA(bitmapOf(handle), sizeof section, &section),
              static_cast<int>(sizeof section));
    EXPECT_EQ(section.dsBm.bmWidth, 3);
    EXPECT_EQ(section.dsBm.bmHeight, 2);
    EXPECT_EQ(section.dsBm.bmBitsPixel, 32);
    EXPECT_EQ(section.dsBmih.biHeight, 2) << "from the bottom up";
    expectSmallPicture(bitmapOf(handle));
}

TEST_F(BmpImage, TellsItsSizeAndDepth) {
    Image_FromMemory(0, smallBmp().data());
    EXPECT_EQ(Image_Width(0), 3);
    EXPECT_EQ(Image_Height(0), 2);
    EXPECT_EQ(Image_Depth(0), 32);
}

TEST_F(BmpImage, IsMadeCallByCall) {
    CallRecorder calls;
    Image_FromMemory(0, smallBmp().data());
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateDIBSection(dc1, {40, 3, 2, 1, 32, 0}, 0, &*, null, 0) -> bitmap1
        DeleteDC(dc1) -> 1
        CreateCompatibleDC(null) -> dc1
        SetDIBits(dc1, bitmap1, 0, 2, *, {40, 3, 2, 1, 24, 0}, 0) -> 2
        DeleteDC(dc1) -> 1
        GetObjectA(bitmap1, 32, *) -> 32
    )"));
    EXPECT_EQ(calls.live("dc"), 0u);
}

TEST_F(BmpImage, TakesItsRowsFromWhereTheFileSays) {
    for (const uint32_t gap : {300, 70000}) {
        BmpFile file{.width = 1, .height = 1, .rows = {255, 0, 0, 0}, .gap = gap};
        const int64_t handle = Image_FromMemory(0, file.build().data());
        EXPECT_EQ(Canvas(bitmapOf(handle)).at(0, 0), blue) << gap;
    }
}

TEST_F(BmpImage, TakesTheOffsetOfItsRowsWithoutASign) {
    std::vector<uint8_t> file = smallBmp();
    const uint32_t farAway = 0xFFFFFFF0;
    memcpy(&file[10], &farAway, sizeof farAway);
    uint64_t rows = 0;
    CallRecorder calls;
    calls.replace<hook::SetDIBits>(
        [&rows](HDC, HBITMAP, UINT, UINT lines, const void* bits, const BITMAPINFO*, UINT) {
            rows = reinterpret_cast<uint64_t>(bits);
            return static_cast<int>(lines);
        });
    Image_FromMemory(0, file.data());
    EXPECT_EQ(rows - reinterpret_cast<uint64_t>(file.data()), farAway);
}

TEST_F(BmpImage, OfEightBitsTakesItsColoursFromTheTable) {
    BmpFile file{.width = 4,
                 .height = 1,
                 .bits = 8,
                 .palette = {0x000000, 0xFF0000, 0x00FF00, 0x123456},
                 .rows = {3, 1, 2, 0}};
    const int64_t handle = Image_FromMemory(0, file.build().data());
    EXPECT_EQ(Image_Depth(0), 32);
    const Canvas picture(bitmapOf(handle));
    EXPECT_EQ(picture.at(0, 0), 0x563412u);
    EXPECT_EQ(picture.at(1, 0), red);
    EXPECT_EQ(picture.at(2, 0), green);
    EXPECT_EQ(picture.at(3, 0), 0u);
}

TEST_F(BmpImage, OfANegativeHeightGoesToBothCallsAsItStands) {
    BmpFile file{.width = 1, .height = -2, .rows = {255, 0, 0, 0, 0, 0, 255, 0}};
    CallRecorder calls;
    calls.only({"CreateDIBSection", "SetDIBits"});
    Image_FromMemory(0, file.build().data());
    EXPECT_TRUE(calls.match(R"(
        CreateDIBSection(*, {40, 1, -2, 1, 32, 0}, 0, *, null, 0)
        SetDIBits(*, bitmap1, 0, 0xFFFFFFFE, *, {40, 1, -2, 1, 24, 0}, 0)
    )"));
}

TEST_F(BmpImage, WiderThanSixteenBitsReadsBackNegative) {
    const std::vector<uint32_t> colours = {0, 0xFFFFFF};
    const auto load = [&](int32_t width, int32_t height, size_t bytes) {
        const BmpFile file{.width = width,
                           .height = height,
                           .bits = 1,
                           .palette = colours,
                           .rows = std::vector<uint8_t>(bytes)};
        Image_FromMemory(0, file.build().data());
    };
    load(32767, 1, 4096);
    EXPECT_EQ(Image_Width(0), 32767);
    load(32768, 1, 4096);
    EXPECT_EQ(Image_Width(0), -32768);
    load(1, 32767, 4 * 32767);
    EXPECT_EQ(Image_Height(0), 32767);
    load(1, 32769, 4 * 32769);
    EXPECT_EQ(Image_Height(0), -32767);
}

TEST_F(BmpImage, WiderThanSixteenBitsIsMadeAsWideAsItIs) {
    const BmpFile file{.width = 65537,
                       .height = 1,
                       .bits = 1,
                       .palette = {0, 0xFFFFFF},
                       .rows = std::vector<uint8_t>(8196)};
    CallRecorder calls;
    calls.only({"CreateDIBSection"});
    Image_FromMemory(0, file.build().data());
    EXPECT_TRUE(calls.match("CreateDIBSection(*, {40, 65537, 1, 1, 32, 0}, 0, *, null, 0)"));
}

TEST_F(BmpImage, InTheDisplaysFormIsACompatibleBitmap) {
    CallRecorder calls;
    const int64_t handle = Image_Load(0, smallBmp().data(), 0, 0x80);
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateCompatibleBitmap(dc1, 3, 2) -> bitmap1
        DeleteDC(dc1)
        CreateCompatibleDC(null) -> dc1
        SetDIBits(dc1, bitmap1, 0, 2, *, {40, 3, 2, 1, 24, 0}, 0)
        DeleteDC(dc1)
        GetObjectA(bitmap1, 32, *)
    )"));
    DIBSECTION section{};
    EXPECT_EQ(GetObjectA(bitmapOf(handle), sizeof section, &section),
              static_cast<int>(sizeof(BITMAP)))
        << "not a section";
    expectSmallPicture(bitmapOf(handle));
}

TEST_F(BmpImage, HeedsNoOtherFlag) {
    CallRecorder calls;
    calls.only({"CreateDIBSection", "CreateCompatibleBitmap"});
    const ObjectId id = Image_Load(ObjectId_Any, smallBmp().data(), 0, ~0x80);
    EXPECT_TRUE(calls.match("CreateDIBSection(*)"));
    EXPECT_EQ(reinterpret_cast<ImageObject*>(id)->flags, 0x7F);
}

TEST_F(BmpImage, KeepsItsFlags) {
    const ObjectId plain = Image_FromMemory(ObjectId_Any, smallBmp().data());
    const ObjectId native = Image_Load(ObjectId_Any, smallBmp().data(), 0, 0x80);
    EXPECT_EQ(reinterpret_cast<ImageObject*>(plain)->flags, 0);
    EXPECT_EQ(reinterpret_cast<ImageObject*>(native)->flags, 0x80);
}

TEST_F(BmpImage, WithoutADisplayContextIsNotMade) {
    CallRecorder calls;
    calls.fail("CreateDCA", 1, 0);
    EXPECT_EQ(Image_FromMemory(0, smallBmp().data()), 0);
    EXPECT_TRUE(calls.match(R"(CreateDCA("DISPLAY", null, null, null) -> null)"));
    EXPECT_EQ(Image_Handle(0), 0);
}

TEST_F(BmpImage, WithoutASectionIsNotMade) {
    CallRecorder calls;
    calls.fail("CreateDIBSection", 1, 0);
    EXPECT_EQ(Image_FromMemory(0, smallBmp().data()), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateDIBSection(*) -> null
        DeleteDC(dc1) -> 1
    )"));
    EXPECT_EQ(Image_Handle(0), 0);
}

TEST_F(BmpImage, ThatFailsIsNotShownToDecoders) {
    watchDecoders();
    CallRecorder calls;
    calls.fail("CreateDCA", 1, 0);
    Image_FromMemory(0, smallBmp().data());
    EXPECT_EQ(checks, 0);
}

TEST_F(BmpImage, StaysBlankWhenItsPixelsCannotBeSet) {
    CallRecorder calls;
    calls.fail("SetDIBits", 1, 0);
    const int64_t handle = Image_FromMemory(0, smallBmp().data());
    EXPECT_NE(handle, 0);
    EXPECT_EQ(calls.live("dc"), 0u);
    EXPECT_EQ(Image_Width(0), 3);
    EXPECT_EQ(Canvas(bitmapOf(handle)).count(0, 0, 0, 3, 2), 6);
}

TEST_F(BmpImage, StaysBlankWithoutAMemoryContext) {
    CallRecorder calls;
    calls.fail("CreateCompatibleDC", 1, 0);
    const int64_t handle = Image_FromMemory(0, smallBmp().data());
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateDIBSection(*) -> bitmap1
        DeleteDC(dc1)
        CreateCompatibleDC(null) -> null
        GetObjectA(bitmap1, 32, *)
    )"));
    EXPECT_EQ(Image_Handle(0), handle);
    EXPECT_EQ(Image_Height(0), 2);
}

} // namespace
