// The process's one window: made hidden, once, and left to the process's end. The screen sizes and
// shows it, sound and input take it as the owner of their cooperative levels.
#pragma once

#include <cstdint>

// 1 if the window exists, else 0. Safe to call again.
int32_t Window_Create();

// Does nothing: no further display library is ever loaded.
void Window_SubsystemEnd();
