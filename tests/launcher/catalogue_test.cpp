#include "launcher/catalogue.h"

#include "launcher/variables.h"
#include "runtime/array.h"
#include "tests/support/runtime_fixture.h"

#include <cstddef>
#include <set>

namespace {

struct ExpectedRow {
    const char* title;
    const char* exeName;
};

// As the payload unpacks them: no 002, no 003.
const ExpectedRow expectedRows[] = {
    {"01. Velmora 2009 Intro", "000-Velmora2009.exe"},
    {"02. Hobnail Intro 2 First Cut", "001-Hobnail1.exe"},
    {"03. Ostrik Tessel Intro 1", "004-Ostrik01.exe"},
    {"04. Ostrik Intro 1 V4 Ringing Tinplate", "005-Ostrik01v4l.exe"},
    {"05. Ostrik Intro 4 Lanternfish", "006-Ostrik04.exe"},
    {"06. Ostrik Intro 5 Glasswork", "007-Ostrik05.exe"},
    {"07. BQLV - Bluequay and Lantern Vale Inc. Intro", "008-BQLV.exe"},
    {"08. Hobnail Loader Intro #6", "009-Hobnail6.exe"},
    {"09. Anvil 1733 Intro", "010-Anvil1733.exe"},
    {"10. Fylex - Fluent Lexical Systems Intro Remake", "011-Fylex.exe"},
    {"11. Ostrik Intro 7 KTZ", "012-Ostrik07.exe"},
    {"12. Ostrik Intro 8 Marmots", "013-Ostrik08.exe"},
    {"13. WRaS - The Wren and Sparrow Loader", "014-WRaS.exe"},
    {"14. Ostrik Intro 9 Dornfeld", "015-Ostrik09-00.exe"},
    {"15. Ostrik Intro 9 M1 Sandlark", "016-Ostrik09-01.exe"},
    {"16. Ostrik Intro 9 M2 Brackwater", "017-Ostrik09-02.exe"},
    {"17. Ostrik Intro 9 M3 Tumblequill", "018-Ostrik09-03.exe"},
    {"18. Ostrik Intro 9 M4 Pebblegrind", "019-Ostrik09-04.exe"},
    {"19. Ostrik Intro 9 M5 Ashkettle", "020-Ostrik09-05.exe"},
    {"20. Ostrik Intro 9 M6 Salt Lantern", "021-Ostrik09-06.exe"},
    {"21. Ostrik Intro 9 M7 Dunefinch", "022-Ostrik09-07.exe"},
    {"22. Myrtle Home Computer Loader Remake", "023-Myrtle.exe"},
    {"23. Ostrik Intro 10 Amber", "024-Ostrik10.exe"},
    {"24. Ostrik Intro 11 Ripples", "025-Ostrik11.exe"},
    {"25. Ostrik Intro 12 Your Harbour", "026-Ostrik12.exe"},
    {"26. Ostrik Intro 13 Glyphwork", "027-Ostrik13.exe"},
    {"27. Ostrik Intro 14 Mopa", "028-Ostrik14.exe"},
    {"28. Ostrik Intro 15 Inlaid", "029-Ostrik15.exe"},
    {"Show NFO File", "NFOFILE"},
    {"Quit", "QUIT"},
};

// The rows lie packed, so that their numbers may stand at odd addresses.
template <typename Value>
int64_t number(Value value) {
    return value;
}

class CatalogueTest : public RuntimeTest {
protected:
    CatalogueTest() {
        Launcher = {};
        Catalogue_New();
    }
    ~CatalogueTest() override {
        Array_Release(Launcher.IntroCatalogue);
        Launcher = {};
    }

    static ArrayHeader header() {
        return *(reinterpret_cast<ArrayHeader*>(Launcher.IntroCatalogue) - 1);
    }
};

TEST(IntroEntry, IsPackedInItsFieldsOrder) {
    EXPECT_EQ(offsetof(IntroEntry, Title), 0u);
    EXPECT_EQ(offsetof(IntroEntry, ExeName), 8u);
    EXPECT_EQ(offsetof(IntroEntry, Spare), 16u);
    EXPECT_EQ(offsetof(IntroEntry, X), 20u);
    EXPECT_EQ(offsetof(IntroEntry, Y), 24u);
    EXPECT_EQ(sizeof(IntroEntry), 28u);
    EXPECT_EQ(sizeof(IntroEntry::Spare), 4u);
}

TEST(CatalogueConstants, CountTheRowsThatAreUsed) {
    EXPECT_EQ(Catalogue_RowCount, 30);
    EXPECT_EQ(Catalogue_ColumnRows, 15);
    EXPECT_STREQ(Catalogue_QuitKeyword, "QUIT");
    EXPECT_STREQ(Catalogue_InfoKeyword, "NFOFILE");
}

using CatalogueNew = CatalogueTest;

TEST_F(CatalogueNew, MakesAnArrayWithTwoRowsToSpare) {
    EXPECT_EQ(header().Dimensions, 1);
    EXPECT_EQ(header().ElementSize, 28);
    EXPECT_EQ(header().UpperBound, 31);
    EXPECT_EQ(header().ElementType, 7);
    EXPECT_EQ(header().Owner, &Launcher.IntroCatalogue);
}

TEST_F(CatalogueNew, NamesBothTextsInTheFieldMap) {
    const FieldMap* const map = header().FieldMap;
    EXPECT_EQ(map[0], 0);
    EXPECT_EQ(map[1], 8);
    EXPECT_EQ(map[2], FieldMap_End);
}

TEST_F(CatalogueNew, MakesZeroedRows) {
    const auto* bytes = reinterpret_cast<const char*>(Launcher.IntroCatalogue);
    EXPECT_EQ(std::string(bytes, 32 * 28), std::string(32 * 28, '\0'));
}

TEST_F(CatalogueNew, FreesAnEarlierArrayFirst) {
    Catalogue_Fill();
    HeapRecorder calls;
    Catalogue_New();
    EXPECT_EQ(calls.take().size(), 60u) << "thirty rows with two texts each";
    EXPECT_EQ(Launcher.IntroCatalogue[0].Title, nullptr);
}

using CatalogueFill = CatalogueTest;

TEST_F(CatalogueFill, WritesTheThirtyRowsInOrder) {
    Catalogue_Fill();
    for (size_t row = 0; row < 30; ++row) {
        EXPECT_STREQ(Launcher.IntroCatalogue[row].Title, expectedRows[row].title);
        EXPECT_STREQ(Launcher.IntroCatalogue[row].ExeName, expectedRows[row].exeName);
    }
}

TEST_F(CatalogueFill, StoresEachTitleBeforeItsFileName) {
    HeapRecorder calls;
    Catalogue_Fill();
    const std::vector<std::string> lines = calls.take();
    ASSERT_EQ(lines.size(), 60u);
    for (size_t row = 0; row < 30; ++row) {
        const std::string title = std::to_string(strlen(expectedRows[row].title) + 5);
        const std::string exeName = std::to_string(strlen(expectedRows[row].exeName) + 5);
        EXPECT_EQ(lines[2 * row].find("HeapAlloc(text, 1, " + title + ")"), 0u) << row;
        EXPECT_EQ(lines[2 * row + 1].find("HeapAlloc(text, 1, " + exeName + ")"), 0u) << row;
    }
}

TEST_F(CatalogueFill, ClearsTheNumbersOfTheThirtyRows) {
    for (int row = 0; row < 32; ++row) {
        Launcher.IntroCatalogue[row].Spare = 1;
        Launcher.IntroCatalogue[row].X = 2;
        Launcher.IntroCatalogue[row].Y = 3;
    }
    Catalogue_Fill();
    for (int row = 0; row < 30; ++row) {
        EXPECT_EQ(number(Launcher.IntroCatalogue[row].Spare), 0) << row;
        EXPECT_EQ(number(Launcher.IntroCatalogue[row].X), 0) << row;
        EXPECT_EQ(number(Launcher.IntroCatalogue[row].Y), 0) << row;
    }
    EXPECT_EQ(number(Launcher.IntroCatalogue[30].Spare), 1) << "the spare rows are not touched";
    EXPECT_EQ(number(Launcher.IntroCatalogue[31].Y), 3);
}

TEST_F(CatalogueFill, LeavesTheTwoSpareRowsZero) {
    Catalogue_Fill();
    const auto* spare = reinterpret_cast<const char*>(&Launcher.IntroCatalogue[30]);
    EXPECT_EQ(std::string(spare, 2 * 28), std::string(2 * 28, '\0'));
}

TEST_F(CatalogueFill, CountsInRowIndex) {
    Launcher.RowIndex = 99;
    Catalogue_Fill();
    EXPECT_EQ(Launcher.RowIndex, 30);
}

TEST_F(CatalogueFill, LeavesTheAccumulatorEmpty) {
    Catalogue_Fill();
    EXPECT_EQ(TextPosition, 0);
}

TEST_F(CatalogueFill, GivesEveryRowAFileNameOfItsOwn) {
    Catalogue_Fill();
    std::set<std::string> names;
    for (int row = 0; row < 30; ++row)
        names.insert(Launcher.IntroCatalogue[row].ExeName);
    EXPECT_EQ(names.size(), 30u);
}

TEST(VariablesClear, SetsTheWholeBlockToZero) {
    memset(static_cast<void*>(&Launcher), 0xFF, sizeof Launcher);
    GeneralHeap = &Launcher;
    ProgramInstance = reinterpret_cast<HMODULE>(&Launcher);
    Variables_Clear();
    const auto* bytes = reinterpret_cast<const char*>(&Launcher);
    EXPECT_EQ(std::string(bytes, sizeof Launcher), std::string(sizeof Launcher, '\0'));
    EXPECT_EQ(GeneralHeap, nullptr);
    EXPECT_EQ(ProgramInstance, nullptr);
}

} // namespace
