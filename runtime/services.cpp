#include "runtime/services.h"

#include <windows.h>

void Time_Delay(int32_t milliseconds) { Sleep(static_cast<DWORD>(milliseconds)); }
