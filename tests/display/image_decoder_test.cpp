#include "display/image_decoder.h"

#include "display/image_bitmap.h"
#include "display/image_decoder_state.h"
#include "tests/support/canvas.h"
#include "tests/support/runtime_fixture.h"

#include <cstddef>

namespace {

constexpr int displayForm = 0x80;

class ImageDecoderTest : public RuntimeTest {
protected:
    ImageDecoderTest() {
        order.clear();
        pixelsGiven = nullptr;
        Image_DecoderInit();
    }
    ~ImageDecoderTest() override { Image_DecoderInit(); }

    template <int number, int32_t result>
    static int32_t check(void* stream, const void* data, int64_t length) {
        order += std::to_string(number);
        EXPECT_EQ(stream, nullptr);
        EXPECT_EQ(data, &order);
        EXPECT_EQ(length, 1234);
        return result;
    }

    // Paints the first row blue, the second one red.
    static void decode(void* pixels, int32_t pitch, int32_t reserved) {
        pixelsGiven = pixels;
        pitchGiven = pitch;
        EXPECT_EQ(reserved, 0);
        auto* bytes = static_cast<uint8_t*>(pixels);
        memset(bytes, 0, static_cast<size_t>(pitch * pictureHeight));
        for (int x = 0; x < pictureWidth; ++x) {
            bytes[x * bytesPerPixel] = 0xFF;
            bytes[pitch + x * bytesPerPixel + 2] = 0xFF;
        }
    }

    // Makes a picture of that size the current decoder's.
    void choose(int32_t format, int32_t width, int32_t height) {
        bytesPerPixel = format == DecoderFormat_32Bit ? 4 : 3;
        pictureWidth = width;
        pictureHeight = height;
        decoder = {nullptr, decode, [] { return pictureWidth; }, [] { return pictureHeight; }};
        ImageDecoders.current = &decoder;
    }

    static void expectRows(HBITMAP bitmap) {
        const Canvas picture(bitmap);
        EXPECT_EQ(picture.count(0xFF0000, 0, 0, pictureWidth, 1), pictureWidth);
        EXPECT_EQ(picture.count(0x0000FF, 0, 1, pictureWidth, 2), pictureWidth);
    }

    static inline std::string order;
    static inline int32_t pictureWidth = 0;
    static inline int32_t pictureHeight = 0;
    static inline int bytesPerPixel = 0;
    static inline void* pixelsGiven = nullptr;
    static inline int32_t pitchGiven = 0;
    ImageDecoder decoder{};
};

// --- The list ---

TEST(ImageDecoderRecord, HasItsRoutinesInOrder) {
    EXPECT_EQ(offsetof(ImageDecoder, check), 0u);
    EXPECT_EQ(offsetof(ImageDecoder, decode), 8u);
    EXPECT_EQ(offsetof(ImageDecoder, width), 16u);
    EXPECT_EQ(offsetof(ImageDecoder, height), 24u);
}

TEST_F(ImageDecoderTest, InitEmptiesTheList) {
    ImageDecoders.decoders[0].check = check<0, 1>;
    ImageDecoders.count = 1;
    ImageDecoders.current = &ImageDecoders.decoders[0];
    Image_DecoderInit();
    EXPECT_EQ(ImageDecoders.count, 0);
    EXPECT_EQ(ImageDecoders.current, nullptr);
    EXPECT_EQ(Image_PickDecoder(1234, &order), 0);
    EXPECT_EQ(order, "");
}

// --- Picking ---

TEST_F(ImageDecoderTest, TheFirstThatKnowsTheDataBecomesCurrent) {
    ImageDecoders.decoders[0].check = check<0, 0>;
    ImageDecoders.decoders[1].check = check<1, 7>;
    ImageDecoders.decoders[2].check = check<2, 2>;
    ImageDecoders.count = 3;
    EXPECT_EQ(Image_PickDecoder(1234, &order), 7);
    EXPECT_EQ(ImageDecoders.current, &ImageDecoders.decoders[1]);
    EXPECT_EQ(order, "01");
}

TEST_F(ImageDecoderTest, NoneIsPickedWhereNoneKnowsTheData) {
    ImageDecoders.decoders[0].check = check<0, 0>;
    ImageDecoders.decoders[1].check = check<1, 0>;
    ImageDecoders.decoders[2].check = check<2, 5>;
    ImageDecoders.count = 2;
    EXPECT_EQ(Image_PickDecoder(1234, &order), 0);
    EXPECT_EQ(ImageDecoders.current, nullptr);
    EXPECT_EQ(order, "01") << "and none behind the count is asked";
}

TEST_F(ImageDecoderTest, ANegativeFormatIsAnAnswerToo) {
    ImageDecoders.decoders[0].check = check<0, -1>;
    ImageDecoders.count = 1;
    EXPECT_EQ(Image_PickDecoder(1234, &order), -1);
    EXPECT_EQ(ImageDecoders.current, &ImageDecoders.decoders[0]);
}

// --- A section ---

TEST_F(ImageDecoderTest, FormatTwoHasRowsOfFourBytesAPixel) {
    choose(2, 5, 3);
    CallRecorder calls;
    HBITMAP bitmap = Image_DecodeToBitmap(2, 0);
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateDIBSection(dc1, {40, 5, -3, 1, 32, 0}, 0, &*, null, 0) -> bitmap1
        DeleteDC(dc1) -> 1
    )"));
    EXPECT_EQ(pitchGiven, 20);
    expectRows(bitmap);
    DeleteObject(bitmap);
}

class OtherDecoderFormat : public ImageDecoderTest, public testing::WithParamInterface<int32_t> {};

TEST_P(OtherDecoderFormat, HasPaddedRowsOfThreeBytesAPixel) {
    choose(GetParam(), 5, 3);
    CallRecorder calls;
    HBITMAP bitmap = Image_DecodeToBitmap(GetParam(), 0);
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateDIBSection(dc1, {40, 5, -3, 1, 24, 0}, 0, &*, null, 0) -> bitmap1
        DeleteDC(dc1) -> 1
    )"));
    EXPECT_EQ(pitchGiven, 16);
    expectRows(bitmap);
    DeleteObject(bitmap);
}

INSTANTIATE_TEST_SUITE_P(Formats, OtherDecoderFormat, testing::Values(-1, 1, 3));

TEST_F(ImageDecoderTest, RowsOfThreeBytesArePaddedByWidth) {
    const int32_t pitches[] = {4, 8, 12, 12, 16};
    for (int32_t width = 1; width <= 5; ++width) {
        choose(1, width, 2);
        DeleteObject(Image_DecodeToBitmap(1, 0));
        EXPECT_EQ(pitchGiven, pitches[width - 1]) << "width " << width;
    }
}

TEST_F(ImageDecoderTest, DecodesIntoTheSectionsOwnPixels) {
    choose(2, 5, 3);
    HBITMAP bitmap = Image_DecodeToBitmap(2, 0x7F);
    DIBSECTION section{};
    GetObjectA(bitmap, sizeof section, &section);
    EXPECT_EQ(section.dsBm.bmBits, pixelsGiven);
    DeleteObject(bitmap);
}

TEST_F(ImageDecoderTest, DecodesNothingWithoutADisplayContext) {
    choose(2, 5, 3);
    CallRecorder calls;
    calls.fail("CreateDCA", 1, 0);
    EXPECT_EQ(Image_DecodeToBitmap(2, 0), nullptr);
    EXPECT_TRUE(calls.match(R"(CreateDCA("DISPLAY", null, null, null) -> null)"));
    EXPECT_EQ(pixelsGiven, nullptr);
}

TEST_F(ImageDecoderTest, DecodesNothingWithoutASection) {
    choose(2, 5, 3);
    CallRecorder calls;
    calls.fail("CreateDIBSection", 1, 0);
    EXPECT_EQ(Image_DecodeToBitmap(2, 0), nullptr);
    EXPECT_EQ(calls.live("dc"), 0u);
    EXPECT_EQ(pixelsGiven, nullptr);
}

// --- The display's own form ---

TEST_F(ImageDecoderTest, DecodesForTheDisplayByWayOfABlock) {
    choose(1, 5, 3);
    CallRecorder calls;
    calls.name(GeneralHeap, "general");
    HBITMAP bitmap = Image_DecodeToBitmap(1, displayForm);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 0, 64) -> block1
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateCompatibleBitmap(dc1, 5, 3) -> bitmap1
        DeleteDC(dc1)
        CreateCompatibleDC(null) -> dc1
        SetDIBits(dc1, bitmap1, 0, 3, block1, {40, 5, -3, 1, 24, 0}, 0) -> 3
        DeleteDC(dc1)
        HeapFree(general, 0, block1) -> 1
    )"));
    EXPECT_EQ(pitchGiven, 16);
    expectRows(bitmap);
    DeleteObject(bitmap);
}

TEST_F(ImageDecoderTest, DecodesFormatTwoForTheDisplay) {
    choose(2, 5, 3);
    CallRecorder calls;
    HBITMAP bitmap = Image_DecodeToBitmap(2, displayForm);
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(*, 0, 80) -> block1
        ...
        SetDIBits(dc1, bitmap1, 0, 3, block1, {40, 5, -3, 1, 32, 0}, 0) -> 3
        ...
    )"));
    expectRows(bitmap);
    DeleteObject(bitmap);
}

TEST_F(ImageDecoderTest, GivesNothingForTheDisplayWithoutABlock) {
    choose(2, 5, 3);
    CallRecorder calls;
    calls.fail("HeapAlloc", 1, 0);
    EXPECT_EQ(Image_DecodeToBitmap(2, displayForm), nullptr);
    EXPECT_TRUE(calls.match("HeapAlloc(*, 0, 80) -> null"));
    EXPECT_EQ(pixelsGiven, nullptr);
}

TEST_F(ImageDecoderTest, GivesTheBlockBackWithoutABitmap) {
    choose(2, 5, 3);
    CallRecorder calls;
    calls.fail("CreateCompatibleBitmap", 1, 0);
    EXPECT_EQ(Image_DecodeToBitmap(2, displayForm), nullptr);
    EXPECT_EQ(calls.uses("SetDIBits"), 0);
    EXPECT_EQ(calls.liveNames(), std::vector<std::string>());
}

TEST_F(ImageDecoderTest, StaysBlankForTheDisplayWithoutAMemoryContext) {
    choose(2, 5, 3);
    CallRecorder calls;
    calls.fail("CreateCompatibleDC", 1, 0);
    HBITMAP bitmap = Image_DecodeToBitmap(2, displayForm);
    EXPECT_NE(bitmap, nullptr);
    EXPECT_EQ(calls.uses("SetDIBits"), 0);
    EXPECT_EQ(calls.live("block"), 0u);
    EXPECT_EQ(calls.live("dc"), 0u);
    DeleteObject(bitmap);
}

} // namespace
