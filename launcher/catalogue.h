// The menu's content: thirty rows with what the user reads and what choosing the row does. The file
// names are those that the data file unpacks.
#pragma once

#include "runtime/text.h"

#include <cstdint>

// A text is a reference of 8 bytes; packed, so that the two come to 16 and the row to 28.
#pragma pack(push, 4)
struct IntroEntry {
    TextVariable Title;   // label number included
    TextVariable ExeName; // a file in the staging folder, or one of the keywords
    int32_t Spare;        // not used
    int32_t X;            // where the row was drawn last; not read
    int32_t Y;
};
#pragma pack(pop)
static_assert(sizeof(IntroEntry) == 28);

constexpr int64_t Catalogue_RowCount = 30;
constexpr int64_t Catalogue_ColumnRows = 15; // rows from here on stand in the right column

// The two names that are no file names.
constexpr char Catalogue_QuitKeyword[] = "QUIT";
constexpr char Catalogue_InfoKeyword[] = "NFOFILE";

// Makes the array, still empty.
void Catalogue_New();

// Fills in the rows.
void Catalogue_Fill();
