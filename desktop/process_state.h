// The state of process.cpp, for that file and its tests only.
#pragma once

#include "runtime/heap.h"

inline LooseBlock* processList = nullptr; // the kept children
