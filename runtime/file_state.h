// The state of file.cpp, for that file and its tests only.
#pragma once

#include "runtime/object_registry.h"

inline ObjectRegistry* fileRegistry = nullptr;
