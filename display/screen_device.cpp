#include "display/screen_device.h"

int32_t Screen_IsActive() {
    return Screen.windowed ? GetForegroundWindow() == Screen.window : Screen.active;
}
