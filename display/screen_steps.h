// The steps of opening and closing the screen, for screen.cpp and its tests only.
#pragma once

#include "display/screen_device.h"

#include <cstdint>

int32_t Screen_CreateSurfaces();                           // 1 or 0
HRESULT Screen_ClearSurface(IDirectDrawSurface7* surface); // black
void Screen_ClearBuffers();
void Screen_DetectFormat(); // leaves pixelFormat as it was if the primary cannot be locked
void Screen_ReleaseDevice();
