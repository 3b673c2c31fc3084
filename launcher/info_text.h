// The info file as a list of lines, read once at start. The list is never empty: where the file is
// absent or empty it holds one line that says so.
#pragma once

// Makes the list, still empty.
void InfoText_New();

// Reads the file into the list.
void InfoText_Read();

// The text of the list's current element; may be null.
const char* InfoText_CurrentLine();
