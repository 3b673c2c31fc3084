// Puts a routine of the test's own in the place of an imported function for as long as it lives:
// for functions that the call recorder does not know, such as those of the C library.
#pragma once

#include "tests/support/import_table.h"

template <typename Function>
class ImportSwap {
public:
    // The function's own address goes to `real` before the first call can reach `routine`.
    ImportSwap(const char* function, Function* routine, Function*& real) : name(function) {
        const std::vector<void**> places = importPlaces(name);
        real = original = reinterpret_cast<Function*>(*places.at(0));
        for (void** place : places)
            writeProtected(place, reinterpret_cast<void*>(routine));
    }
    ~ImportSwap() {
        for (void** place : importPlaces(name))
            writeProtected(place, reinterpret_cast<void*>(original));
    }
    ImportSwap(const ImportSwap&) = delete;
    ImportSwap& operator=(const ImportSwap&) = delete;

private:
    const char* name;
    Function* original;
};
