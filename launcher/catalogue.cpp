#include "launcher/catalogue.h"

#include "launcher/variables.h"
#include "runtime/array.h"

#include <cstddef>

namespace {

// Two rows more than are used: no loop visits them and no key reaches them. They stay zero.
constexpr int32_t upperBound = 31;
constexpr int32_t elementType = 7;

constexpr FieldMap textFields[] = {offsetof(IntroEntry, Title), offsetof(IntroEntry, ExeName),
                                   FieldMap_End};

struct Row {
    const char* title;
    const char* exeName;
};

// The file names skip 002 and 003: they are the payload's own and do not follow the labels.
constexpr Row rows[] = {
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
    {"Show NFO File", Catalogue_InfoKeyword},
    {"Quit", Catalogue_QuitKeyword},
};
static_assert(sizeof rows / sizeof rows[0] == Catalogue_RowCount);

void assignRow(IntroEntry* entry, const Row& row) {
    Text_Assign(&entry->Title, row.title);
    Text_Assign(&entry->ExeName, row.exeName);
}

void zeroNumbers(IntroEntry* entry) {
    entry->Spare = 0;
    entry->X = 0;
    entry->Y = 0;
}

} // namespace

void Catalogue_New() {
    Array_Free(Launcher.IntroCatalogue);
    void* variable = static_cast<void*>(&Launcher.IntroCatalogue);
    Launcher.IntroCatalogue = static_cast<IntroEntry*>(
        Array_New(sizeof(IntroEntry), upperBound, elementType, textFields, variable));
}

void Catalogue_Fill() {
    for (int64_t row = 0; row < Catalogue_RowCount; ++row)
        assignRow(&Launcher.IntroCatalogue[row], rows[row]);
    for (Launcher.RowIndex = 0; Launcher.RowIndex < Catalogue_RowCount; ++Launcher.RowIndex)
        zeroNumbers(&Launcher.IntroCatalogue[Launcher.RowIndex]);
}
