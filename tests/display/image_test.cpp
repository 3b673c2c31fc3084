#include "display/image.h"

#include "display/image_bitmap.h"
#include "display/image_decoder_state.h"
#include "display/image_state.h"
#include "tests/support/image_fixture.h"

#include <cstddef>

namespace {

constexpr COLORREF white = 0xFFFFFF;

// --- Set-up ---

TEST(ImageRecord, HasItsFieldsInOrder) {
    EXPECT_EQ(sizeof(ImageObject), 16u);
    EXPECT_EQ(offsetof(ImageObject, handle), 0u);
    EXPECT_EQ(offsetof(ImageObject, width), 8u);
    EXPECT_EQ(offsetof(ImageObject, height), 10u);
    EXPECT_EQ(offsetof(ImageObject, depth), 12u);
    EXPECT_EQ(offsetof(ImageObject, flags), 13u);
}

using ImageSubsystemInit = RuntimeTest;

TEST_F(ImageSubsystemInit, MakesATableOfSixteenImages) {
    HeapRecorder calls;
    Image_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 8, 56) -> block1
        HeapAlloc(general, 8, 256) -> block2
    )"));
}

// --- Icons ---

using IconImageTest = ImageTest;

TEST_F(IconImageTest, HasTheSizeAndDepthOfItsColourBitmap) {
    const int64_t handle = Image_FromMemory(0, smallIcon().data());
    EXPECT_NE(handle, 0);
    EXPECT_EQ(Image_Handle(0), handle);
    EXPECT_EQ(Image_Width(0), 20);
    EXPECT_EQ(Image_Height(0), 24);
    EXPECT_EQ(Image_Depth(0), 32);
}

TEST_F(IconImageTest, GivesBothBitmapsOfTheEnquiryBack) {
    CallRecorder calls;
    calls.except({"GlobalAlloc", "GlobalFree"});
    Image_FromMemory(0, smallIcon().data());
    EXPECT_TRUE(calls.match(R"(
        CreateIconFromResourceEx(*) -> icon1
        GetIconInfo(icon1, &{mask bitmap1, color bitmap2}) -> 1
        GetObjectA(bitmap2, 32, *) -> 32
        DeleteObject(bitmap1) -> 1
        DeleteObject(bitmap2) -> 1
    )"));
    EXPECT_EQ(calls.live("bitmap"), 0u);
    EXPECT_EQ(calls.live("global"), 0u);
}

TEST_F(IconImageTest, ThatCannotBeEnquiredIsLostAndLeavesTheNumberEmpty) {
    watchDecoders();
    CallRecorder calls;
    calls.fail("GetIconInfo", 1, 0);
    EXPECT_EQ(Image_FromMemory(0, smallIcon().data()), 0);
    EXPECT_EQ(Image_Handle(0), 0);
    EXPECT_EQ(calls.live("icon"), 1u) << "it is not destroyed";
    EXPECT_EQ(checks, 0);
}

TEST_F(IconImageTest, ThatCannotBeMadeIsShownToDecoders) {
    watchDecoders();
    CallRecorder calls;
    calls.fail("CreateIconFromResourceEx", 1, 0);
    calls.fail("CreateIconFromResource", 1, 0);
    EXPECT_EQ(Image_FromMemory(0, smallIcon().data()), 0);
    EXPECT_EQ(Image_Handle(0), 0);
    EXPECT_EQ(checks, 1);
    EXPECT_EQ(calls.live("global"), 0u);
}

TEST_F(IconImageTest, WithoutMemoryIsShownToDecodersAndLosesItsRecord) {
    watchDecoders();
    CallRecorder calls;
    calls.fail("GlobalAlloc", 2, 0);
    EXPECT_EQ(Image_FromMemory(0, smallIcon().data()), 0);
    EXPECT_EQ(Image_Handle(0), 0);
    EXPECT_EQ(checks, 1);
    EXPECT_EQ(calls.live("global"), 1u);
}

// --- Anything else ---

using UnknownImage = ImageTest;

TEST_F(UnknownImage, LeavesTheNumberEmpty) {
    const std::vector<uint8_t> file(64, 0xFF);
    EXPECT_EQ(Image_FromMemory(0, file.data()), 0);
    EXPECT_EQ(Image_Handle(0), 0);
}

TEST_F(UnknownImage, IsWhateverLacksEitherLetterOfTheSignature) {
    std::vector<uint8_t> file = smallBmp();
    file[0] = 'b';
    EXPECT_EQ(Image_FromMemory(0, file.data()), 0);
    file[0] = 'B';
    file[1] = 'm';
    EXPECT_EQ(Image_FromMemory(0, file.data()), 0);
    file[1] = 'M';
    EXPECT_NE(Image_FromMemory(0, file.data()), 0);
}

TEST_F(UnknownImage, IsShownToDecodersWithALengthThatStandsForUnknown) {
    watchDecoders();
    const std::vector<uint8_t> file(64, 0xFF);
    askedStream = file.data();
    Image_FromMemory(0, file.data());
    EXPECT_EQ(checks, 1);
    EXPECT_EQ(askedStream, nullptr);
    EXPECT_EQ(askedData, file.data());
    EXPECT_EQ(askedLength, 10000000);
}

TEST_F(UnknownImage, IsShownToDecodersWithItsLength) {
    watchDecoders();
    const std::vector<uint8_t> file(64, 0xFF);
    EXPECT_EQ(Image_Load(0, file.data(), 0x123456789, 0), 0);
    EXPECT_EQ(askedLength, 0x123456789);
}

TEST_F(UnknownImage, GivesALooseRecordBack) {
    const std::vector<uint8_t> file(64, 0xFF);
    CallRecorder calls;
    EXPECT_EQ(Image_FromMemory(ObjectId_Any, file.data()), 0);
    EXPECT_EQ(calls.uses("HeapAlloc"), 1);
    EXPECT_EQ(calls.live("block"), 0u);
}

class DecodedImage : public ImageTest {
protected:
    DecodedImage() {
        ImageDecoders.decoders[0] = {[](void*, const void*, int64_t) { return format; },
                                     [](void* pixels, int32_t pitch, int32_t) {
                                         memset(pixels, 0xFF, static_cast<size_t>(pitch));
                                     },
                                     [] { return 5; }, [] { return 2; }};
        ImageDecoders.count = 1;
    }
    static inline int32_t format = 0;
    const std::vector<uint8_t> file = std::vector<uint8_t>(64, 0xFF);
};

TEST_F(DecodedImage, IsTakenFromTheDecoder) {
    format = DecoderFormat_32Bit;
    const int64_t handle = Image_FromMemory(0, file.data());
    EXPECT_EQ(Image_Handle(0), handle);
    EXPECT_EQ(Image_Width(0), 5);
    EXPECT_EQ(Image_Height(0), 2);
    EXPECT_EQ(Image_Depth(0), 32);
    EXPECT_EQ(Canvas(bitmapOf(handle)).count(white, 0, 0, 5, 1), 5);
}

TEST_F(DecodedImage, HasTheDepthThatTheDecoderFound) {
    format = 1;
    Image_FromMemory(0, file.data());
    EXPECT_EQ(Image_Depth(0), 24);
}

TEST_F(DecodedImage, IsMadeWithTheCallersFlags) {
    format = 1;
    CallRecorder calls;
    const ObjectId id = Image_Load(ObjectId_Any, file.data(), 64, 0x80);
    EXPECT_EQ(calls.uses("CreateCompatibleBitmap"), 1);
    EXPECT_EQ(reinterpret_cast<ImageObject*>(id)->flags, 0x80);
}

TEST_F(DecodedImage, ThatDoesNotComeLeavesTheNumberEmpty) {
    format = 1;
    CallRecorder calls;
    calls.fail("CreateDIBSection", 1, 0);
    EXPECT_EQ(Image_FromMemory(0, file.data()), 0);
    EXPECT_EQ(Image_Handle(0), 0);
}

// --- Numbers and loose images ---

using ImageNumber = ImageTest;

TEST_F(ImageNumber, InUseFreesItsImageBeforeTheNewDataIsLookedAt) {
    CallRecorder calls;
    Image_FromMemory(0, smallBmp().data());
    calls.take();
    Image_FromMemory(0, smallBmp().data());
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(bitmap1) -> 7
        DeleteObject(bitmap1) -> 1
        CreateDCA("DISPLAY", null, null, null)
        ...
    )"));
    EXPECT_EQ(calls.live("bitmap"), 1u);
}

TEST_F(ImageNumber, InUseIsLeftEmptyByDataThatFails) {
    CallRecorder calls;
    Image_FromMemory(0, smallBmp().data());
    const std::vector<uint8_t> wrong(64, 0xFF);
    EXPECT_EQ(Image_FromMemory(0, wrong.data()), 0);
    EXPECT_EQ(Image_Handle(0), 0);
    EXPECT_EQ(Image_Width(0), 0);
    EXPECT_EQ(calls.live("bitmap"), 0u);
}

TEST_F(ImageNumber, OfNoImageHasNothing) {
    EXPECT_EQ(Image_Handle(3), 0);
    EXPECT_EQ(Image_Width(3), 0);
    EXPECT_EQ(Image_Height(3), 0);
    EXPECT_EQ(Image_Depth(3), 0);
}

using ImageHandle = ImageTest;

TEST_F(ImageHandle, OfANumberBeyondTheTableIsZero) {
    EXPECT_EQ(Image_Handle(16), 0);
    EXPECT_EQ(Image_Handle(1000), 0);
}

TEST_F(ImageHandle, OfALooseImageGoesByItsAddress) {
    const ObjectId id = Image_FromMemory(ObjectId_Any, smallBmp().data());
    const auto* record = reinterpret_cast<const ImageObject*>(id);
    EXPECT_EQ(record->width, 3);
    EXPECT_EQ(record->height, 2);
    EXPECT_EQ(record->depth, 32);
    EXPECT_EQ(Image_Handle(id), record->handle);
    EXPECT_NE(Image_Handle(id), id);
    EXPECT_EQ(Image_Width(id), 3);
}

// --- Freeing ---

using ImageFree = ImageTest;

TEST_F(ImageFree, DeletesABitmapAndEmptiesTheNumber) {
    CallRecorder calls;
    Image_FromMemory(2, smallBmp().data());
    calls.take();
    Image_Free(2);
    EXPECT_TRUE(calls.match("GetObjectType(bitmap1) -> 7\n DeleteObject(bitmap1) -> 1"));
    EXPECT_EQ(Image_Handle(2), 0);
    EXPECT_EQ(Image_Depth(2), 0);
}

TEST_F(ImageFree, DestroysAnIconAndEmptiesTheNumber) {
    CallRecorder calls;
    Image_FromMemory(2, smallIcon().data());
    calls.take();
    Image_Free(2);
    EXPECT_TRUE(calls.match("GetObjectType(icon1) -> 0\n DestroyIcon(icon1) -> 1"));
    EXPECT_EQ(Image_Handle(2), 0);
}

TEST_F(ImageFree, GivesALooseRecordBack) {
    CallRecorder calls;
    const ObjectId id = Image_FromMemory(ObjectId_Any, smallBmp().data());
    calls.take();
    Image_Free(id);
    EXPECT_TRUE(calls.match(R"(
        GetObjectType(bitmap1) -> 7
        DeleteObject(bitmap1) -> 1
        HeapFree(*, 0, block1) -> 1
    )"));
}

TEST_F(ImageFree, OfNothingOrAnyDoesNothing) {
    CallRecorder calls;
    Image_Free(2);
    Image_Free(ObjectId_Any);
    EXPECT_TRUE(calls.match(""));
}

using ImageSubsystemEnd = ImageTest;

TEST_F(ImageSubsystemEnd, FreesEveryImage) {
    CallRecorder calls;
    Image_FromMemory(0, smallBmp().data());
    Image_FromMemory(20, smallIcon().data());
    Image_FromMemory(ObjectId_Any, smallBmp().data());
    EXPECT_EQ(calls.live("bitmap"), 2u);
    EXPECT_EQ(calls.live("icon"), 1u);
    Image_SubsystemEnd();
    EXPECT_EQ(calls.live("bitmap"), 0u);
    EXPECT_EQ(calls.live("icon"), 0u);
    EXPECT_EQ(Image_Handle(0), 0);
    EXPECT_EQ(Image_Handle(20), 0);
}

// --- Blank bitmaps ---

using ImageMakeBitmap = ImageTest;

TEST_F(ImageMakeBitmap, MakesASectionOfTheGivenDepth) {
    CallRecorder calls;
    HBITMAP bitmap = Image_MakeBitmap(5, 4, 0, 24);
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        CreateDIBSection(dc1, {40, 5, 4, 1, 24, 0}, 0, &*, null, 0) -> bitmap1
        DeleteDC(dc1)
    )"));
    DeleteObject(bitmap);
}

TEST_F(ImageTest, ReadsItsDepthAsSigned) {
    auto* record = static_cast<ImageObject*>(Registry_Claim(imageRegistry, 3));
    *record = {1, 0, 0, -1, 0};
    EXPECT_EQ(Image_Depth(3), -1);
    *record = {};
}

TEST_F(ImageTest, MayBeAnIconWithoutAColorBitmap) {
    const std::vector<uint8_t> file = smallIcon();
    CallRecorder calls;
    calls.replace<hook::GetIconInfo>([](HICON, ICONINFO* info) {
        *info = {};
        return TRUE;
    });
    EXPECT_NE(Image_FromMemory(0, file.data()), 0);
    EXPECT_EQ(Image_Width(0), 0);
    EXPECT_EQ(Image_Height(0), 0);
}

} // namespace
