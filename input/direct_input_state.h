// The state of direct_input.cpp, for that file and its tests only.
#pragma once

#include "input/direct_input.h"

struct DirectInputLoader {
    IDirectInput7A* directInput;
    HMODULE library;
    int directInputUsers;
};

inline DirectInputLoader Loader = {};
