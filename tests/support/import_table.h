// The running program's own import table, and writing to such read-only places.
#pragma once

#include <vector>

// Every place that holds the address of the imported function `name`; empty when it is not
// imported.
std::vector<void**> importPlaces(const char* name);

// Writes to a place in a read-only section.
void writeProtected(void** place, void* value);
