#include "display/icon.h"

#include "tests/support/canvas.h"
#include "tests/support/image_files.h"

#include <cstddef>
#include <cstring>
#include <memory>

namespace {

struct FreeIconImage {
    void operator()(IconImage* image) const {
        GlobalFree(image->bits);
        GlobalFree(image);
    }
};
using ReadIcon = std::unique_ptr<IconImage, FreeIconImage>;

ReadIcon read(const std::vector<uint8_t>& file) {
    return ReadIcon(Icon_ReadDirectory(file.data()));
}

// Which of the file's pictures was chosen: they differ in the colour of their first pixel.
uint32_t chosenColour(const std::vector<IconPicture>& pictures, int count = -1) {
    const ReadIcon icon = read(iconFile(pictures, count));
    return icon->bits[40] | icon->bits[41] << 8 | icon->bits[42] << 16;
}

// An entry that is no more than a header, for what is derived from one.
std::vector<uint8_t> headerFile(const BITMAPINFOHEADER& header) {
    FileBytes file;
    file.u16(0).u16(1).u16(1);
    file.u8(0).u8(0).u8(0).u8(0).u16(1).u16(0).u32(sizeof header).u32(22);
    const auto* bytes = reinterpret_cast<const uint8_t*>(&header);
    return file.add({bytes, bytes + sizeof header}).bytes;
}

BITMAPINFOHEADER header(uint16_t bits, int32_t width, int32_t height) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = bits;
    return header;
}

ptrdiff_t xorOffset(const BITMAPINFOHEADER& from) {
    const ReadIcon icon = read(headerFile(from));
    return icon->xorBits - icon->bits;
}

ptrdiff_t xorSize(const BITMAPINFOHEADER& from) {
    const ReadIcon icon = read(headerFile(from));
    return icon->andBits - icon->xorBits;
}

// How much of a picture the icon makes green, drawn at its own size.
int greenPixels(HICON icon) {
    Canvas canvas(40, 40);
    DrawIconEx(canvas.dc(), 0, 0, icon, 0, 0, 0, nullptr, DI_NORMAL);
    return canvas.count(0x00FF00, 0, 0, 40, 40);
}

// --- The record ---

TEST(IconImageRecord, HasItsFieldsInOrder) {
    EXPECT_EQ(offsetof(IconImage, width), 0u);
    EXPECT_EQ(offsetof(IconImage, height), 4u);
    EXPECT_EQ(offsetof(IconImage, colors), 8u);
    EXPECT_EQ(offsetof(IconImage, bits), 16u);
    EXPECT_EQ(offsetof(IconImage, size), 24u);
    EXPECT_EQ(offsetof(IconImage, header), 32u);
    EXPECT_EQ(offsetof(IconImage, xorBits), 40u);
    EXPECT_EQ(offsetof(IconImage, andBits), 48u);
}

// --- What is an icon file ---

TEST(IconDirectory, IsKnownByItsFirstFourBytes) {
    std::vector<uint8_t> file = iconFile({{}});
    EXPECT_NE(read(file), nullptr);
    file[0] = 1;
    EXPECT_EQ(Icon_ReadDirectory(file.data()), nullptr);
    file[0] = 0;
    file[1] = 1;
    EXPECT_EQ(Icon_ReadDirectory(file.data()), nullptr);
    file[1] = 0;
    file[2] = 2; // a cursor file
    EXPECT_EQ(Icon_ReadDirectory(file.data()), nullptr);
    file[2] = 0;
    EXPECT_EQ(Icon_ReadDirectory(file.data()), nullptr);
    file[2] = 1;
    file[3] = 1;
    EXPECT_EQ(Icon_ReadDirectory(file.data()), nullptr);
}

TEST(IconDirectory, OfSomethingElseTakesNoMemory) {
    const std::vector<uint8_t> file(64, 0xFF);
    CallRecorder calls;
    EXPECT_EQ(Icon_ReadDirectory(file.data()), nullptr);
    EXPECT_EQ(Icon_FromMemory(file.data()), nullptr);
    EXPECT_TRUE(calls.match(""));
}

// --- Which entry is taken ---

TEST(IconEntryChoice, TakesTheOnlyEntry) { EXPECT_EQ(chosenColour({{.colour = 7}}), 7u); }

TEST(IconEntryChoice, ReadsTheFirstEntryOfAFileThatClaimsNone) {
    EXPECT_EQ(chosenColour({{.bits = 24, .colour = 7}, {.colour = 8}}, 0), 7u);
}

TEST(IconEntryChoice, ReadsNoEntryBehindTheCount) {
    EXPECT_EQ(chosenColour({{.bits = 24, .colour = 7}, {.colour = 8}}, 1), 7u);
    EXPECT_EQ(chosenColour({{.bits = 24, .colour = 7}, {.colour = 8}}, 2), 8u);
}

TEST(IconEntryChoice, TakesTheMostColoursOfTheFirstEntrysSize) {
    EXPECT_EQ(chosenColour({{.colour = 1, .listedBits = 4},
                            {.colour = 2, .listedBits = 24},
                            {.colour = 3, .listedBits = 8}}),
              2u);
}

TEST(IconEntryChoice, TakesTheEarlierOneOnATie) {
    EXPECT_EQ(chosenColour({{.colour = 1, .listedBits = 4},
                            {.colour = 2, .listedBits = 8},
                            {.colour = 3, .listedBits = 8}}),
              2u);
    EXPECT_EQ(chosenColour({{.colour = 1, .listedBits = 8}, {.colour = 2, .listedBits = 8}}), 1u);
}

TEST(IconEntryChoice, NeverTakesFewerColours) {
    EXPECT_EQ(chosenColour({{.colour = 1, .listedBits = 8}, {.colour = 2, .listedBits = 4}}), 1u);
}

TEST(IconEntryChoice, CountsNoPlanes) {
    EXPECT_EQ(
        chosenColour({{.colour = 1, .listedBits = 8}, {.colour = 2, .planes = 4, .listedBits = 4}}),
        1u);
}

TEST(IconEntryChoice, KeepsToTheFirstEntrysSizeHoweverLargeTheOthers) {
    EXPECT_EQ(chosenColour({{.width = 16, .height = 16, .colour = 1, .listedBits = 4},
                            {.width = 32, .height = 32, .colour = 2, .listedBits = 32}}),
              1u);
}

TEST(IconEntryChoice, WantsWidthAndHeightBothToBeEqual) {
    EXPECT_EQ(chosenColour({{.colour = 1, .listedBits = 4},
                            {.width = 32, .height = 16, .colour = 2, .listedBits = 32},
                            {.width = 16, .height = 32, .colour = 3, .listedBits = 32}}),
              1u);
}

TEST(IconEntryChoice, ComparesBitCountsOfSixteenBits) {
    EXPECT_EQ(chosenColour({{.colour = 1, .listedBits = 0xFF}, {.colour = 2, .listedBits = 0x100}}),
              2u);
}

// --- What is read of the entry ---

TEST(IconImageOfAnEntry, HoldsACopyOfItsData) {
    const IconPicture picture{.width = 5, .height = 3, .bits = 24, .colour = 0x123456};
    const std::vector<uint8_t> file = iconFile({picture});
    const std::vector<uint8_t> data = picture.build();
    const ReadIcon icon = read(file);
    EXPECT_EQ(icon->size, data.size());
    EXPECT_EQ(memcmp(icon->bits, data.data(), data.size()), 0);
    EXPECT_EQ(static_cast<const void*>(icon->header), icon->bits);
    EXPECT_TRUE(icon->bits < file.data() || icon->bits >= file.data() + file.size());
}

TEST(IconImageOfAnEntry, IsCopiedIntoFixedMemoryOfItsOwn) {
    const IconPicture picture;
    const std::vector<uint8_t> file = iconFile({picture});
    CallRecorder calls;
    const ReadIcon icon = read(file);
    EXPECT_TRUE(calls.match("GlobalAlloc(0, 56) -> global1\n GlobalAlloc(0, " +
                            std::to_string(picture.build().size()) + ") -> global2"));
}

TEST(IconImageOfAnEntry, HasHalfTheHeightOfItsHeader) {
    const ReadIcon even = read(headerFile(header(32, 20, 48)));
    EXPECT_EQ(even->width, 20);
    EXPECT_EQ(even->height, 24);
    EXPECT_EQ(read(headerFile(header(32, 20, 49)))->height, 24);
    EXPECT_EQ(read(headerFile(header(32, 20, -49)))->height, -24) << "dropped towards zero";
}

TEST(IconImageOfAnEntry, HasTheBitsOfAllItsPlanes) {
    BITMAPINFOHEADER planes = header(4, 16, 32);
    EXPECT_EQ(read(headerFile(planes))->colors, 4);
    planes.biPlanes = 3;
    EXPECT_EQ(read(headerFile(planes))->colors, 12);
}

TEST(IconImageOfAnEntry, HasItsColourRowsBehindHeaderAndColourTable) {
    EXPECT_EQ(xorOffset(header(1, 16, 32)), 40 + 2 * 4);
    EXPECT_EQ(xorOffset(header(4, 16, 32)), 40 + 16 * 4);
    EXPECT_EQ(xorOffset(header(8, 16, 32)), 40 + 256 * 4);
    EXPECT_EQ(xorOffset(header(16, 16, 32)), 40);
    EXPECT_EQ(xorOffset(header(24, 16, 32)), 40);
    EXPECT_EQ(xorOffset(header(32, 16, 32)), 40);
}

TEST(IconImageOfAnEntry, CountsTheColoursThatItsHeaderTells) {
    BITMAPINFOHEADER few = header(8, 16, 32);
    few.biClrUsed = 3;
    EXPECT_EQ(xorOffset(few), 40 + 3 * 4);
    few.biBitCount = 32;
    EXPECT_EQ(xorOffset(few), 40 + 3 * 4);
}

TEST(IconImageOfAnEntry, KeepsTheColourTablesSizeToSixteenBits) {
    BITMAPINFOHEADER many = header(8, 16, 32);
    many.biClrUsed = 0x3FFF;
    EXPECT_EQ(xorOffset(many), 40 + 0xFFFC);
    many.biClrUsed = 0x4001;
    EXPECT_EQ(xorOffset(many), 40 + 4);
}

TEST(IconImageOfAnEntry, GoesByItsHeadersOwnSize) {
    BITMAPINFOHEADER large = header(32, 16, 32);
    large.biSize = 108;
    EXPECT_EQ(xorOffset(large), 108);
}

TEST(IconImageOfAnEntry, HasItsMaskBehindPaddedColourRows) {
    EXPECT_EQ(xorSize(header(1, 1, 2)), 4);
    EXPECT_EQ(xorSize(header(1, 32, 6)), 4 * 3);
    EXPECT_EQ(xorSize(header(1, 33, 6)), 8 * 3);
    EXPECT_EQ(xorSize(header(24, 5, 14)), 16 * 7);
    EXPECT_EQ(xorSize(header(32, 16, 32)), 64 * 16);
    BITMAPINFOHEADER planes = header(4, 16, 4);
    planes.biPlanes = 2;
    EXPECT_EQ(xorSize(planes), 16 * 2);
}

// --- The icon ---

TEST(IconFromMemory, MakesTheIconOfTheChosenEntry) {
    const std::vector<uint8_t> file = iconFile({{.width = 20, .height = 24, .colour = 0x00FF00}});
    HICON icon = Icon_FromMemory(file.data());
    EXPECT_EQ(greenPixels(icon), 20 * 24);
    DestroyIcon(icon);
}

TEST(IconFromMemory, AsksForTheEntrysOwnSizeAndFreesItsWork) {
    const std::vector<uint8_t> file = iconFile({{.width = 20, .height = 24}});
    CallRecorder calls;
    HICON icon = Icon_FromMemory(file.data());
    EXPECT_TRUE(calls.match(R"(
        GlobalAlloc(0, 56) -> global1
        GlobalAlloc(0, 2056) -> global2
        CreateIconFromResourceEx(*, 2056, 1, 0x30000, 20, 24, 0) -> icon1
        GlobalFree(global2) -> null
        GlobalFree(global1) -> null
    )"));
    DestroyIcon(icon);
}

TEST(IconFromMemory, TriesASecondTime) {
    const std::vector<uint8_t> file = iconFile({{.width = 20, .height = 24, .colour = 0x00FF00}});
    CallRecorder calls;
    calls.fail("CreateIconFromResourceEx", 1, 0);
    HICON icon = Icon_FromMemory(file.data());
    EXPECT_TRUE(calls.match(R"(
        ...
        CreateIconFromResourceEx(*) -> null
        CreateIconFromResource(*, 2056, 1, 0x30000) -> icon1
        GlobalFree(global2)
        GlobalFree(global1)
    )"));
    EXPECT_GT(greenPixels(icon), 0);
    DestroyIcon(icon);
}

TEST(IconFromMemory, GivesNothingWhenBothTriesFail) {
    const std::vector<uint8_t> file = iconFile({{}});
    CallRecorder calls;
    calls.fail("CreateIconFromResourceEx", 1, 0);
    calls.fail("CreateIconFromResource", 1, 0);
    EXPECT_EQ(Icon_FromMemory(file.data()), nullptr);
    EXPECT_EQ(calls.live("global"), 0u);
}

TEST(IconFromMemory, GivesAnEntryOfAnyOtherDepthItsSecondTry) {
    for (const uint16_t bits : std::initializer_list<uint16_t>{1, 4, 8, 15, 24, 32}) {
        const std::vector<uint8_t> file = headerFile(header(bits, 16, 32));
        CallRecorder calls;
        calls.fail("CreateIconFromResourceEx", 1, 0);
        calls.fail("CreateIconFromResource", 1, 0);
        EXPECT_EQ(Icon_FromMemory(file.data()), nullptr);
        EXPECT_EQ(calls.uses("CreateIconFromResource"), 1) << bits << " bits";
    }
}

TEST(IconFromMemory, GivesASixteenBitEntryNoSecondTry) {
    const std::vector<uint8_t> file = headerFile(header(16, 16, 32));
    CallRecorder calls;
    calls.fail("CreateIconFromResourceEx", 1, 0);
    EXPECT_EQ(Icon_FromMemory(file.data()), nullptr);
    EXPECT_TRUE(calls.match(R"(
        GlobalAlloc(0, 56) -> global1
        GlobalAlloc(0, 40) -> global2
        CreateIconFromResourceEx(*, 40, 1, 0x30000, 16, 16, 0) -> null
        GlobalFree(global2)
        GlobalFree(global1)
    )"));
}

TEST(IconFromMemory, WithoutMemoryForItsRecordGivesNothing) {
    const std::vector<uint8_t> file = iconFile({{}});
    CallRecorder calls;
    calls.fail("GlobalAlloc", 1, 0);
    EXPECT_EQ(Icon_FromMemory(file.data()), nullptr);
    EXPECT_TRUE(calls.match("GlobalAlloc(0, 56) -> null"));
}

TEST(IconFromMemory, WithoutMemoryForTheDataGivesNothingAndLosesTheRecord) {
    const std::vector<uint8_t> file = iconFile({{}});
    CallRecorder calls;
    calls.fail("GlobalAlloc", 2, 0);
    EXPECT_EQ(Icon_FromMemory(file.data()), nullptr);
    EXPECT_EQ(calls.liveNames(), std::vector<std::string>{"global1"});
}

} // namespace
