#include "display/draw.h"

#include "display/packed_dib.h"
#include "tests/support/draw_fixture.h"

#include <cstring>

namespace {

constexpr COLORREF red = 0x0000FF;
constexpr COLORREF green = 0x00FF00;
constexpr COLORREF blue = 0xFF0000;

// The packed bitmap of a picture, freed at the end.
class Packed {
public:
    explicit Packed(HBITMAP picture, HPALETTE palette = nullptr)
        : block(Bitmap_ToPackedDib(picture, palette)) {}
    ~Packed() {
        if (block)
            GlobalFree(block);
    }
    Packed(const Packed&) = delete;
    Packed& operator=(const Packed&) = delete;

    bool isThere() const { return block != nullptr; }
    SIZE_T size() const { return GlobalSize(block); }
    const BITMAPINFOHEADER& header() const { return *static_cast<BITMAPINFOHEADER*>(block); }
    std::vector<uint8_t> rows(size_t bytes) const {
        const auto* first = static_cast<const uint8_t*>(block) + 40;
        return {first, first + bytes};
    }

private:
    HGLOBAL block;
};

TEST(PackedDib, BeginsWithAHeaderOfTheBitmapsSize) {
    const TestPicture picture(3, {red, green, blue, 0, 0, 0});
    const Packed packed(picture.gdi());
    BITMAPINFOHEADER expected{};
    expected.biSize = 40;
    expected.biWidth = 3;
    expected.biHeight = 2;
    expected.biPlanes = 1;
    expected.biBitCount = 24;
    BITMAPINFOHEADER header = packed.header();
    header.biSizeImage = 0; // GDI may fill it in
    EXPECT_EQ(memcmp(&header, &expected, sizeof expected), 0);
}

TEST(PackedDib, HoldsTheRowsFromTheBottomUpAndPadded) {
    const TestPicture picture(3, {red, green, blue, 0x030201, 0x060504, 0x090807});
    const Packed packed(picture.gdi());
    EXPECT_EQ(packed.rows(24), (std::vector<uint8_t>{3, 2, 1,   6, 5,   4, 9,   8, 7, 0, 0, 0, //
                                                     0, 0, 255, 0, 255, 0, 255, 0, 0, 0, 0, 0}));
}

struct DibSize {
    int width;
    int height;
    uint64_t bytes;
};

void PrintTo(const DibSize& size, std::ostream* out) { *out << size.width << " x " << size.height; }

class PackedDibSize : public testing::TestWithParam<DibSize> {};

TEST_P(PackedDibSize, IsHeaderAndPaddedRows) {
    const auto [width, height, bytes] = GetParam();
    const TestPicture picture(width, std::vector<COLORREF>(static_cast<size_t>(width * height)));
    CallRecorder calls;
    calls.only({"GlobalAlloc"});
    const Packed packed(picture.gdi());
    EXPECT_TRUE(calls.match("GlobalAlloc(0x40, " + std::to_string(bytes) + ")"));
}

INSTANTIATE_TEST_SUITE_P(Sizes, PackedDibSize,
                         testing::Values(DibSize{1, 1, 40 + 4}, DibSize{2, 3, 40 + 8 * 3},
                                         DibSize{3, 1, 40 + 12}, DibSize{4, 2, 40 + 12 * 2},
                                         DibSize{5, 1, 40 + 16}, DibSize{8, 5, 40 + 24 * 5},
                                         DibSize{11, 1, 40 + 36}));

TEST(PackedDib, IsNothingForWhatIsNoBitmap) {
    CallRecorder calls;
    HBRUSH brush = CreateSolidBrush(0);
    calls.take();
    EXPECT_FALSE(Packed(reinterpret_cast<HBITMAP>(brush)).isThere());
    EXPECT_FALSE(Packed(nullptr).isThere());
    EXPECT_TRUE(calls.match("GetObjectA(brush1, 32, *)\n GetObjectA(null, 32, *) -> 0"));
    DeleteObject(brush);
}

TEST(PackedDib, IsNothingWithoutMemory) {
    const TestPicture picture(1, {red});
    CallRecorder calls;
    calls.name(picture.gdi(), "picture");
    calls.fail("GlobalAlloc", 1, 0);
    EXPECT_FALSE(Packed(picture.gdi()).isThere());
    EXPECT_TRUE(calls.match("GetObjectA(picture, 32, *)\n GlobalAlloc(0x40, 44) -> null"));
}

TEST(PackedDib, IsNothingWhenTheRowsCannotBeRead) {
    const TestPicture picture(1, {red});
    CallRecorder calls;
    calls.fail("GetDIBits", 1, 0);
    EXPECT_FALSE(Packed(picture.gdi()).isThere());
    EXPECT_EQ(calls.live("global"), 0u);
    EXPECT_EQ(calls.live("dc"), 0u);
}

TEST(PackedDib, IsReadWithAContextOnTheScreen) {
    const TestPicture picture(3, {red, green, blue, 0, 0, 0});
    CallRecorder calls;
    calls.name(picture.gdi(), "picture");
    const Packed packed(picture.gdi());
    EXPECT_TRUE(calls.match(R"(
        GetObjectA(picture, 32, *) -> 32
        GlobalAlloc(0x40, 64) -> global1
        GetDC(null) -> dc1
        GetDIBits(dc1, picture, 0, 2, *, *, 0) -> *
        ReleaseDC(null, dc1)
    )"));
}

TEST(PackedDib, IsReadUnderAPaletteWhereOneIsGiven) {
    LOGPALETTE colours{};
    colours.palVersion = 0x300;
    colours.palNumEntries = 1;
    HPALETTE palette = CreatePalette(&colours);
    const TestPicture picture(1, {red});
    CallRecorder calls;
    calls.name(palette, "given");
    calls.name(GetStockObject(DEFAULT_PALETTE), "usual");
    const Packed packed(picture.gdi(), palette);
    EXPECT_TRUE(calls.match(R"(
        ...
        GetDC(null) -> dc1
        SelectPalette(dc1, given, 1) -> usual
        RealizePalette(dc1)
        GetDIBits(dc1, *)
        SelectPalette(dc1, usual, 1) -> given
        RealizePalette(dc1)
        ReleaseDC(null, dc1)
    )"));
    EXPECT_TRUE(packed.isThere());
    DeleteObject(palette);
}

} // namespace
