// The state of image.cpp, for that file and its tests only.
#pragma once

#include "runtime/object_registry.h"

inline ObjectRegistry* imageRegistry = nullptr;
