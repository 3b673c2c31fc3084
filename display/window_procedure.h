// The procedure of the process's one window, for window.cpp and its tests only.
#pragma once

#include <windows.h>

// Runs on the main thread only, inside Screen_Present's pump or inside a platform call.
LRESULT CALLBACK Screen_WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
