// Two stateless services of the runtime.
#pragma once

#include <cstdint>

// The form in which drawing colours travel: red in the low byte, green next, blue above. The
// channels are not masked: a value above 255 runs into its neighbour.
constexpr int64_t Color_Rgb(int32_t red, int32_t green, int32_t blue) {
    const int64_t blueGreen = (static_cast<int64_t>(blue) << 8) | green;
    return (blueGreen << 8) | red;
}

// Gives the processor away for that time.
void Time_Delay(int32_t milliseconds);
