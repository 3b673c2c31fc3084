#include "display/font.h"

#include "runtime/heap_state.h"
#include "tests/support/runtime_fixture.h"

#include <windows.h>

namespace {

class FontTest : public RuntimeTest {
protected:
    FontTest() { Font_SubsystemInit(); }
    ~FontTest() override { Font_SubsystemEnd(); }

    static LOGFONTA describe(int64_t font) {
        LOGFONTA data{};
        EXPECT_EQ(GetObjectA(reinterpret_cast<HGDIOBJ>(font), sizeof data, &data),
                  static_cast<int>(sizeof data));
        return data;
    }
    static LOGFONTA styled(int32_t flags) { return describe(Font_Create(0, "Arial", 10, flags)); }
    static bool isFont(int64_t font) {
        return GetObjectType(reinterpret_cast<HGDIOBJ>(font)) == OBJ_FONT;
    }
};

// Answers for the display's resolution.
void setResolution(CallRecorder& calls, int pixelsPerInch) {
    calls.replace<hook::GetDeviceCaps>([=](HDC, int) { return pixelsPerInch; });
}

// --- Set-up ---

using FontSubsystemInit = RuntimeTest;

TEST_F(FontSubsystemInit, MakesATableOfSixteenFonts) {
    HeapRecorder calls;
    Font_SubsystemInit();
    EXPECT_TRUE(calls.match(R"(
        HeapAlloc(general, 8, 56) -> block1
        HeapAlloc(general, 8, 128) -> block2
    )"));
}

// --- Making a font ---

using FontLoad = FontTest;

TEST_F(FontLoad, MakesAPlainFontOfTheFace) {
    const int64_t font = Font_Load(0, "Arial", 14);
    const LOGFONTA data = describe(font);
    EXPECT_STREQ(data.lfFaceName, "Arial");
    EXPECT_EQ(data.lfHeight, -19);
    EXPECT_EQ(data.lfWidth, 0);
    EXPECT_EQ(data.lfEscapement, 0);
    EXPECT_EQ(data.lfOrientation, 0);
    EXPECT_EQ(data.lfWeight, 400);
    EXPECT_EQ(data.lfItalic, 0);
    EXPECT_EQ(data.lfUnderline, 0);
    EXPECT_EQ(data.lfStrikeOut, 0);
    EXPECT_EQ(data.lfCharSet, 1);
    EXPECT_EQ(data.lfOutPrecision, 0);
    EXPECT_EQ(data.lfClipPrecision, 0);
    EXPECT_EQ(data.lfQuality, 0);
    EXPECT_EQ(data.lfPitchAndFamily, 0);
}

TEST_F(FontLoad, AsksTheDisplayAndGivesItsContextBack) {
    CallRecorder calls;
    Font_Load(0, "Arial", 10);
    EXPECT_TRUE(calls.match(R"(
        CreateDCA("DISPLAY", null, null, null) -> dc1
        GetDeviceCaps(dc1, 90) -> 96
        MulDiv(10, 96, 72) -> 13
        CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial") -> font1
        DeleteDC(dc1) -> 1
    )"));
}

TEST_F(FontLoad, FollowsTheResolutionAtThatMoment) {
    CallRecorder calls;
    setResolution(calls, 144);
    EXPECT_EQ(describe(Font_Load(0, "Arial", 10)).lfHeight, -20);
    setResolution(calls, 96);
    EXPECT_EQ(describe(Font_Handle(0)).lfHeight, -20) << "a font that is there stays as it is";
    EXPECT_EQ(describe(Font_Load(0, "Arial", 10)).lfHeight, -13);
}

TEST_F(FontLoad, RoundsTheHeightToTheNearestPixel) {
    CallRecorder calls;
    setResolution(calls, 96);
    EXPECT_EQ(describe(Font_Load(0, "Arial", 10)).lfHeight, -13); // 13.33
    EXPECT_EQ(describe(Font_Load(0, "Arial", 14)).lfHeight, -19); // 18.67
}

TEST_F(FontLoad, OfNoPointsLeavesTheSizeToTheSystem) {
    EXPECT_EQ(describe(Font_Load(0, "Arial", 0)).lfHeight, 0);
}

TEST_F(FontLoad, OfAFaceThatIsNotThereGivesASubstitute) {
    EXPECT_TRUE(isFont(Font_Load(0, "No Such Face", 10)));
}

TEST_F(FontLoad, GivesTheFontForANumber) {
    const int64_t font = Font_Load(3, "Arial", 10);
    EXPECT_TRUE(isFont(font));
    EXPECT_EQ(Font_Handle(3), font);
}

TEST_F(FontLoad, GivesTheRecordsAddressForALooseFont) {
    const ObjectId id = Font_Load(ObjectId_Any, "Arial", 10);
    EXPECT_TRUE(isFont(reinterpret_cast<FontObject*>(id)->handle));
    EXPECT_EQ(Font_Handle(id), reinterpret_cast<FontObject*>(id)->handle);
    EXPECT_NE(Font_Handle(id), id);
}

TEST_F(FontLoad, UnderTheSameNumberDeletesTheOldFontFirst) {
    CallRecorder calls;
    Font_Load(0, "Arial", 10);
    calls.take();
    Font_Load(0, "Arial", 14);
    EXPECT_TRUE(calls.match(R"(
        DeleteObject(font1) -> 1
        CreateDCA("DISPLAY", null, null, null)
        ...
        CreateFontA(-19, *) -> font1
        DeleteDC(dc1)
    )"));
    EXPECT_EQ(calls.live("font"), 1u);
}

TEST_F(FontLoad, UnderTheSameNumberDeletesTheOldFontEvenWhenItFails) {
    CallRecorder calls;
    Font_Load(0, "Arial", 10);
    calls.fail("CreateFontA", 1, 0);
    EXPECT_EQ(Font_Load(0, "Arial", 14), 0);
    EXPECT_EQ(Font_Handle(0), 0);
    EXPECT_EQ(calls.live("font"), 0u);
}

// --- Styles ---

using FontCreate = FontTest;

TEST_F(FontCreate, UnderlinesByItsFlag) {
    const LOGFONTA data = styled(0x4);
    EXPECT_EQ(data.lfUnderline, 1);
    EXPECT_EQ(data.lfStrikeOut, 0);
    EXPECT_EQ(data.lfQuality, 0);
    EXPECT_EQ(data.lfWeight, 400);
    EXPECT_EQ(data.lfItalic, 0);
}

TEST_F(FontCreate, StrikesOutByItsFlag) {
    const LOGFONTA data = styled(0x8);
    EXPECT_EQ(data.lfUnderline, 0);
    EXPECT_EQ(data.lfStrikeOut, 1);
    EXPECT_EQ(data.lfQuality, 0);
    EXPECT_EQ(data.lfWeight, 400);
    EXPECT_EQ(data.lfItalic, 0);
}

TEST_F(FontCreate, AsksForProofQualityByItsFlag) {
    const LOGFONTA data = styled(0x10);
    EXPECT_EQ(data.lfUnderline, 0);
    EXPECT_EQ(data.lfStrikeOut, 0);
    EXPECT_EQ(data.lfQuality, 2);
    EXPECT_EQ(data.lfWeight, 400);
    EXPECT_EQ(data.lfItalic, 0);
}

TEST_F(FontCreate, IsBoldByItsFlag) {
    const LOGFONTA data = styled(0x100);
    EXPECT_EQ(data.lfUnderline, 0);
    EXPECT_EQ(data.lfStrikeOut, 0);
    EXPECT_EQ(data.lfQuality, 0);
    EXPECT_EQ(data.lfWeight, 700);
    EXPECT_EQ(data.lfItalic, 0);
}

TEST_F(FontCreate, IsItalicByItsFlag) {
    const LOGFONTA data = styled(0x200);
    EXPECT_EQ(data.lfUnderline, 0);
    EXPECT_EQ(data.lfStrikeOut, 0);
    EXPECT_EQ(data.lfQuality, 0);
    EXPECT_EQ(data.lfWeight, 400);
    EXPECT_EQ(data.lfItalic, 1);
}

TEST_F(FontCreate, IgnoresAllOtherFlags) {
    CallRecorder calls;
    calls.only({"CreateFontA"});
    Font_Create(0, "Arial", 10, ~(0x4 | 0x8 | 0x10 | 0x100 | 0x200));
    EXPECT_TRUE(calls.match(R"(CreateFontA(-13, 0, 0, 0, 400, 0, 0, 0, 1, 0, 0, 0, 0, "Arial"))"));
}

TEST_F(FontCreate, TakesAllFlagsAtOnce) {
    CallRecorder calls;
    calls.only({"CreateFontA"});
    Font_Create(0, "Arial", 10, 0x4 | 0x8 | 0x10 | 0x100 | 0x200);
    EXPECT_TRUE(calls.match(R"(CreateFontA(-13, 0, 0, 0, 700, 1, 1, 1, 1, 0, 0, 2, 0, "Arial"))"));
}

// --- Failures ---

using FontFailure = FontTest;

TEST_F(FontFailure, OfTheDisplayContextLeavesTheNumberEmpty) {
    CallRecorder calls;
    calls.fail("CreateDCA", 1, 0);
    EXPECT_EQ(Font_Load(0, "Arial", 10), 0);
    EXPECT_TRUE(calls.match(R"(CreateDCA("DISPLAY", null, null, null) -> null)"));
    EXPECT_EQ(Font_Handle(0), 0);
}

TEST_F(FontFailure, OfTheFontLeavesTheNumberEmptyAndDeletesTheContext) {
    CallRecorder calls;
    calls.fail("CreateFontA", 1, 0);
    EXPECT_EQ(Font_Load(0, "Arial", 10), 0);
    EXPECT_TRUE(calls.match("...\n CreateFontA(*) -> null\n DeleteDC(dc1) -> 1"));
    EXPECT_EQ(Font_Handle(0), 0);
}

TEST_F(FontFailure, GivesALooseRecordBack) {
    CallRecorder calls;
    calls.fail("CreateDCA", 1, 0);
    EXPECT_EQ(Font_Load(ObjectId_Any, "Arial", 10), 0);
    calls.fail("CreateFontA", 1, 0);
    EXPECT_EQ(Font_Load(ObjectId_Any, "Arial", 10), 0);
    EXPECT_EQ(calls.live("block"), 0u);
    EXPECT_EQ(calls.uses("HeapAlloc"), 2);
}

TEST_F(FontFailure, OfTheTableMakesNoFont) {
    CallRecorder calls;
    calls.fail("HeapAlloc", 2, 0);
    Font_SubsystemInit();
    calls.take();
    EXPECT_EQ(Font_Load(0, "Arial", 10), 0);
    EXPECT_TRUE(calls.match(""));
    calls.failNothing();
    Font_SubsystemInit();
}

// --- Looking up and freeing ---

using FontHandle = FontTest;

TEST_F(FontHandle, OfANumberThatWasNeverLoadedIsZero) {
    EXPECT_EQ(Font_Handle(0), 0);
    EXPECT_EQ(Font_Handle(15), 0);
}

using FontFree = FontTest;

TEST_F(FontFree, DeletesTheFontAndEmptiesTheNumber) {
    CallRecorder calls;
    Font_Load(2, "Arial", 10);
    calls.take();
    Font_Free(2);
    EXPECT_TRUE(calls.match("DeleteObject(font1) -> 1"));
    EXPECT_EQ(Font_Handle(2), 0);
}

TEST_F(FontFree, OfNothingDoesNothing) {
    CallRecorder calls;
    Font_Free(2);
    EXPECT_TRUE(calls.match(""));
}

TEST_F(FontFree, GivesALooseRecordBack) {
    CallRecorder calls;
    const ObjectId id = Font_Load(ObjectId_Any, "Arial", 10);
    calls.name(LooseHeap, "loose");
    calls.take();
    Font_Free(id);
    EXPECT_TRUE(calls.match("DeleteObject(font1) -> 1\n HeapFree(loose, 0, block1) -> 1"));
}

using FontSubsystemEnd = FontTest;

TEST_F(FontSubsystemEnd, FreesEveryFont) {
    CallRecorder calls;
    Font_Load(0, "Arial", 10);
    Font_Load(20, "Arial", 10);
    Font_Load(ObjectId_Any, "Arial", 10);
    EXPECT_EQ(calls.live("font"), 3u);
    Font_SubsystemEnd();
    EXPECT_EQ(calls.live("font"), 0u);
    EXPECT_EQ(Font_Handle(0), 0);
    EXPECT_EQ(Font_Handle(20), 0);
    calls.take();
    Font_SubsystemEnd();
    EXPECT_TRUE(calls.match(""));
}

} // namespace
