// The process's one window: made hidden, once, and left to the process's end. The screen sizes and
// shows it, sound and input take it as the owner of their cooperative levels.
#pragma once

#include <cstdint>
#include <windows.h>

// 1 if the window exists, else 0. Safe to call again.
int32_t Window_Create();

// Does nothing: no further display library is ever loaded.
void Window_SubsystemEnd();

// Runs on the main thread only, inside Screen_Present's pump or inside a platform call.
LRESULT CALLBACK Screen_WindowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
