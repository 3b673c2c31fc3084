// A stateless service of the runtime.
#pragma once

#include <cstdint>

// Gives the processor away for that time.
void Time_Delay(int32_t milliseconds);
